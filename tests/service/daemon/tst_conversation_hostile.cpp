// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ConversationFixture.h"

#include "platform/wire/WireSamples.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

using namespace testservice;
using samples::WireSample;

namespace
{

/// Besides the others it has the user of the samples, with another password. Lives from the first test to the last.
std::unique_ptr<ConversationFixture> g_server;

ConversationFixture& server()
{
    return *g_server;
}

void forgetFailures()
{
    server().guard = service::daemon::LogInGuard(service::daemon::LogInSettings{});
}

enum class EStage { Greeting, Anonymous, LoggedIn };

void bring(Talk& talk, EStage stage)
{
    forgetFailures();
    if (stage == EStage::Anonymous) {
        talk.sayHello();
    } else if (stage == EStage::LoggedIn) {
        talk.enter();
    }
    talk.hear();
}

/// What the server says to bytes that come in any pieces, all work done.
std::string answersTo(Talk& talk)
{
    server().logIns.runAll();
    std::string heard;
    do {
        heard += Talk::describe(talk.hear()) + ";";
        server().requests.runAll();
    } while (server().requests.waiting() > 0);
    return heard + Talk::describe(talk.hear());
}

} // namespace

/// What a client can do to the server by what it sends.
class ConversationHostileTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        g_server = std::make_unique<ConversationFixture>();
        addUser(server().fixture.store(), server().fixture.server(0), "管理员", "other", {}, None);
    }
    void cleanupTestCase() { g_server.reset(); }
    void init() { forgetFailures(); }

    void everyMessageMayComeInTwoPiecesCutAnywhere_data()
    {
        const support::DataRows<int, int> row("sample", "stage");
        const std::vector<WireSample> all = samples::wireSamples();
        for (std::size_t i = 0; i < all.size(); ++i) {
            for (const EStage stage : {EStage::Greeting, EStage::Anonymous, EStage::LoggedIn}) {
                const int number = static_cast<int>(stage);
                if (wire::kindOf(all[i].frame) == "listen" && stage == EStage::LoggedIn) {
                    continue; // its answer comes with the next reading of changes, at any moment
                }
                row(QString("%1, stage %2").arg(all[i].name).arg(number), static_cast<int>(i), number);
            }
        }
    }
    void everyMessageMayComeInTwoPiecesCutAnywhere()
    {
        QFETCH(int, sample);
        QFETCH(int, stage);
        const wire::Frame frame = samples::wireSamples()[static_cast<std::size_t>(sample)].frame;
        Talk whole(server());
        bring(whole, static_cast<EStage>(stage));
        whole.say(frame);
        std::string expected = answersTo(whole);
        QVERIFY(expected.size() > 2 || frame.find("pong") != wire::Frame::npos ||
                frame.find("cancel") != wire::Frame::npos || wire::kindOf(frame) == "fault");
        // An operation with the same id gets the same answer, however often it comes.
        Talk talk(server());
        bring(talk, static_cast<EStage>(stage));
        for (std::size_t cut = 1; cut < frame.size(); ++cut) {
            // So many refused log-ins would end one conversation.
            const bool isLogIn = wire::kindOf(frame) == "logIn";
            if (isLogIn || talk.conversation().hasEnded() || stage != static_cast<int>(EStage::LoggedIn)) {
                Talk fresh(server());
                bring(fresh, static_cast<EStage>(stage));
                cutAndGoOn(fresh, frame, cut, expected);
            } else {
                cutAndGoOn(talk, frame, cut, expected);
            }
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }

    void messageThatEndsInTheMiddleLeavesNothingBehind()
    {
        for (const WireSample& sample : samples::wireSamples()) {
            for (std::size_t cut = 0; cut < sample.frame.size(); ++cut) {
                Talk talk(server());
                bring(talk, cut % 2 == 0 ? EStage::LoggedIn : EStage::Greeting);
                talk.say(sample.frame.substr(0, cut));
                QCOMPARE(talk.hear().size(), std::size_t(0));
                talk.destroy();
                QCOMPARE(server().requests.waiting() + server().logIns.waiting(), std::size_t(0));
            }
        }
    }

    void wholeTalkMayComeByteByByte()
    {
        Talk talk(server());
        wire::Frame all;
        for (const WireSample& sample : samples::clientSamples()) {
            all += sample.frame;
        }
        all += samples::frameOf(wire::encode(wire::Ping{77}));
        for (const char byte : all) {
            talk.say(wire::Frame(1, byte));
            server().logIns.runAll();
        }
        // The log-in of the samples is wrong, so the requests come from nobody, and the operation is too large for
        // that.
        QCOMPARE(Talk::describe(talk.hear()),
                 std::string("welcome, logInReply 11 (6), replyEnd 12 (6), replyEnd 13 (15), fault (6), pong 77"));
        QVERIFY(!talk.conversation().hasEnded());
    }

    void everyDamagedByteCostsAnErrorAndNotTheConnection_data() { everyMessageMayComeInTwoPiecesCutAnywhere_data(); }
    void everyDamagedByteCostsAnErrorAndNotTheConnection()
    {
        QFETCH(int, sample);
        QFETCH(int, stage);
        const wire::Frame frame = samples::wireSamples()[static_cast<std::size_t>(sample)].frame;
        for (std::size_t at = 4; at < frame.size(); ++at) {
            for (const char damage : {'\x01', '\x80', '\xFF'}) {
                wire::Frame damaged = frame;
                damaged[at] = static_cast<char>(damaged[at] ^ damage);
                Talk talk(server());
                bring(talk, static_cast<EStage>(stage));
                talk.say(damaged);
                const QString first = QString::fromStdString(answersTo(talk));
                if (first.contains("refused")) {
                    continue; // another message than the first one has to be is the end by intention
                }
                QVERIFY2(!talk.conversation().hasEnded(), qPrintable(QString::number(at)));
                QVERIFY2(first.count("replyEnd") + first.count("logInReply") + first.count("fault") <= 1,
                         qPrintable(first));
                if (static_cast<EStage>(stage) != EStage::Greeting) {
                    talk.say(wire::Ping{99});
                    QCOMPARE(Talk::describe(talk.hear()), std::string("pong 99"));
                }
            }
        }
    }

    void impossibleLengthEndsTheConversationWithAFault_data()
    {
        const support::DataRows<uint, int, int> row("length", "stage", "code");
        const auto add = [&row](uint length, EStage stage, EErrorCode code) {
            const int number = static_cast<int>(stage);
            row(QString("%1 in stage %2").arg(length).arg(number), length, number, static_cast<int>(code));
        };
        for (const EStage stage : {EStage::Greeting, EStage::Anonymous, EStage::LoggedIn}) {
            const auto limit =
                static_cast<uint>((stage == EStage::LoggedIn ? wire::LimitsAfterLogIn : wire::LimitsBeforeLogIn).bytes);
            for (const uint length : {0U, 1U, 4U, 0x80000000U, 0xFFFFFFFFU}) {
                add(length, stage, EErrorCode::Malformed);
            }
            for (const uint length : {limit + 1, 0x7FFFFFFFU}) {
                add(length, stage, EErrorCode::ResourceExhausted);
            }
        }
    }
    void impossibleLengthEndsTheConversationWithAFault()
    {
        QFETCH(uint, length);
        QFETCH(int, stage);
        QFETCH(int, code);
        Talk talk(server());
        bring(talk, static_cast<EStage>(stage));
        talk.say(support::littleEndian(length) + "whatever follows");
        QVERIFY(talk.conversation().hasEnded());
        QVERIFY(!talk.conversation().isOver());
        const auto fault = talk.hearOne<wire::Fault>();
        QCOMPARE(static_cast<int>(fault.error.code()), code);
        QVERIFY(talk.conversation().isOver());
        QCOMPARE(talk.conversation().reason(), "framing");
        QVERIFY(!talk.conversation().wantsInput());
        talk.say(wire::Ping{5});
        QCOMPARE(talk.hear().size(), std::size_t(0));
    }

    void deepNestingIsRefusedAndTheTalkGoesOn()
    {
        for (const std::size_t levels : {34, 1001, 10001}) {
            UserTalk talk(server());
            talk.say(support::nested(levels));
            QCOMPARE(talk.hearOne<wire::Fault>().error.code(), EErrorCode::ResourceExhausted);
            talk.query(2);
            server().requests.runAll();
            QCOMPARE(Talk::describe(talk.hear()), std::string("replyBegin 2, replyChunk 2, replyEnd 2 (0)"));
        }
        Talk stranger(server());
        stranger.sayHello();
        stranger.hear();
        stranger.say(support::nested(6));
        QCOMPARE(stranger.hearOne<wire::Fault>().error.code(), EErrorCode::ResourceExhausted);
    }

    void anythingBeforeTheHelloIsRefusedForGood()
    {
        for (const WireSample& sample : samples::wireSamples()) {
            const std::string name = sample.name;
            if (name == "hello") {
                continue;
            }
            Talk talk(server());
            talk.say(sample.frame);
            if (name == "operate") { // more than is read of a stranger
                QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 13 (15)"));
                continue;
            }
            const auto refused = talk.hearOne<wire::Refused>();
            QCOMPARE(refused.error.code(), EErrorCode::Malformed);
            QVERIFY(talk.conversation().isOver());
        }
    }

    void secondHelloAndMessagesOfAServerAreFaults()
    {
        UserTalk talk(server());
        talk.sayHello();
        QCOMPARE(talk.hearOne<wire::Fault>().error.code(), EErrorCode::Malformed);
        for (const WireSample& sample : samples::serverSamples()) {
            talk.say(sample.frame);
            if (wire::kindOf(sample.frame) == "fault") { // either side may send it, and nobody answers
                QCOMPARE(Talk::describe(talk.hear()), std::string());
                continue;
            }
            QCOMPARE(talk.hearOne<wire::Fault>().error.code(), EErrorCode::Malformed);
        }
        talk.query(2);
        server().requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyBegin 2, replyChunk 2, replyEnd 2 (0)"));
    }

    void clientOfAnotherVersionIsToldWhichOnesFit()
    {
        Talk talk(server());
        talk.say(wire::Hello{wire::NewestProtocol + 1, wire::NewestProtocol + 2, wire::sdkVersion(), "new"});
        const auto refused = talk.hearOne<wire::Refused>();
        QCOMPARE(refused.error.code(), EErrorCode::Unsupported);
        QCOMPARE(refused.newestProtocol, wire::NewestProtocol);
        QVERIFY(talk.conversation().isOver());
    }

    void requestBeforeTheLogInIsAnsweredWithNotLoggedIn()
    {
        Talk talk(server());
        talk.sayHello();
        talk.query(2);
        talk.addGroup(3, "x");
        QCOMPARE(Talk::describe(talk.hear()), std::string("welcome, replyEnd 2 (6), replyEnd 3 (15)"));
        QCOMPARE(server().requests.waiting(), std::size_t(0));
    }

    void unknownKindOfMessageIsUnsupported()
    {
        UserTalk talk(server());
        talk.say(samples::frameOf(BSON("type" << "subscribe"
                                              << "id" << 7LL)));
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 7 (14)"));
        talk.say(samples::frameOf(BSON("type" << "subscribe")));
        QCOMPARE(Talk::describe(talk.hear()), std::string("fault (14)"));
    }

    void messageThatBecomesNoRequestIsInMetricsAndLog_data()
    {
        const auto frame = [](const char* type) {
            return QByteArray::fromStdString(samples::frameOf(BSON("type" << type << "id" << 7LL)));
        };
        const support::DataRows<bool, QByteArray, QString, QString> row("isLoggedIn", "bytes", "kind", "outcome");
        const QByteArray welcome = QByteArray::fromStdString(samples::frameOf(BSON("type" << "welcome")));
        row("operation without content", true, frame("operate"), "operate_other", "malformed");
        row("query without content", true, frame("query"), "query_other", "malformed");
        row("log-in without content", false, frame("logIn"), "log_in", "malformed");
        row("unknown kind", true, frame("subscribe"), "message", "unsupported");
        row("ping without id", true, welcome, "message", "malformed");
        row("damaged length", true, QByteArray(8, '\xff'), "message", "malformed");
        QByteArray unreadable = QByteArray::fromStdString(
            samples::frameOf(BSON("type" << "operate"
                                         << "id" << 7LL << "filler" << std::string(200000, 'x'))));
        row("long operation without content", true, unreadable, "operate_other", "resource_exhausted");
    }

    void messageThatBecomesNoRequestIsInMetricsAndLog()
    {
        QFETCH(bool, isLoggedIn);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, kind);
        QFETCH(QString, outcome);
        ConversationFixture own;
        Talk talk(own);
        isLoggedIn ? talk.enter() : talk.sayHello();
        const QString before = QString::fromStdString(own.metrics.text());
        const QString counter = QString("qav_requests_total{kind=\"%1\",outcome=\"%2\"}").arg(kind, outcome);
        QVERIFY(!before.contains(counter));
        talk.say(bytes.toStdString());
        own.requests.runAll();
        talk.hear();
        const QString after = QString::fromStdString(own.metrics.text());
        QVERIFY2(after.contains(counter + " 1\n"), qPrintable(after));
        const QStringList lines = own.logged.filter("\"event\":\"message_refused\"");
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines[0].contains("\"kind\":\"" + kind + "\"") && lines[0].contains(outcome), qPrintable(lines[0]));
        QVERIFY(lines[0].contains(isLoggedIn ? "\"user\":\"admin\"" : "\"user\":\"\""));
        QCOMPARE(talk.conversation().refusedMessages(), std::int64_t{1});
    }

    void messagesWithoutSenseDoNotFillTheLog()
    {
        ConversationFixture own;
        Talk talk(own);
        talk.sayHello();
        for (int i = 0; i < 100; ++i) {
            talk.query(i + 1);
            talk.hear();
        }
        QCOMPARE(own.logged.filter("message_refused").size(), 10);
        QCOMPARE(talk.conversation().refusedMessages(), std::int64_t{100});
        QVERIFY(QString::fromStdString(own.metrics.text())
                    .contains("qav_requests_total{kind=\"query_12231\",outcome=\"not_logged_in\"} 100\n"));
    }

    void idThatIsUnderWayIsNotAnsweredForAnother()
    {
        UserTalk talk(server());
        talk.query(2);
        talk.query(2);
        talk.say(samples::frameOf(BSON("type" << "query"
                                              << "id" << 2LL)));
        QCOMPARE(Talk::describe(talk.hear()), std::string("fault (12), fault (5)"));
        server().requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyBegin 2, replyChunk 2, replyEnd 2 (0)"));
    }

private:
    static void cutAndGoOn(Talk& talk, const wire::Frame& frame, std::size_t cut, const std::string& expected)
    {
        forgetFailures();
        talk.say(frame.substr(0, cut));
        QCOMPARE(Talk::describe(talk.hear()), std::string());
        talk.say(frame.substr(cut));
        QCOMPARE(answersTo(talk), expected);
    }
};

TEST_WITHOUT_WIDGETS(ConversationHostileTest)
#include "tst_conversation_hostile.moc"
