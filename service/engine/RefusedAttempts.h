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

/// Keeps a flood of refused attempts from filling the disk. In a window of time, which begins with a user's first one,
/// only so many of each kind (data type, operation and outcome) get an audit row of their own, and what they asked for
/// is kept up to so many bytes. The others are counted; when the window ends, one row of the kind tells their number.
///
/// May be used on any thread. What was counted since a window began is lost when the process is killed.
class RefusedAttempts : private boost::noncopyable
{
public:
    struct Limits {
        int rows = 20;               ///< of a user and kind
        int bodyBytes = 1024 * 1024; ///< of a user
        std::chrono::milliseconds window{60000};
    };
    /// Stores rows, all or none; false when that isn't possible at present. Called on the thread of the destructor and
    /// on one that runs as soon as something is counted.
    using Writer = std::function<bool(const std::vector<AuditRow>&)>;

    RefusedAttempts(Writer writer, Limits limits);
    /// Has everything written that was counted.
    ~RefusedAttempts();

    /// What an attempt may leave in the audit.
    enum class EShare { Nothing, RowWithoutBody, Row };
    EShare take(const AuditRow& attempt);
    /// One more that was given `Nothing`.
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
    std::vector<AuditRow> m_ended;           ///< rows that are to be written
    Time m_writeAt;                          ///< these; later than at once after a failure
    bool m_isStopping = false;
    std::thread m_thread;
};

} // namespace service
