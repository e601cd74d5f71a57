// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QTimer>

namespace service::daemon
{

/// Tells systemd, if it has started the process, what the process does. Needs an event loop.
class ServiceManager
{
public:
    /// From now on until `ready`, the time limit of the start is extended again and again.
    ServiceManager();

    /// One line for `systemctl status`.
    void setStatus(const QString& text);
    /// The service can be used. The first call begins to feed the watchdog.
    void ready();
    /// `ready` follows when the configuration has been read again.
    void reloading();
    void stopping();

private:
    QTimer m_extension;
    QTimer m_watchdog;
};

} // namespace service::daemon
