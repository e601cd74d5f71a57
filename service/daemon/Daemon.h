#pragma once

#include "service/daemon/Configuration.h"
#include "service/daemon/EventLog.h"
#include "service/daemon/Health.h"
#include "service/daemon/Listener.h"
#include "service/daemon/LogInGuard.h"
#include "service/daemon/Metrics.h"
#include "service/daemon/MonitorServer.h"
#include "service/daemon/TlsCredentials.h"
#include "service/daemon/WorkerPool.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

namespace service::daemon
{

/// The network server: the sub-systems of one store, a port for each, health and metrics. Lives on one thread, which
/// runs an event loop; what may wait for the database runs on threads of its own.
class Daemon : public QObject
{
    Q_OBJECT

public:
    Daemon(Configuration configuration, EventLog& log);
    /// Cuts what is still connected.
    ~Daemon() override;

    /// Opens store and ports. An error leaves nothing open that the destructor does not close.
    utils::NVError start();
    /// The ports in the order of the configuration.
    std::vector<int> ports() const;
    int monitorPort() const { return m_monitor ? m_monitor->port() : 0; }

    /// Stops accepting, tells the clients, finishes what is under way within the configured time and then reports
    /// `sigStopped`. Called a second time it waits for nothing any more.
    void stop();
    /// Reads certificate and key anew, for connections that begin from now on; a failure keeps the present ones.
    void reloadCertificate();

signals:
    void sigStopped();

private:
    utils::NVError openStore();
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
    service::StorePtr m_store;
    std::vector<service::DataEnginePtr> m_engines;
    std::unique_ptr<WorkerPool> m_requests;
    std::unique_ptr<WorkerPool> m_logInWorkers;
    std::vector<std::unique_ptr<LogInGuard>> m_guards; ///< one for each listener, whose users are its own
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
