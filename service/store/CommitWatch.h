// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"

#include <boost/noncopyable.hpp>

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace service
{

class Connection;

/// Tells of commits to a database by this process and by others: on PostgreSQL by its notifications, on SQLite by the
/// version of its data, which is looked at four times a second, and for this process at once. While there is a
/// listener, it has a thread and a connection of its own. Thread-safe.
class CommitWatch : public std::enable_shared_from_this<CommitWatch>, private boost::noncopyable
{
public:
    using Callback = std::function<void()>;

    explicit CommitWatch(StoreOptions options) : m_options(std::move(options)) {}
    ~CommitWatch();

    /// Calls `callback` after every commit from now on, or once after several, and also when commits may have been
    /// missed. It must return soon, and add and remove no listener. Ends when the result is destroyed.
    std::shared_ptr<void> listen(Callback callback);
    /// This process has committed.
    void committed();

private:
    void remove(int listener);
    void run();
    /// Waits for the next commit; false after a while without one.
    bool wait(std::unique_ptr<Connection>& connection, std::int64_t& version);
    void tellAll();
    /// False if the thread has to end.
    bool pause(std::chrono::milliseconds time);

    const StoreOptions m_options;
    std::mutex m_turn;  ///< for starting and ending the thread
    std::mutex m_mutex; ///< for the following
    std::map<int, Callback> m_listeners;
    int m_lastListener = 0;
    bool m_isStopping = false;
    std::condition_variable m_stopping;
    std::thread m_thread;
};

} // namespace service
