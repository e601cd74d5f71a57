// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/CommandLine.h"
#include "service/daemon/Daemon.h"
#include "service/daemon/SignalWatcher.h"
#include "service/daemon/TlsCredentials.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTimer>

#include <systemd/sd-daemon.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>

namespace
{

using namespace service::daemon;

enum ExitCode { Done = 0, Failed = 1, WrongUse = 2 };

void printError(const QString& text)
{
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

/// All mistakes that can be found without opening the store.
QStringList mistakesOf(const ConfigurationResult& result)
{
    QStringList mistakes;
    for (const ConfigurationMistake& mistake : result.mistakes) {
        mistakes << describe(mistake);
    }
    const TlsSettings& tls = result.configuration.tls;
    if (!tls.certificateFile.isEmpty() && !tls.keyFile.isEmpty()) {
        const TlsCredentials credentials = loadTlsCredentials(tls);
        if (!credentials.error.isEmpty()) {
            mistakes << credentials.error;
        }
        mistakes << credentials.warnings;
        if (credentials.end.isValid() && credentials.end < QDateTime::currentDateTime()) {
            mistakes << textOfEnd(credentials.end);
        }
    }
    if (result.isReadable && result.configuration.store.isEmpty()) {
        mistakes << QStringLiteral("缺少数据库：[store] 一节的 location，或选项 --store");
    }
    return mistakes;
}

int run(const Configuration& configuration)
{
    EventLog log(configuration.log);
    log.info("starting", {{"version", QCoreApplication::applicationVersion()}});
    Daemon daemon(configuration, log);
    const utils::NVError error = daemon.start();
    if (!error.isSuccess()) {
        log.error("start_failed", {{"error", error.errorMsg()}});
        printError(QString::fromStdString(error.errorMsg()));
        return Failed;
    }
    const SignalWatcher signalWatcher([&](int number) {
        if (number == SIGHUP) {
            sd_notify(0, "RELOADING=1");
            daemon.reloadCertificate();
            sd_notify(0, "READY=1");
        } else {
            sd_notify(0, "STOPPING=1");
            daemon.stop();
        }
    });
    QObject::connect(&daemon, &Daemon::sigStopped, QCoreApplication::instance(), &QCoreApplication::quit,
                     Qt::QueuedConnection);
    QTimer watchdog;
    std::uint64_t microseconds = 0;
    if (sd_watchdog_enabled(0, &microseconds) > 0) {
        QObject::connect(&watchdog, &QTimer::timeout, [] { sd_notify(0, "WATCHDOG=1"); });
        watchdog.start(std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::microseconds(microseconds)) /
                       3);
    }
    log.info("started");
    sd_notify(0, "READY=1");
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-dataserviced"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QAV_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Serves the sub-systems of a store to clients on the network."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions(commandLineOptions());
    parser.process(application);
    if (!parser.positionalArguments().isEmpty()) {
        printError(QStringLiteral("未知的参数 %1").arg(parser.positionalArguments().first()));
        return WrongUse;
    }

    ConfigurationResult result = loadConfiguration(parser.value(QStringLiteral("config")));
    if (parser.isSet(QStringLiteral("store"))) {
        result.configuration.store = parser.value(QStringLiteral("store"));
    }
    const bool onlyCheck = parser.isSet(QStringLiteral("check-config"));
    if (onlyCheck || !result.mistakes.empty() || result.configuration.store.isEmpty()) {
        const QStringList mistakes = mistakesOf(result);
        for (const QString& mistake : mistakes) {
            printError(mistake);
        }
        if (onlyCheck && mistakes.isEmpty()) {
            std::puts("配置正确");
        }
        return mistakes.isEmpty() ? Done : WrongUse;
    }
    return run(result.configuration);
}
