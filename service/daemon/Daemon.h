// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Configuration.h"
#include "service/daemon/EventLog.h"
#include "service/daemon/Health.h"
#include "service/daemon/Listener.h"
#include "service/daemon/LogInGuard.h"
#include "service/daemon/Metrics.h"
#include "service/daemon/MonitorServer.h"
#include "service/daemon/StoreOpener.h"
#include "service/daemon/TlsCredentials.h"
#include "service/daemon/WorkerPool.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

namespace service::daemon
{

/// The network server: serves each sub-system of a store on its own port, and health and metrics. Lives on one thread
/// with an event loop. Work that may wait for the database runs on other threads.
class Daemon : public QObject
{
    Q_OBJECT

public:
    Daemon(Configuration configuration, EventLog& log);
    /// Closes the remaining connections.
    ~Daemon() override;

    /// Opens the ports for the sub-systems of the store. After an error the destructor closes everything.
    utils::NVError start(OpenStore open);
    /// The ports in the order of the configuration.
    std::vector<int> ports() const;
    int monitorPort() const { return m_monitor ? m_monitor->port() : 0; }

    /// Stops accepting connections, informs the clients, finishes pending requests within the configured time and then
    /// emits `sigStopped`. A second call does not wait.
    void stop();
    /// Reloads the certificate and the key for new connections. After an error the current ones stay in use.
    void reloadCertificate();

signals:
    void sigStopped();

private:
    utils::NVError openPorts();
    utils::NVError openMonitor();
    service::DataEnginePtr engineOf(const ListenSettings& listen, const std::vector<service::DataEnginePtr>& engines);
    ConversationContext contextOf(service::DataEnginePtr engine);
    void takeCertificate(const TlsCredentials& tls);
    void warnOfCertificate();
    void checkTime();
    void makeRoomForAnswers();
    void finishWhenEmpty();
    void answerMonitor(const QByteArray& path, const MonitorServer::Answer& answer);
    void measure();
    QByteArray healthText(const Health::Finding& finding, bool& isWell) const;

    Configuration m_configuration;
    EventLog& m_log;
    Metrics m_metrics;
    OpenStore m_open;
    std::unique_ptr<WorkerPool> m_requests;
    std::unique_ptr<WorkerPool> m_logInWorkers;
    std::vector<std::unique_ptr<LogInGuard>> m_guards; ///< one per listener, because each has its own users
    std::vector<std::unique_ptr<ChangeHub>> m_changes; ///< one per listener
    ConnectionCounts m_counts;
    HeldBytes m_held;
    MessageRoom m_room;
    std::vector<std::unique_ptr<Listener>> m_listeners;
    std::unique_ptr<MonitorServer> m_monitor;
    std::unique_ptr<Health> m_health;
    QDateTime m_certificateEnd; ///< null without a certificate
    QTimer m_clock;
    QTimer m_daily;
    bool m_isStopping = false;
    bool m_isStopped = false;
    TimePoint m_stopDeadline;
};

} // namespace service::daemon
