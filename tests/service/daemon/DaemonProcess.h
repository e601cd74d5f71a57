// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

#include <vector>

namespace testservice
{

/// The real daemon in a process of its own, with a log in a file.
class DaemonProcess
{
public:
    /// @param directory  where configuration and log are written.
    explicit DaemonProcess(const QString& directory);
    /// Kills it.
    ~DaemonProcess();

    /// Writes the configuration: `sections` is TOML that is added to the store, one listener for the sub-system at a
    /// free port, and, unless `certificate` is empty, TLS.
    void configure(const QString& store, const QString& subSystem, const QString& certificate, const QString& key,
                   const QByteArray& sections = {});
    /// In place of a free one, from the next start on.
    void usePort(int port);
    QString configurationFile() const { return m_directory + "/daemon.toml"; }

    /// Starts it and does not wait.
    void launch();
    /// Waits until it listens. False with its output in `errors` when it ends without.
    bool waitUntilStarted(QString& errors);
    bool start(QString& errors)
    {
        launch();
        return waitUntilStarted(errors);
    }
    int port() const { return m_ports.at(0); }
    int monitorPort() const { return m_monitorPort; }
    qint64 id() const { return m_process.processId(); }

    /// Ends it as a power cut would end it; waits until it is gone.
    void kill();
    void terminate() { m_process.terminate(); }
    void hangUp();
    /// Set before `start`.
    void setEnvironment(const QString& name, const QString& value);
    /// The exit code; -1 when it doesn't end or ends otherwise than by itself.
    int waitForEnd(int milliseconds = 60000);
    QStringList log() const;

private:
    bool hasStarted();

    QString m_directory;
    QProcess m_process;
    std::vector<int> m_ports;
    int m_monitorPort = 0;
};

} // namespace testservice
