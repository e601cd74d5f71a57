// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Journal.h"

#include <boost/noncopyable.hpp>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace service
{

/// Keeps a flood of refused operations from filling the disk. A window of time begins with a user's first refusal. In
/// it the number of audit rows per kind (data type, operation and outcome) and the bytes of requested records are
/// limited. Further refusals are counted; when the window ends, one row per kind has their number.
///
/// Thread-safe. The counts of the current window are lost if the process is killed.
class RefusedAttempts : private boost::noncopyable
{
public:
    struct Limits {
        int rows = 20;               ///< per user and kind
        int bodyBytes = 1024 * 1024; ///< per user
        std::chrono::milliseconds window{60000};
    };
    /// Stores all rows or none; false if that is not possible now. Called on the thread of the destructor and on an
    /// internal thread.
    using Writer = std::function<bool(const std::vector<AuditRow>&)>;

    RefusedAttempts(Writer writer, Limits limits);
    /// Writes all counts.
    ~RefusedAttempts();

    /// What may be audited of a refusal.
    enum class EShare { Nothing, RowWithoutBody, Row };
    EShare take(const AuditRow& attempt);
    /// Counts a refusal for which `take` has returned `Nothing`.
    void count(const AuditRow& attempt);

private:
    using Time = std::chrono::steady_clock::time_point;

    struct Kind {
        int operation;
        std::int32_t dataType;
        utils::EErrorCode outcome;
        bool operator<(const Kind& other) const;
    };
    struct Tally {
        int rows = 0;
        std::int64_t counted = 0;
    };
    struct Window {
        Time end;
        std::int64_t since = 0; ///< milliseconds since 1970 UTC
        std::int64_t until = 0; ///< the last attempt that was counted
        int bodyBytes = 0;
        std::map<Kind, Tally> tallies;
        bool hasCounted() const;
    };

    static Kind kindOf(const AuditRow& attempt);
    Window& windowOf(const AuditRow& attempt);
    void end(const std::string& login, const Window& window);
    std::optional<Time> nextTime() const;
    void run();
    void write(std::unique_lock<std::mutex>& lock);

    Writer m_writer;
    Limits m_limits;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<std::string, Window> m_windows; ///< by log-in
    std::vector<AuditRow> m_ended;           ///< rows to write
    Time m_writeAt;                          ///< when to write them; in the future after a failure
    bool m_isStopping = false;
    std::thread m_thread;
};

} // namespace service
