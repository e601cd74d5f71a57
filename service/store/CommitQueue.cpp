// SPDX-License-Identifier: Apache-2.0
#include "service/store/CommitQueue.h"
#include "service/store/Backoff.h"
#include "service/store/Connection.h"

#include <utils/Translation.h>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace service
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

// Limits how long readers of the write-ahead log and the last job of a batch wait.
constexpr std::size_t LargestBatch = 64;
// Less than a commit takes, so that waiting for other jobs pays off.
constexpr std::chrono::microseconds LongestGathering{200};

} // namespace

struct CommitQueue::Entry {
    explicit Entry(const WriteJob& of) : job(of) {}

    void finish(NVError with)
    {
        outcome = std::move(with);
        isDone = true;
    }

    const WriteJob& job;
    const utils::ELanguage language = utils::language(); ///< of the texts for whom the job is done
    NVError outcome;
    bool isDone = false;
    bool isUncertain = false; ///< the connection was lost during its commit: it may have been carried out
    bool isAnswered = false;  ///< guarded by the queue's mutex
};

NVError CommitQueue::write(const WriteJob& job)
{
    Entry own(job);
    std::unique_lock<std::mutex> lock(m_mutex);
    m_waiting.push_back(&own);
    m_arrived.notify_one();
    while (!own.isAnswered) {
        if (m_hasLeader) {
            m_answered.wait(lock);
            continue;
        }
        m_hasLeader = true;
        gather(lock);
        const Batch batch = takeBatch();
        lock.unlock();
        carryOut(batch);
        lock.lock();
        for (Entry* entry : batch) {
            entry->isAnswered = true;
        }
        m_hasLeader = false;
        m_answered.notify_all();
    }
    return own.outcome;
}

std::size_t CommitQueue::waitingJobs() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_waiting.size();
}

void CommitQueue::gather(std::unique_lock<std::mutex>& lock)
{
    const std::size_t expected = std::min(m_lastBatch, LargestBatch);
    m_arrived.wait_for(lock, LongestGathering, [this, expected] { return m_waiting.size() >= expected; });
}

CommitQueue::Batch CommitQueue::takeBatch()
{
    // On PostgreSQL writers of different servers work in parallel, so a batch locks one server only. The leader makes
    // the texts of its batch, in one language.
    const Entry& first = *m_waiting.front();
    Batch batch;
    std::deque<Entry*> others;
    for (Entry* entry : m_waiting) {
        const bool fits =
            entry->job.server == first.job.server && entry->language == first.language && batch.size() < LargestBatch;
        (fits ? batch.push_back(entry) : others.push_back(entry));
    }
    m_waiting.swap(others);
    m_lastBatch = batch.size();
    return batch;
}

void CommitQueue::carryOut(const Batch& batch)
{
    const utils::CLanguageScope scope(batch.front()->language);
    for (Backoff backoff(m_store.options());;) {
        NVError failed;
        try {
            if (carryOutOnce(batch)) {
                return;
            }
            continue;
        } catch (const StoreError& failure) {
            if (failure.kind() == StoreError::EKind::Uncertain) {
                for (Entry* entry : batch) {
                    if (!entry->isDone && !entry->job.isRepeatable) {
                        entry->finish(failure.error());
                    }
                    entry->isUncertain = true;
                }
            }
            if (backoff.waitToRetry(failure)) {
                continue;
            }
            failed = m_store.errorForClient(failure);
        } catch (const std::exception& failure) {
            failed = m_store.errorForClient(failure);
        }
        for (Entry* entry : batch) {
            if (!entry->isDone) {
                entry->finish(entry->isUncertain ? StoreError::uncertainCommit().error() : failed);
            }
        }
        return;
    }
}

bool CommitQueue::carryOutOnce(const Batch& batch)
{
    Batch open;
    std::copy_if(batch.begin(), batch.end(), std::back_inserter(open),
                 [](const Entry* entry) { return !entry->isDone; });
    if (open.empty()) {
        return true;
    }
    Connection& connection = m_store.connection();
    const std::lock_guard<std::mutex> turn(m_store.writeMutex());
    Transaction transaction(connection, open.front()->job.server);
    Batch done;
    for (Entry* entry : open) {
        connection.beginOperation();
        NVError failed;
        try {
            entry->job.work(connection);
            connection.endOperation();
        } catch (const StoreError& failure) {
            if (failure.kind() != StoreError::EKind::Final) {
                throw;
            }
            failed = m_store.errorForClient(failure);
        } catch (const std::exception& failure) {
            failed = m_store.errorForClient(failure);
        }
        if (failed.isSuccess()) {
            done.push_back(entry);
            continue;
        }
        entry->finish(failed);
        try {
            connection.undoOperation();
        } catch (const StoreError&) {
            // The whole transaction is lost; the other jobs start again without this one.
            return false;
        }
        connection.endOperation();
    }
    transaction.commit();
    m_store.noteCommit();
    for (Entry* entry : done) {
        entry->finish(NVError());
    }
    return true;
}

} // namespace service
