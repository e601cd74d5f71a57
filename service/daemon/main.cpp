// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/CommandLine.h"
#include "service/daemon/Daemon.h"
#include "service/daemon/ServiceManager.h"
#include "service/daemon/SignalWatcher.h"
#include "service/daemon/StoreOpener.h"
#include "service/daemon/TlsCredentials.h"
#include "service/engine/Texts.h"
#include "service/store/StoreError.h"

#include <utils/Translation.h>

#include <QCommandLineParser>
#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace service::daemon;

bool hasTls(const Configuration& configuration)
{
    return !configuration.tls.certificateFile.isEmpty() && !configuration.tls.keyFile.isEmpty();
}

enum ExitCode { Done = 0, Failed = 1, WrongUse = 2 };

void printError(const QString& text)
{
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

/// Empty if nothing speaks against it.
QString problemOfLocation(const QString& location)
{
    try {
        service::requireLocation(location);
        return {};
    } catch (const service::StoreError& failure) {
        return QString::fromUtf8(failure.what());
    }
}

/// What keeps the daemon from starting and needs no connection to be found.
QStringList defectsOf(const ConfigurationResult& result)
{
    QStringList defects;
    for (const ConfigurationMistake& mistake : result.mistakes) {
        defects << describe(mistake);
    }
    const Configuration& configuration = result.configuration;
    if (hasTls(configuration)) {
        defects << loadTlsCredentials(configuration.tls).error;
    }
    if (!configuration.store.isEmpty()) {
        defects << problemOfLocation(configuration.store);
    } else if (result.isReadable) {
        defects << QCoreApplication::translate("service", "缺少数据库：[store] 一节的 location，或选项 --store");
    }
    defects.removeAll({});
    return defects;
}

/// What clients will notice, although the daemon starts.
QStringList warningsOf(const Configuration& configuration)
{
    if (!hasTls(configuration)) {
        return {};
    }
    const TlsCredentials credentials = loadTlsCredentials(configuration.tls);
    QStringList warnings = credentials.warnings;
    if (credentials.end.isValid() && credentials.end < QDateTime::currentDateTime()) {
        warnings << textOfEnd(credentials.end);
    }
    return warnings;
}

int check(const ConfigurationResult& result)
{
    for (const ConfigurationSetting& setting : result.settings) {
        std::puts(describe(setting).toUtf8().constData());
    }
    const QStringList mistakes = defectsOf(result) + warningsOf(result.configuration);
    for (const QString& mistake : mistakes) {
        printError(mistake);
    }
    if (!mistakes.isEmpty()) {
        return WrongUse;
    }
    std::puts(utils::text("service", "配置正确").c_str());
    return Done;
}

int run(const Configuration& configuration)
{
    EventLog log(configuration.log);
    log.info("starting", {{"version", QCoreApplication::applicationVersion()}});
    ServiceManager manager;
    Daemon daemon(configuration, log);
    StoreOpener opener(configuration.store, log);
    bool isServing = false;
    const auto fail = [&](const QString& reason) {
        log.error("start_failed", {LogField::ownText("error", reason.toStdString())});
        printError(reason);
        QCoreApplication::exit(Failed);
    };
    QObject::connect(&opener, &StoreOpener::sigWaiting, &daemon, [&] {
        manager.setStatus(QCoreApplication::translate("service", "正在等待数据库：%1").arg(opener.reason()));
    });
    QObject::connect(&opener, &StoreOpener::sigFailed, &daemon, [&] { fail(opener.reason()); });
    QObject::connect(&opener, &StoreOpener::sigOpened, &daemon, [&] {
        const utils::NVError error = daemon.start(opener.takeStore());
        if (!error.isSuccess()) {
            return fail(QString::fromStdString(error.errorMsg()));
        }
        isServing = true;
        log.info("started");
        manager.ready();
    });
    QObject::connect(&daemon, &Daemon::sigStopped, QCoreApplication::instance(), &QCoreApplication::quit,
                     Qt::QueuedConnection);
    const SignalWatcher signalWatcher([&](int number) {
        if (number == SIGHUP) {
            // Before the start is over there is nothing to read again, and the service is not ready afterwards.
            if (isServing) {
                manager.reloading();
                daemon.reloadCertificate();
                manager.ready();
            }
            return;
        }
        manager.stopping();
        if (isServing) {
            return daemon.stop();
        }
        // The database may not answer for long. It rolls back what it was doing for a process that ends.
        log.info("stopped");
        std::quick_exit(Done);
    });
    manager.setStatus(QCoreApplication::translate("service", "正在打开数据库"));
    opener.start();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-dataserviced"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QAV_VERSION));

    service::registerTexts();
    QStringList arguments = QCoreApplication::arguments();
    QString problem;
    if (!utils::chooseLanguage(arguments, problem)) {
        printError(problem);
        return WrongUse;
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("service", "通过网络向客户端提供数据库中的分系统"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions(commandLineOptions());
    parser.process(arguments);
    if (!parser.positionalArguments().isEmpty()) {
        printError(QCoreApplication::translate("service", "未知的参数 %1").arg(parser.positionalArguments().first()));
        return WrongUse;
    }

    ConfigurationResult result = loadConfiguration(parser.value(QStringLiteral("config")));
    if (parser.isSet(QStringLiteral("store"))) {
        result.configuration.store = parser.value(QStringLiteral("store"));
    }
    if (parser.isSet(QStringLiteral("check-config"))) {
        return check(result);
    }
    const QStringList defects = defectsOf(result);
    for (const QString& defect : defects) {
        printError(defect);
    }
    return defects.isEmpty() ? run(result.configuration) : WrongUse;
}
