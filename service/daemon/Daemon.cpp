// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Daemon.h"

#include "service/daemon/Mebibyte.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace service::daemon
{

namespace
{

using std::chrono::milliseconds;
using std::chrono::seconds;
using utils::EErrorCode;
using utils::NVError;

// A client that is later with an answer is disconnected if others need the memory.
constexpr seconds BearableLateness(5);
constexpr int ClockMilliseconds = 1000;
constexpr int DrainClockMilliseconds = 20;
constexpr std::chrono::hours CertificateCheck(24);

TimePoint now()
{
    return std::chrono::steady_clock::now();
}

NVError failure(const QString& text)
{
    return {EErrorCode::Failed, text.toStdString()};
}

} // namespace

Daemon::Daemon(Configuration configuration, EventLog& log)
    : m_configuration(std::move(configuration)), m_log(log),
      m_held(Mebibyte * static_cast<std::size_t>(m_configuration.limits.heldMebibytes)),
      m_room(Mebibyte * static_cast<std::size_t>(m_configuration.limits.receivedMebibytes))
{
    m_clock.setInterval(ClockMilliseconds);
    connect(&m_clock, &QTimer::timeout, this, [this] { checkTime(); });
    m_daily.setInterval(CertificateCheck);
    connect(&m_daily, &QTimer::timeout, this, [this] { warnOfCertificate(); });
}

Daemon::~Daemon()
{
    m_monitor.reset();
    m_health.reset();
    m_listeners.clear();
    m_changes.clear();
    m_logInWorkers.reset();
    m_requests.reset();
}

NVError Daemon::start(OpenStore open)
{
    m_open = std::move(open);
    if (m_open.engines.empty()) {
        return failure(QCoreApplication::translate("service", "数据库中没有分系统，请先导入数据"));
    }
    for (const auto& openSockets : {&Daemon::openPorts, &Daemon::openMonitor}) {
        const NVError error = (this->*openSockets)();
        if (!error.isSuccess()) {
            return error;
        }
    }
    m_clock.start();
    m_daily.start();
    return {};
}

service::DataEnginePtr Daemon::engineOf(const ListenSettings& listen,
                                        const std::vector<service::DataEnginePtr>& engines)
{
    if (listen.subSystem.isEmpty()) {
        return engines.size() == 1 ? engines.front() : service::DataEnginePtr();
    }
    const auto found = std::find_if(engines.begin(), engines.end(), [&](const service::DataEnginePtr& engine) {
        return engine->serverName() == listen.subSystem.toStdString();
    });
    return found == engines.end() ? service::DataEnginePtr() : *found;
}

ConversationContext Daemon::contextOf(service::DataEnginePtr engine)
{
    m_guards.push_back(std::make_unique<LogInGuard>(m_configuration.logIns));
    m_changes.push_back(std::make_unique<ChangeHub>(engine, *m_requests, m_log));
    return {std::move(engine),
            *m_requests,
            *m_logInWorkers,
            *m_guards.back(),
            m_metrics,
            m_log,
            m_held,
            m_room,
            *m_changes.back(),
            m_configuration.limits,
            m_configuration.timeouts,
            now};
}

NVError Daemon::openPorts()
{
    const bool needsTls = std::any_of(m_configuration.listen.begin(), m_configuration.listen.end(),
                                      [](const ListenSettings& listen) { return !listen.plaintext; });
    TlsCredentials tls;
    if (needsTls) {
        tls = loadTlsCredentials(m_configuration.tls);
        if (!tls.error.isEmpty()) {
            return failure(tls.error);
        }
        takeCertificate(tls);
    }
    m_requests = std::make_unique<WorkerPool>(m_configuration.workers.requests);
    m_logInWorkers = std::make_unique<WorkerPool>(m_configuration.workers.logIns);
    for (const ListenSettings& listen : m_configuration.listen) {
        const service::DataEnginePtr engine = engineOf(listen, m_open.engines);
        if (!engine) {
            return failure(
                listen.subSystem.isEmpty()
                    ? QCoreApplication::translate("service", "数据库中有多个分系统，[[listen]] 必须指定 sub_system")
                    : QCoreApplication::translate("service", "数据库中没有分系统“%1”").arg(listen.subSystem));
        }
        if (listen.plaintext && !listen.address.isLoopback()) {
            return failure(QCoreApplication::translate("service", "不加密的端口只能用于本机回环地址"));
        }
        m_listeners.push_back(std::make_unique<Listener>(
            contextOf(engine), m_counts,
            listen.plaintext ? std::nullopt : std::optional<QSslConfiguration>(tls.configuration)));
        QString error;
        if (!m_listeners.back()->listen(listen.address, listen.port, error)) {
            return failure(QCoreApplication::translate("service", "无法监听 %1 端口 %2：%3")
                               .arg(listen.address.toString(), QString::number(listen.port), error));
        }
        m_log.info("listening", {{"sub_system", engine->serverName()},
                                 {"address", listen.address.toString()},
                                 {"port", m_listeners.back()->port()},
                                 {"tls", !listen.plaintext}});
    }
    return {};
}

NVError Daemon::openMonitor()
{
    if (!m_configuration.monitor) {
        return {};
    }
    const MonitorSettings& settings = *m_configuration.monitor;
    m_health = std::make_unique<Health>(m_open.store, *m_requests);
    m_monitor = std::make_unique<MonitorServer>(
        [this](const QByteArray& path, const MonitorServer::Answer& answer) { answerMonitor(path, answer); });
    QString error;
    if (!m_monitor->listen(settings.address, settings.port, error)) {
        return failure(QCoreApplication::translate("service", "无法监听 %1 端口 %2：%3")
                           .arg(settings.address.toString(), QString::number(settings.port), error));
    }
    m_log.info("monitor", {{"address", settings.address.toString()}, {"port", m_monitor->port()}});
    return {};
}

std::vector<int> Daemon::ports() const
{
    std::vector<int> ports;
    ports.reserve(m_listeners.size());
    for (const auto& listener : m_listeners) {
        ports.push_back(listener->port());
    }
    return ports;
}

void Daemon::takeCertificate(const TlsCredentials& tls)
{
    for (const QString& warning : tls.warnings) {
        m_log.warning("certificate", {{"text", warning}});
    }
    m_certificateEnd = tls.end;
    m_metrics.setCertificateEnd(tls.end.toSecsSinceEpoch());
    warnOfCertificate();
}

void Daemon::warnOfCertificate()
{
    if (isEndNear(m_certificateEnd)) {
        m_log.warning("certificate", {{"text", textOfEnd(m_certificateEnd)}});
    }
}

void Daemon::measure()
{
    m_metrics.setQueueDepth("requests", m_requests->waiting());
    m_metrics.setQueueDepth("log_ins", m_logInWorkers->waiting());
    m_metrics.setHeldBytes(m_held.bytes());
    m_metrics.setReceivedBytes(m_room.bytes());
}

void Daemon::checkTime()
{
    measure();
    makeRoomForAnswers();
    for (const auto& listener : m_listeners) {
        listener->checkTime();
    }
    if (m_isStopping) {
        finishWhenEmpty();
    }
}

void Daemon::makeRoomForAnswers()
{
    while (m_held.isFull()) {
        ClientLink* slowest = nullptr;
        std::chrono::duration<double> lateness = BearableLateness;
        for (const auto& listener : m_listeners) {
            listener->findLatest(slowest, lateness);
        }
        if (!slowest) {
            return;
        }
        slowest->abort("slow");
    }
}

void Daemon::stop()
{
    if (m_isStopping) {
        m_stopDeadline = now();
        return finishWhenEmpty();
    }
    m_isStopping = true;
    const seconds drain(m_configuration.timeouts.drainSeconds);
    m_stopDeadline = now() + drain;
    m_log.info("stopping", {{"connections", m_counts.all}});
    for (const auto& listener : m_listeners) {
        listener->beginClosing(static_cast<int>(milliseconds(drain).count()));
    }
    m_clock.setInterval(DrainClockMilliseconds);
    m_clock.start();
}

void Daemon::finishWhenEmpty()
{
    if (m_isStopped) {
        return;
    }
    const bool isLate = now() >= m_stopDeadline;
    if (isLate) {
        if (m_counts.all > 0) {
            m_log.warning("connections_cut", {{"connections", m_counts.all}});
        }
        for (const auto& listener : m_listeners) {
            listener->abortAll();
        }
    }
    if (m_counts.all > 0) {
        return;
    }
    m_isStopped = true;
    m_clock.stop();
    m_log.info("stopped");
    emit sigStopped();
}

void Daemon::reloadCertificate()
{
    const TlsCredentials tls = loadTlsCredentials(m_configuration.tls);
    if (!tls.error.isEmpty()) {
        m_log.error("certificate_not_reloaded", {{"error", tls.error}});
        return;
    }
    takeCertificate(tls);
    for (const auto& listener : m_listeners) {
        listener->setTls(tls.configuration);
    }
    m_log.info("certificate_reloaded");
}

void Daemon::answerMonitor(const QByteArray& path, const MonitorServer::Answer& answer)
{
    if (path == "/metrics") {
        measure();
        answer({200, "text/plain; version=0.0.4; charset=utf-8", QByteArray::fromStdString(m_metrics.text())});
    } else if (path == "/health") {
        m_health->ask([this, answer](const Health::Finding& finding) {
            bool isWell = false;
            const QByteArray text = healthText(finding, isWell);
            answer({isWell ? 200 : 503, "application/json", text});
        });
    } else {
        answer({404, "text/plain; charset=utf-8", "/health\n/metrics\n"});
    }
}

QByteArray Daemon::healthText(const Health::Finding& finding, bool& isWell) const
{
    QByteArray status = "ok";
    if (m_isStopping) {
        status = "stopping";
    } else if (!finding.isStoreWell) {
        status = "store_failure";
    } else if (finding.disk == EDiskState::Full) {
        status = "disk_full";
    }
    QStringList warnings;
    if (finding.disk == EDiskState::Low) {
        warnings << QStringLiteral("\"disk_nearly_full\"");
    }
    if (isEndNear(m_certificateEnd)) {
        warnings << QStringLiteral("\"certificate_ends\"");
    }
    isWell = status == "ok";
    return "{\"status\":\"" + status + "\",\"connections\":" + QByteArray::number(m_counts.all) + ",\"warnings\":[" +
           warnings.join(QLatin1Char(',')).toLatin1() + "]}\n";
}

} // namespace service::daemon
