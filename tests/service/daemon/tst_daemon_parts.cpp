// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ClientLink.h"
#include "service/daemon/Installation.h"
#include "service/daemon/LogInGuard.h"
#include "service/daemon/Request.h"
#include "service/daemon/TlsCredentials.h"
#include "support/TestProgram.h"
#include "support/records/Requests.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace testservice;
using namespace service::daemon;
using std::chrono::seconds;

namespace
{

ConfigurationResult configured(const char* text, const QString& directory)
{
    return readConfiguration({{QString(), text}}, directory);
}

QStringList mistakesOf(const char* text)
{
    QStringList mistakes;
    for (const ConfigurationMistake& mistake : configured(text, "/etc/qav").mistakes) {
        mistakes << describe(mistake);
    }
    return mistakes;
}

constexpr char Smallest[] = "[store]\nlocation = \"a.db\"\n[[listen]]\naddress = \"::1\"\nport = 1\nplaintext = true\n";

} // namespace

class DaemonPartsTest : public QObject
{
    Q_OBJECT

private slots:
    void configurationIsReadWithItsDefaults()
    {
        const ConfigurationResult result = configured(Smallest, "/etc/qav");
        QVERIFY(result.mistakes.empty());
        const Configuration& configuration = result.configuration;
        QCOMPARE(configuration.store, QString("/etc/qav/a.db"));
        QCOMPARE(configuration.listen.size(), std::size_t(1));
        QVERIFY(configuration.listen[0].plaintext);
        QCOMPARE(configuration.listen[0].port, 1);
        QCOMPARE(configuration.limits.connections, 256);
        QVERIFY(!configuration.monitor);
    }

    void everyKeyIsRead()
    {
        const ConfigurationResult result = configured(R"(
[store]
location = "postgresql://a,b/qav"
[[listen]]
sub_system = "东"
address = "10.0.0.1"
port = 7443
[[listen]]
sub_system = "西"
address = "10.0.0.1"
port = 7444
[tls]
certificate = "tls/a.pem"
key = "/k.pem"
[limits]
connections = 1
connections_per_address = 2
requests_per_connection = 3
held_mebibytes_per_connection = 4
held_mebibytes = 8
output_bytes_per_connection = 65536
waiting_log_ins = 6
received_mebibytes = 16
[timeouts]
handshake_seconds = 1
log_in_seconds = 2
message_seconds = 6
keep_alive_seconds = 3
stall_seconds = 4
reply_seconds = 5
drain_seconds = 0
[log_in]
failures_per_user = 1
failures_per_address = 2
lock_seconds = 3
longest_lock_seconds = 4
[workers]
requests = 7
log_ins = 3
[monitor]
address = "127.0.0.1"
port = 9
[log]
level = "warning"
format = "text"
)",
                                                      "/etc/qav");
        QStringList mistakes;
        for (const ConfigurationMistake& mistake : result.mistakes) {
            mistakes << describe(mistake);
        }
        QCOMPARE(mistakes, QStringList());
        const Configuration& c = result.configuration;
        QCOMPARE(c.store, QString("postgresql://a,b/qav"));
        QCOMPARE(c.listen[1].subSystem, QString("西"));
        QCOMPARE(c.tls.certificateFile, QString("/etc/qav/tls/a.pem"));
        QCOMPARE(c.tls.keyFile, QString("/k.pem"));
        const std::vector<int> numbers = {c.limits.connections,
                                          c.limits.connectionsPerAddress,
                                          c.limits.requestsPerConnection,
                                          c.limits.heldMebibytesPerConnection,
                                          c.limits.heldMebibytes,
                                          c.limits.outputBytesPerConnection / 65536 * 5,
                                          c.limits.waitingLogIns,
                                          c.limits.receivedMebibytes,
                                          c.timeouts.handshakeSeconds,
                                          c.timeouts.logInSeconds,
                                          c.timeouts.messageSeconds,
                                          c.timeouts.keepAliveSeconds,
                                          c.timeouts.stallSeconds,
                                          c.timeouts.replySeconds,
                                          c.timeouts.drainSeconds,
                                          c.logIns.failuresPerUser,
                                          c.logIns.failuresPerAddress,
                                          c.logIns.lockSeconds,
                                          c.logIns.longestLockSeconds,
                                          c.workers.requests,
                                          c.workers.logIns,
                                          c.monitor->port};
        QCOMPARE(numbers, (std::vector<int>{1, 2, 3, 4, 8, 5, 6, 16, 1, 2, 6, 3, 4, 5, 0, 1, 2, 3, 4, 7, 3, 9}));
        QCOMPARE(c.log.level, ELogLevel::Warning);
        QCOMPARE(c.log.format, ELogFormat::Text);
    }

    void everyMistakeIsFound_data()
    {
        const support::DataRows<QByteArray, QString> add("added", "mistake");
        const auto row = [&add](const char* added, const char* mistake) { add(added, added, QString(mistake)); };
        row("[workers]\nrequests = 0", "第8行：配置项 workers.requests 必须是 1 到 256 的整数");
        row("[workers]\nrequests = 1.5", "第8行：配置项 workers.requests 必须是 1 到 256 的整数");
        row("[workers]\nlog_ins = 5", "第8行：配置项 workers.log_ins 必须是 1 到 4 的整数");
        row("[monitor]\naddress = \"10.0.0.1\"\nport = 1", "第8行：配置项 monitor.address 只能是本机回环地址");
        row("[monitor]\naddress = \"localhost\"\nport = 1", "第8行：配置项 monitor.address 不是有效的IP地址");
        row("[monitor]\nport = 1", "第7行：配置项 monitor.address 缺失");
        row("[tls]\ncertificate = \"a\"", "第7行：配置项 tls.key 缺失");
        row("[log]\nlevel = \"loud\"", "第8行：配置项 log.level 只能是 debug、info、warning、error");
        row("[surprise]\nx = 1", "第7行：未知的配置项 surprise");
        row("log = 3", "第7行：未知的配置项 listen.log"); // it belongs to the table before
        row("[log]\nlevel = ", "不符合TOML格式");
        row("[[listen]]\nsub_system = \"x\"\naddress = \"::1\"\nport = 1\nplaintext = true",
            "第3行：配置项 listen.sub_system 缺失");
        row("[[listen]]\nsub_system = \"x\"\naddress = \"::1\"\nport = 1\nplaintext = true",
            "第10行：配置项 listen.port 重复");
        row("[[listen]]\nsub_system = \"x\"\naddress = \"::1\"\nport = 2", "缺少 [tls] 一节");
    }
    void everyMistakeIsFound()
    {
        QFETCH(QByteArray, added);
        QFETCH(QString, mistake);
        const QStringList mistakes = mistakesOf(Smallest + added + '\n');
        QVERIFY2(!mistakes.filter(mistake).isEmpty(), qPrintable(mistakes.join('\n')));
    }

    void emptyAndForeignFilesAreMistakes()
    {
        QCOMPARE(mistakesOf(""), QStringList{"缺少 [[listen]] 一节"});
        QCOMPARE(mistakesOf("\xFF\xFE").size(), 1);
        QCOMPARE(mistakesOf("listen = 3"), QStringList{"第1行：配置项 listen 的每一项写作 [[listen]]"});
    }

    void locksGrowWithEveryFailureAndEndBySilence()
    {
        LogInGuard guard({2, 100, 5, 60});
        TimePoint now{std::chrono::hours(1)};
        const auto locked = [&] { return std::chrono::duration_cast<seconds>(guard.lockedFor("a", "u", now)).count(); };
        guard.failed("a", "u", now);
        QCOMPARE(locked(), 0);
        for (const int expected : {5, 10, 20, 40, 60, 60}) {
            guard.failed("a", "u", now);
            QCOMPARE(locked(), expected);
            now += seconds(expected);
            QCOMPARE(locked(), 0);
        }
        now += seconds(61);
        guard.failed("a", "u", now);
        QCOMPARE(locked(), 0);
        guard.failed("a", "u", now);
        QCOMPARE(locked(), 5);
    }

    void rightLogInForgivesTheUserAndNotTheAddress()
    {
        LogInGuard guard({2, 3, 5, 60});
        const TimePoint now{std::chrono::hours(1)};
        guard.failed("a", "u", now);
        guard.succeeded("a", "u", now);
        guard.failed("a", "u", now);
        QCOMPARE(guard.lockedFor("a", "u", now).count(), 0);
        guard.failed("a", "other", now);
        QVERIFY(guard.lockedFor("a", "third", now).count() > 0);
        QCOMPARE(guard.lockedFor("b", "u", now).count(), 0);
    }

    void userThatIsTriedFromEverywhereIsLockedEverywhere()
    {
        LogInGuard guard({2, 100, 5, 60});
        const TimePoint now{std::chrono::hours(1)};
        for (int i = 0; i < 20; ++i) {
            QCOMPARE(guard.lockedFor("new", "u", now).count(), 0);
            guard.failed("address" + std::to_string(i), "u", now);
        }
        QVERIFY(guard.lockedFor("new", "u", now).count() > 0);
        QCOMPARE(guard.lockedFor("new", "v", now).count(), 0);
    }

    void nobodyElsesGuessesLockAUserOutOfTheOwnDesk()
    {
        LogInGuard guard({2, 3, 5, 60});
        const TimePoint now{std::chrono::hours(1)};
        guard.succeeded("desk", "u", now);
        for (int i = 0; i < 30; ++i) {
            guard.failed("address" + std::to_string(i), "u", now);
            guard.failed("desk", "v" + std::to_string(i), now);
        }
        QVERIFY(guard.lockedFor("new", "u", now).count() > 0);
        QVERIFY(guard.lockedFor("desk", "w", now).count() > 0);
        QCOMPARE(guard.lockedFor("desk", "u", now).count(), 0);
        // Guesses from the desk itself count.
        guard.failed("desk", "u", now);
        guard.failed("desk", "u", now);
        QVERIFY(guard.lockedFor("desk", "u", now).count() > 0);
        // Desks are not remembered without end; the oldest goes.
        for (int i = 0; i < 10000; ++i) {
            guard.succeeded("other", std::to_string(i), now + seconds(1));
        }
        guard.succeeded("desk", "w", now + seconds(2));
        QVERIFY(guard.lockedFor("desk", "w", now).count() == 0);
        QVERIFY(guard.lockedFor("desk", "x", now).count() > 0);
    }

    void guardRemembersABoundedNumberOfAttempts()
    {
        LogInGuard guard({1, 1000000, 5, 60});
        TimePoint now{std::chrono::hours(1)};
        guard.failed("a", "first", now);
        now += seconds(1);
        for (int i = 0; i < 6000; ++i) {
            guard.failed("a", "u" + std::to_string(i), now);
        }
        QCOMPARE(guard.lockedFor("a", "first", now).count(), 0); // the oldest is forgotten
        QVERIFY(guard.lockedFor("a", "u5999", now).count() > 0);
    }

    void whateverIsLoggedStaysOneLineOfJson()
    {
        QStringList lines;
        EventLog log({ELogLevel::Info, ELogFormat::Json},
                     [&](const std::string& line) { lines << QString::fromStdString(line); });
        const std::string nasty = std::string("a\"b\\c\nd\r\0e\x7f\xff", 12) + "\u2028\u202e文";
        log.info("x", {{"text", nasty}, {"number", 7}, {"flag", true}, {"long", std::string(10000, 'y')}});
        log.debug("not wanted");
        QCOMPARE(lines.size(), 1);
        log.info("x", {LogField::ownText("error", std::string(10000, 'z'))});
        QVERIFY(lines.takeLast().contains(QString(10000, 'z')));
        QVERIFY(!lines[0].contains('\n') && !lines[0].contains(QChar(0x202e)));
        QVERIFY(lines[0].size() < 2000);
        const QJsonObject event = QJsonDocument::fromJson(lines[0].toUtf8()).object();
        QCOMPARE(event["event"].toString(), QString("x"));
        QCOMPARE(event["level"].toString(), QString("info"));
        QCOMPARE(event["number"].toInt(), 7);
        QCOMPARE(event["flag"].toBool(), true);
        QVERIFY(event["text"].toString().startsWith("a\"b\\c\nd\r"));
        QVERIFY(event["text"].toString().endsWith("文"));
    }

    void textLogNamesItsFields()
    {
        QStringList lines;
        EventLog log({ELogLevel::Warning, ELogFormat::Text},
                     [&](const std::string& line) { lines << QString::fromStdString(line); });
        log.warning("log_in_locked", {{"user", "a b"}, {"count", 3}});
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines[0].endsWith(" warning log_in_locked user=\"a b\" count=3"), qPrintable(lines[0]));
    }

    void aCheckEndsWhenItsRequestIsCancelled()
    {
        constexpr int Groups = 50;
        const nvservice::CKolmQueryDataReq query = support::queryOf(nvservice::DataType::Finding);
        Request cancelled(1, false, query);
        Request whole(2, false, query);
        int statements = 0;
        service::StoreOptions options;
        options.faultHook = [&](const QString& sql) {
            ++statements;
            cancelled.job->isUnwanted = cancelled.job->isUnwanted || sql.contains("group_risk_config");
            return false;
        };
        ServiceFixture fixture(options);
        storeGroups(fixture, Groups);
        fixture.admin();
        cancelled.job->isUnwanted = false;
        statements = 0;
        cancelled.job->carryOut(fixture.east(), fixture.admin());
        QVERIFY(cancelled.job->isUnwanted);
        QVERIFY2(statements < Groups, qPrintable(QString::number(statements)));
        whole.job->carryOut(fixture.east(), fixture.admin());
        QVERIFY(whole.job->reply.error.isSuccess());
        QVERIFY2(statements > Groups, qPrintable(QString::number(statements)));
    }

    void credentialsAreCheckedBeforeAnybodyConnects()
    {
        using support::TestCertificates;
        TestCertificates& made = certificates();
        QVERIFY(loadTlsCredentials({made.certificate(), made.key()}).error.isEmpty());
        QVERIFY(loadTlsCredentials({made.certificate(), made.otherKey()}).error.contains("不匹配"));
        QVERIFY(loadTlsCredentials({made.key(), made.key()}).error.contains("没有PEM格式的证书"));
        QVERIFY(loadTlsCredentials({made.certificate(), made.certificate()}).error.contains("没有可用的PEM私钥"));
        QVERIFY(loadTlsCredentials({"/none", made.key()}).error.contains("无法读取证书文件"));
        QVERIFY(loadTlsCredentials({made.certificate(), "/none"}).error.contains("无法读取私钥文件"));
        const TlsCredentials expired =
            loadTlsCredentials({made.certificate(TestCertificates::EKind::Expired), made.key()});
        QVERIFY(expired.error.isEmpty());
        QVERIFY(textOfEnd(expired.end).contains("已于"));
        const QDateTime now = QDateTime::currentDateTime();
        QVERIFY(!isEndNear({}));
        QVERIFY(isEndNear(expired.end));
        QVERIFY(isEndNear(now.addDays(29)));
        QVERIFY(!isEndNear(now.addDays(31)));
        QVERIFY(textOfEnd(now.addDays(29)).contains("将于"));
    }

    void addressesAreLimitedByTheirNetwork()
    {
        using service::daemon::ClientLink;
        QCOMPARE(ClientLink::limitedAddress(QHostAddress("10.1.2.3")), std::string("10.1.2.3"));
        QCOMPARE(ClientLink::limitedAddress(QHostAddress("::ffff:10.1.2.3")), std::string("10.1.2.3"));
        QCOMPARE(ClientLink::limitedAddress(QHostAddress("2001:db8:1:2:3:4:5:6")), std::string("2001:db8:1:2::"));
    }
};

TEST_WITHOUT_WIDGETS(DaemonPartsTest)
#include "tst_daemon_parts.moc"
