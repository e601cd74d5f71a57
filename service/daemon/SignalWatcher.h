// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace service::daemon
{

/// Turns SIGTERM, SIGINT and SIGHUP into calls on the thread that created it. A process may have one at a time.
class SignalWatcher : public QObject
{
public:
    using Handler = std::function<void(int)>; ///< receives the signal number

    explicit SignalWatcher(Handler handler);
    ~SignalWatcher() override;

private:
    void readSignals();

    Handler m_handler;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace service::daemon
