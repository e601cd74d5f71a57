// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ServiceManager.h"

#include <QCoreApplication>

#include <systemd/sd-daemon.h>

#include <chrono>
#include <cstdint>

namespace service::daemon
{

namespace
{

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds Extension(30);
constexpr seconds ExtensionInterval(2);

void extendStart()
{
    sd_notifyf(0, "EXTEND_TIMEOUT_USEC=%lld", static_cast<long long>(microseconds(Extension).count()));
}

} // namespace

ServiceManager::ServiceManager()
{
    extendStart();
    QObject::connect(&m_extension, &QTimer::timeout, extendStart);
    m_extension.start(ExtensionInterval);
    std::uint64_t limit = 0;
    if (sd_watchdog_enabled(0, &limit) > 0) {
        QObject::connect(&m_watchdog, &QTimer::timeout, [] { sd_notify(0, "WATCHDOG=1"); });
        m_watchdog.setInterval(duration_cast<milliseconds>(microseconds(limit)) / 3);
    }
}

void ServiceManager::setStatus(const QString& text)
{
    // A line break would begin another message.
    sd_notifyf(0, "STATUS=%s", text.simplified().toUtf8().constData());
}

void ServiceManager::ready()
{
    m_extension.stop();
    if (m_watchdog.interval() > 0 && !m_watchdog.isActive()) {
        m_watchdog.start();
    }
    setStatus(QCoreApplication::translate("service", "正在服务"));
    sd_notify(0, "READY=1");
}

void ServiceManager::reloading()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    setStatus(QCoreApplication::translate("service", "正在重新读取证书"));
    sd_notifyf(0, "RELOADING=1\nMONOTONIC_USEC=%lld", static_cast<long long>(duration_cast<microseconds>(now).count()));
}

void ServiceManager::stopping()
{
    setStatus(QCoreApplication::translate("service", "正在停止"));
    sd_notify(0, "STOPPING=1");
}

} // namespace service::daemon
