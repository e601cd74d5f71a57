// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/Configuration.h"
#include "service/daemon/EventLog.h"
#include "service/store/Store.h"

#include <utils/NVError.h>

#include <QStringList>

#include <future>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace service::daemon
{
class Daemon;
}

namespace testservice
{

/// Stores a user of a server (by its place) whose password costs next to nothing to check.
void addUser(service::Store& store, const service::SubSystem& server, const std::string& login,
             const std::string& password, const std::set<int>& rights, int institution);

/// A configuration for the store with one port, without TLS, on the loopback address; the ports are free ones.
service::daemon::Configuration plainConfiguration(const QString& store, const QString& subSystem);

/// A daemon in this process, on a thread of its own.
class DaemonThread
{
public:
    explicit DaemonThread(const service::daemon::Configuration& configuration);
    /// Stops it, waiting for what is under way.
    ~DaemonThread();

    const utils::NVError& startError() const { return m_started.error; }
    int port(std::size_t index = 0) const { return m_started.ports.at(index); }
    int monitorPort() const { return m_started.monitorPort; }

    /// Begins to stop, as a signal would.
    void stop();
    void reloadCertificate();
    /// Waits until it has stopped.
    void wait();

    QStringList log() const;
    bool hasLogged(const QString& part) const { return !log().filter(part).isEmpty(); }

private:
    struct Started {
        utils::NVError error;
        std::vector<int> ports;
        int monitorPort = 0;
        service::daemon::Daemon* daemon = nullptr;
    };

    void run(service::daemon::Configuration configuration);

    std::promise<Started> m_promise;
    Started m_started;
    mutable std::mutex m_mutex;
    QStringList m_log;
    bool m_isGone = false;
    std::thread m_thread;
};

/// What the daemon says of itself over HTTP.
struct HttpReply {
    int status = 0;
    QString body;
};
HttpReply httpGet(int port, const char* path, const char* verb = "GET");
/// The value of a metric without labels; -1: there is none.
double metric(int monitorPort, const QString& name);

} // namespace testservice
