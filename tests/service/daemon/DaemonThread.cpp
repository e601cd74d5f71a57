// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonThread.h"

#include "service/ServiceFixture.h"
#include "service/daemon/Daemon.h"

#include <QEventLoop>
#include <QTcpSocket>

#include <sodium.h>

#include <stdexcept>

namespace testservice
{

using service::daemon::Configuration;
using service::daemon::Daemon;

void addUser(service::Store& store, const service::SubSystem& server, const std::string& login,
             const std::string& password, const std::set<int>& rights, int institution)
{
    char hash[crypto_pwhash_STRBYTES];
    if (sodium_init() < 0 || crypto_pwhash_str(hash, password.c_str(), password.size(), crypto_pwhash_OPSLIMIT_MIN,
                                               crypto_pwhash_MEMLIMIT_MIN) != 0) {
        throw std::runtime_error("cannot hash a password");
    }
    service::StoredUser user;
    user.login = login;
    user.displayName = "姓名" + login;
    user.passwordHash = hash;
    user.enabled = true;
    user.rights = rights;
    if (institution != None) {
        user.institution = institution;
    }
    service::insertUser({store.connection(), server}, user);
}

Configuration plainConfiguration(const QString& store, const QString& subSystem)
{
    Configuration configuration;
    configuration.store = store;
    configuration.listen.push_back({subSystem, QHostAddress(QHostAddress::LocalHost), 0, true});
    configuration.workers.requests = 4;
    configuration.log.level = service::daemon::ELogLevel::Debug;
    return configuration;
}

DaemonThread::DaemonThread(const Configuration& configuration) : m_thread([this, configuration] { run(configuration); })
{
    m_started = m_promise.get_future().get();
}

DaemonThread::~DaemonThread()
{
    stop();
    wait();
}

void DaemonThread::run(Configuration configuration)
{
    service::daemon::EventLog log(configuration.log, [this](const std::string& line) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_log << QString::fromStdString(line);
    });
    QEventLoop loop;
    const QString location = configuration.store;
    Daemon daemon(std::move(configuration), log);
    Started started;
    try {
        started.error = daemon.start(service::daemon::openStore(location, log));
    } catch (const service::StoreError& failure) {
        started.error = failure.fullError();
    }
    if (started.error.isSuccess()) {
        started.ports = daemon.ports();
        started.monitorPort = daemon.monitorPort();
        started.daemon = &daemon;
        QObject::connect(&daemon, &Daemon::sigStopped, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    }
    m_promise.set_value(started);
    if (started.daemon) {
        loop.exec();
    }
    // Nobody may call the daemon any more, which is destroyed after this.
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isGone = true;
    lock.unlock();
}

void DaemonThread::stop()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isGone && m_started.daemon) {
        QMetaObject::invokeMethod(m_started.daemon, [daemon = m_started.daemon] { daemon->stop(); });
    }
}

void DaemonThread::reloadCertificate()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_isGone && m_started.daemon) {
        QMetaObject::invokeMethod(m_started.daemon, [daemon = m_started.daemon] { daemon->reloadCertificate(); });
    }
}

void DaemonThread::wait()
{
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

QStringList DaemonThread::log() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_log;
}

HttpReply httpGet(int port, const char* path, const char* verb)
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(port));
    if (!socket.waitForConnected(30000)) {
        return {};
    }
    socket.write(QByteArray(verb) + ' ' + path + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QByteArray bytes;
    while (socket.waitForReadyRead(30000)) {
        bytes += socket.readAll();
    }
    bytes += socket.readAll();
    const int headEnd = bytes.indexOf("\r\n\r\n");
    return {bytes.mid(9, 3).toInt(), headEnd < 0 ? QString() : QString::fromUtf8(bytes.mid(headEnd + 4))};
}

double metric(int monitorPort, const QString& name)
{
    for (const QString& line : httpGet(monitorPort, "/metrics").body.split('\n')) {
        if (line.startsWith(name + ' ')) {
            return line.mid(name.size() + 1).toDouble();
        }
    }
    return -1;
}

} // namespace testservice
