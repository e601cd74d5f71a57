// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"
#include "service/daemon/KillRounds.h"
#include "service/daemon/NotifySocket.h"
#include "support/TestProgram.h"

#include <QElapsedTimer>

#include <atomic>

using namespace testservice;
using nvservice::DataType::AccountGroup;

namespace
{

struct Outcome {
    int exitCode = -1;
    QString output;
    QString errors;
};

Outcome run(const QStringList& arguments)
{
    QProcess process;
    process.start(support::builtFile("bin/qav-dataserviced"), arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        return {};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

/// The real daemon, in a process of its own.
class DaemonProcessTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory{directoryTemplate()};

    void configure(DaemonProcess& daemon, Installation& installation, const QByteArray& sections = {})
    {
        daemon.configure(installation.fixture.location(), East, certificates().certificate(), certificates().key(),
                         sections);
    }
    bool enterTls(RawClient& client, const DaemonProcess& daemon)
    {
        return enter(client, daemon.port(), certificates().authority());
    }
    /// Starts a daemon that has ten long answers for a client who has taken the beginning of the first and no more.
    bool beginUntakenAnswers(Installation& installation, DaemonProcess& daemon, RawClient& client, int drainSeconds)
    {
        storeGroups(installation.fixture, 20000);
        configure(daemon, installation, "[timeouts]\ndrain_seconds = " + QByteArray::number(drainSeconds) + '\n');
        QString errors;
        if (!daemon.start(errors) || !enterTls(client, daemon)) {
            qWarning("%s%s", qPrintable(errors), qPrintable(client.errorText()));
            return false;
        }
        client.socket().setReadBufferSize(1024);
        for (int i = 0; i < 10; ++i) {
            client.sendQuery(AccountGroup);
        }
        return client.next().has_value();
    }

private slots:
    void clientWorksWithADaemonOfItsOwnProcess()
    {
        Installation installation;
        DaemonProcess daemon(m_directory.path());
        configure(daemon, installation, "[monitor]\naddress = \"127.0.0.1\"\nport = 0\n");
        QString errors;
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        RawClient client;
        QVERIFY2(enterTls(client, daemon), qPrintable(client.errorText()));
        COMPARE_CODE(client.operate(AccountGroup, EZvDataOperation::Add, group("甲", First, {future("8001")}), "1"),
                     EErrorCode::Success);
        QCOMPARE(client.query(AccountGroup).records.size(), std::size_t(1));
        QCOMPARE(installation.fixture.text("SELECT name FROM account_group"), std::string("甲"));
        QCOMPARE(httpGet(daemon.monitorPort(), "/health").status, 200);
        daemon.terminate();
        QVERIFY(client.expect<wire::Closing>());
        QCOMPARE(daemon.waitForEnd(), 0);
        QVERIFY(client.waitUntilClosed());
        QVERIFY(daemon.log().last().contains("\"event\":\"stopped\""));
    }

    void terminatedUnderLoadItAnswersWhatItHas()
    {
        Installation installation;
        DaemonProcess daemon(m_directory.path());
        configure(daemon, installation);
        QString errors;
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        constexpr int clients = 4;
        constexpr int ahead = 5; // requests that are under way at a time
        std::atomic<int> answered{0}, closings{0}, lost{0}, refused{0}, succeeded{0};
        std::vector<std::future<void>> loads;
        for (int index = 0; index < clients; ++index) {
            loads.push_back(std::async(std::launch::async, [&, index] {
                RawClient client;
                if (!enterTls(client, daemon)) {
                    return;
                }
                int sent = 0;
                int ended = 0;
                const auto send = [&] {
                    const std::string name = "t" + std::to_string(index) + "-" + std::to_string(sent++);
                    client.sendOperation(AccountGroup, EZvDataOperation::Add, group(name, First, {future("8001")}),
                                         name);
                };
                while (sent < ahead) {
                    send();
                }
                bool isClosing = false;
                while (const auto message = client.next()) {
                    if (std::holds_alternative<wire::Closing>(*message)) {
                        isClosing = true;
                        ++closings;
                    } else if (const auto* end = std::get_if<wire::ReplyEnd>(&*message)) {
                        ++ended;
                        ++answered;
                        (end->error.isSuccess() ? succeeded : refused)++;
                        if (!isClosing) {
                            send();
                        }
                    }
                }
                lost += sent - ended;
            }));
        }
        QTRY_VERIFY_WITH_TIMEOUT(answered > 40, 60000);
        QElapsedTimer timer;
        timer.start();
        daemon.terminate();
        const int exitCode = daemon.waitForEnd();
        const qint64 milliseconds = timer.elapsed();
        loads.clear(); // waits
        QCOMPARE(exitCode, 0);
        QVERIFY2(milliseconds < 15000, qPrintable(QString::number(milliseconds)));
        QCOMPARE(closings.load(), clients);
        // What was carried out was answered, and nothing else was.
        QCOMPARE(installation.fixture.number("SELECT count(*) FROM account_group"), std::int64_t{succeeded.load()});
        // Only what was sent while the connection was being closed may have found nobody.
        QVERIFY2(lost <= clients * ahead, qPrintable(QString::number(lost)));
        QVERIFY(installation.fixture.store().checkIntegrity().isSuccess());
    }

    void clientThatTakesNothingDelaysTheEndNoLongerThanAllowed()
    {
        Installation installation;
        DaemonProcess daemon(m_directory.path());
        RawClient client;
        QVERIFY(beginUntakenAnswers(installation, daemon, client, 1));
        QElapsedTimer timer;
        timer.start();
        daemon.terminate();
        QCOMPARE(daemon.waitForEnd(), 0);
        QVERIFY(timer.elapsed() >= 900);
        QCOMPARE(daemon.log().filter("connections_cut").size(), 1);
    }

    void secondSignalEndsItAtOnce()
    {
        Installation installation;
        DaemonProcess daemon(m_directory.path());
        RawClient client;
        QVERIFY(beginUntakenAnswers(installation, daemon, client, 3600));
        daemon.terminate();
        QTRY_VERIFY(!daemon.log().filter("\"event\":\"stopping\"").isEmpty());
        daemon.terminate();
        QCOMPARE(daemon.waitForEnd(), 0);
    }

    void serviceManagerIsToldWhatHappens()
    {
        Installation installation;
        NotifySocket manager(m_directory.filePath("notify"));
        QVERIFY(manager.isOpen());
        DaemonProcess daemon(m_directory.path());
        daemon.setEnvironment("NOTIFY_SOCKET", m_directory.filePath("notify"));
        daemon.setEnvironment("WATCHDOG_USEC", "300000");
        configure(daemon, installation);
        QString errors;
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        QTRY_VERIFY(manager.heard().contains("READY=1"));
        QTRY_VERIFY(manager.heard().count("WATCHDOG=1") >= 3);
        daemon.hangUp();
        QTRY_VERIFY(manager.heard().contains("RELOADING=1"));
        QTRY_COMPARE(manager.heard().count("READY=1"), 2);
        // systemd 253 and newer need the moment when the reload began.
        const QString moment = manager.heard().filter("MONOTONIC_USEC=").value(0).section('=', 1);
        QVERIFY(moment.toLongLong() > 0);
        QVERIFY(!daemon.log().filter("certificate_reloaded").isEmpty());
        daemon.terminate();
        QCOMPARE(daemon.waitForEnd(), 0);
        QVERIFY(manager.heard().contains("STOPPING=1"));
    }

    void everyMistakeOfAConfigurationIsReportedWithItsLine()
    {
        QFile file(m_directory.filePath("wrong.toml"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[store]\n"
                   "location = 7\n"
                   "[[listen]]\n"
                   "address = \"0.0.0.0\"\n"
                   "port = 70000\n"
                   "plaintext = true\n"
                   "[limits]\n"
                   "conections = 5\n");
        file.close();
        const Outcome outcome = run({"--config", file.fileName(), "--check-config"});
        QCOMPARE(outcome.exitCode, 2);
        QCOMPARE(outcome.errors.split('\n', Qt::SkipEmptyParts),
                 (QStringList{"wrong.toml第2行：配置项 store.location 必须是非空文本",
                              "wrong.toml第5行：配置项 listen.port 必须是 0 到 65535 的整数",
                              "wrong.toml第6行：配置项 listen.plaintext 只能用于本机回环地址",
                              "wrong.toml第8行：未知的配置项 limits.conections",
                              "缺少数据库：[store] 一节的 location，或选项 --store"}));
        // It doesn't start with them either.
        QCOMPARE(run({"--config", file.fileName(), "--store", "x.db"}).exitCode, 2);
        QCOMPARE(run({"--config", m_directory.filePath("none.toml")}).exitCode, 2);
        QCOMPARE(run({"stray"}).exitCode, 2);
    }

    void rightConfigurationIsSaidToBeRight()
    {
        Installation installation;
        DaemonProcess daemon(m_directory.path());
        configure(daemon, installation);
        Outcome outcome = run({"--config", daemon.configurationFile(), "--check-config"});
        QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
        QVERIFY2(outcome.output.startsWith("store.location = "), qPrintable(outcome.output));
        QVERIFY(outcome.output.contains("listen.port = 0（daemon.toml第6行）\n"));
        QVERIFY(outcome.output.endsWith("）\n配置正确\n"));
        daemon.configure(installation.fixture.location(), East,
                         certificates().certificate(support::TestCertificates::EKind::Expired),
                         certificates().otherKey());
        outcome = run({"--config", daemon.configurationFile(), "--check-config"});
        QCOMPARE(outcome.exitCode, 2);
        QVERIFY(outcome.errors.contains("不匹配"));
        daemon.configure(installation.fixture.location(), "北分系统", {}, {});
        outcome = run({"--config", daemon.configurationFile()});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY(outcome.errors.contains("没有分系统“北分系统”"));
        QCOMPARE(run({"--version"}).output, QString("qav-dataserviced %1\n").arg(QAV_VERSION));
        outcome = run({"--help"});
        for (const char* option : {"--config", "--store", "--check-config", "--version", "--help"}) {
            QVERIFY2(outcome.output.contains(option), option);
        }
    }

    void exampleConfigurationIsRightButForItsFiles()
    {
        const Outcome outcome = run({"--config", support::sourceFile("packaging/dataserviced.toml"), "--check-config"});
        const QStringList mistakes = outcome.errors.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(mistakes.size(), 2);
        QVERIFY2(mistakes[0].startsWith("无法读取证书文件"), qPrintable(outcome.errors));
        QCOMPARE(mistakes[1], QString("数据库文件不存在（/var/lib/qav/qav.db）"));
    }

    void nothingAcknowledgedIsLostWhenItIsKilledUnderLoad()
    {
        const KillFigures figures = killRounds(8, 4, 4711);
        QVERIFY2(figures.failure.isEmpty(), qPrintable(figures.failure));
        QCOMPARE(figures.rounds, 8);
        QVERIFY(figures.acknowledged >= 8);
        QVERIFY(figures.unanswered > 0);
    }
};

TEST_WITHOUT_WIDGETS(DaemonProcessTest)
#include "tst_daemon_process.moc"
