#pragma once

#include "service/store/Store.h"

#include <boost/noncopyable.hpp>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace service
{

/// Lets jobs that wait at the same time share one commit. One of the waiting threads leads: it carries out the jobs of
/// all, each in a savepoint of its own, commits once and wakes the others. A job that fails leaves the others alone; a
/// commit that fails, fails them all.
class CommitQueue : private boost::noncopyable
{
public:
    explicit CommitQueue(Store& store) : m_store(store) {}

    /// May be called on any thread, several at once.
    utils::NVError write(const WriteJob& job);
    std::size_t waitingJobs() const;

private:
    struct Entry;
    using Batch = std::vector<Entry*>;

    /// Waits a moment for as many jobs as there were in the batch before, whose threads may be on their way back.
    void gather(std::unique_lock<std::mutex>& lock);
    Batch takeBatch();
    void carryOut(const Batch& batch);
    /// False when a failing job has taken the transaction with it, so that the others have to begin again.
    bool carryOutOnce(const Batch& batch);

    Store& m_store;
    mutable std::mutex m_mutex;
    std::condition_variable m_arrived; ///< for the leader that gathers
    std::condition_variable m_answered;
    std::deque<Entry*> m_waiting;
    std::size_t m_lastBatch = 0; ///< its size
    bool m_hasLeader = false;
};

} // namespace service
