// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"

#include <boost/noncopyable.hpp>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace service
{

/// Group commit: jobs that wait at the same time share one commit. One of the waiting threads is the leader. It carries
/// out all jobs, each in its own savepoint, commits once and wakes the others. If a job fails, only that job is rolled
/// back. If the commit fails, all jobs fail.
class CommitQueue : private boost::noncopyable
{
public:
    explicit CommitQueue(Store& store) : m_store(store) {}

    /// Thread-safe.
    utils::NVError write(const WriteJob& job);
    std::size_t waitingJobs() const;

private:
    struct Entry;
    using Batch = std::vector<Entry*>;

    /// Waits briefly for as many jobs as the previous batch had, because its threads may soon send the next ones.
    void gather(std::unique_lock<std::mutex>& lock);
    Batch takeBatch();
    void carryOut(const Batch& batch);
    /// False if a failing job has aborted the whole transaction, so that the others must start again.
    bool carryOutOnce(const Batch& batch);

    Store& m_store;
    mutable std::mutex m_mutex;
    std::condition_variable m_arrived; ///< for the leader in gather()
    std::condition_variable m_answered;
    std::deque<Entry*> m_waiting;
    std::size_t m_lastBatch = 0; ///< its size
    bool m_hasLeader = false;
};

} // namespace service
