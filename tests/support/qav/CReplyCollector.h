// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClient.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace support
{

/// One call of a callback.
struct CollectedReply {
    utils::NVError error;
    std::vector<nvservice::IDataPtr> records;
    int totalCount = 0;
    bson::BSONObj document;
    std::thread::id thread;
};

/// Makes callbacks that note their calls. Copies of a callback keep the collector's state alive, so that a callback
/// that comes too often or too late is seen, not a crash.
class CReplyCollector
{
public:
    CReplyCollector();

    QAV::QueryCallback onQuery() const;
    QAV::OperateCallback onOperate() const;
    QAV::LogInCallback onLogIn() const;

    /// Waits until there are `count` replies; false when they do not come within `limit`, which is a failure of the
    /// code under test, not a matter of speed.
    bool waitFor(std::size_t count, std::chrono::seconds limit = std::chrono::seconds(60)) const;
    std::vector<CollectedReply> replies() const;
    std::size_t count() const;
    /// Waits for the first reply; a reply with the error "no reply came" when none comes.
    CollectedReply first() const;

private:
    struct State {
        mutable std::mutex mutex;
        std::condition_variable arrived;
        std::vector<CollectedReply> replies;

        void note(CollectedReply reply);
    };

    std::shared_ptr<State> m_state;
};

} // namespace support
