// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonProcess.h"

#include "support/Paths.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>

#include <csignal>
#include <stdexcept>

namespace testservice
{

namespace
{

constexpr int StartMilliseconds = 60000;

QString logFile(const QString& directory)
{
    return directory + "/daemon.log";
}

} // namespace

DaemonProcess::DaemonProcess(const QString& directory) : m_directory(directory) {}

DaemonProcess::~DaemonProcess()
{
    kill();
}

void DaemonProcess::configure(const QString& store, const QString& subSystem, const QString& certificate,
                              const QString& key, const QByteArray& sections)
{
    QString text = QString("[store]\nlocation = \"%1\"\n[[listen]]\nsub_system = \"%2\"\naddress = \"127.0.0.1\"\n"
                           "port = 0\nplaintext = %3\n")
                       .arg(store, subSystem, certificate.isEmpty() ? "true" : "false");
    if (!certificate.isEmpty()) {
        text += QString("[tls]\ncertificate = \"%1\"\nkey = \"%2\"\n").arg(certificate, key);
    }
    QFile file(configurationFile());
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8() + sections) < 0) {
        throw std::runtime_error("cannot write the configuration");
    }
}

void DaemonProcess::usePort(int port)
{
    QFile file(configurationFile());
    if (!file.open(QIODevice::ReadWrite)) {
        throw std::runtime_error("no configuration");
    }
    const QByteArray text =
        file.readAll().replace("\nport = 0\nplaintext", "\nport = " + QByteArray::number(port) + "\nplaintext");
    file.resize(0);
    file.seek(0);
    file.write(text);
}

void DaemonProcess::launch()
{
    m_ports.clear();
    m_monitorPort = 0;
    QFile::remove(logFile(m_directory));
    m_process.setStandardOutputFile(logFile(m_directory));
    m_process.start(support::builtFile("bin/qav-dataserviced"), {"--config", configurationFile()});
    m_process.waitForStarted();
}

bool DaemonProcess::waitUntilStarted(QString& errors)
{
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < StartMilliseconds && m_process.state() != QProcess::NotRunning;) {
        if (hasStarted()) {
            return true;
        }
        m_process.waitForFinished(2);
    }
    errors = QString::fromUtf8(m_process.readAllStandardError()) + log().join('\n');
    return false;
}

bool DaemonProcess::hasStarted()
{
    std::vector<int> ports;
    for (const QString& line : log()) {
        const QJsonObject event = QJsonDocument::fromJson(line.toUtf8()).object();
        if (event["event"] == "listening") {
            ports.push_back(event["port"].toInt());
        } else if (event["event"] == "monitor") {
            m_monitorPort = event["port"].toInt();
        } else if (event["event"] == "started") {
            m_ports = ports;
        }
    }
    return !m_ports.empty();
}

void DaemonProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

void DaemonProcess::hangUp()
{
    ::kill(static_cast<pid_t>(id()), SIGHUP);
}

void DaemonProcess::setEnvironment(const QString& name, const QString& value)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    if (environment.isEmpty()) {
        environment = QProcessEnvironment::systemEnvironment();
    }
    environment.insert(name, value);
    m_process.setProcessEnvironment(environment);
}

int DaemonProcess::waitForEnd(int milliseconds)
{
    if (!m_process.waitForFinished(milliseconds) && m_process.state() != QProcess::NotRunning) {
        return -1;
    }
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QStringList DaemonProcess::log() const
{
    QFile file(logFile(m_directory));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

} // namespace testservice
