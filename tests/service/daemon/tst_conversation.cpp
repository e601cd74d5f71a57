// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ConversationFixture.h"
#include "service/daemon/Installation.h"
#include "support/TestProgram.h"

using namespace testservice;
using nvservice::DataType::AccountGroup;
using std::chrono::seconds;

namespace
{

/// Enough groups for a reply of several chunks.
constexpr int Groups = 5000;

void fillWithGroups(ConversationFixture& server)
{
    storeGroups(server.fixture, Groups);
}

} // namespace

class ConversationTest : public ServerTest
{
    Q_OBJECT

private slots:
    void operationsAreCarriedOutInOrderAndAQuerySeesThem()
    {
        UserTalk talk(*m_server);
        talk.query(2, AccountGroup);
        talk.addGroup(3, "一");
        talk.addGroup(4, "二");
        talk.query(5, AccountGroup);
        QCOMPARE(m_server->requests.waiting(), std::size_t(2)); // the first query and the first operation
        m_server->requests.runOne();
        m_server->requests.runOne();
        QCOMPARE(m_server->requests.waiting(), std::size_t(1)); // the second operation
        m_server->requests.runOne();
        QCOMPARE(m_server->requests.waiting(), std::size_t(1)); // the second query
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 2 (0), replyEnd 3 (0), replyEnd 4 (0)"));
        m_server->requests.runOne();
        const std::vector<wire::Message> answer = talk.hear();
        QCOMPARE(Talk::describe(answer), std::string("replyBegin 5, replyChunk 5, replyEnd 5 (0)"));
        QCOMPARE(std::get<wire::ReplyBegin>(answer[0]).totalCount, 2);
        QCOMPARE(std::get<wire::ReplyEnd>(answer[2]).recordCount, std::int64_t{2});
    }

    void fewQueriesOfOneClientRunAtATime()
    {
        UserTalk talk(*m_server);
        for (int id = 2; id < 12; ++id) {
            talk.query(id);
        }
        QCOMPARE(m_server->requests.waiting(), std::size_t(4));
        m_server->requests.runAll();
        QCOMPARE(QString::fromStdString(Talk::describe(talk.hear())).count("replyEnd"), 10);
    }

    void readingStopsAtTheLimitOfRequestsAndGoesOnAfterwards()
    {
        m_server->context.limits.requestsPerConnection = 3;
        UserTalk talk(*m_server);
        for (int id = 2; id < 8; ++id) {
            talk.query(id);
        }
        QVERIFY(!talk.conversation().wantsInput());
        m_server->requests.runAll();
        // Answered, but nobody takes the answers: still nothing more is read.
        QVERIFY(!talk.conversation().wantsInput());
        QCOMPARE(m_server->requests.waiting(), std::size_t(0));
        for (int i = 0; i < 10; ++i) {
            talk.hear();
            m_server->requests.runAll();
        }
        QVERIFY(talk.conversation().wantsInput());
        talk.query(9);
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyBegin 9, replyChunk 9, replyEnd 9 (0)"));
    }

    void clientThatOnlyPingsAndTakesNothingIsNotReadOn()
    {
        Talk talk(*m_server);
        talk.sayHello();
        int pings = 0;
        while (talk.conversation().wantsInput() && pings < 100000) {
            talk.say(wire::Ping{++pings});
        }
        QVERIFY(pings < 5000);
        std::size_t bytes = 0;
        while (true) {
            const bson::BSONObj message = talk.conversation().takeMessage();
            if (message.isEmpty()) {
                break;
            }
            bytes += static_cast<std::size_t>(message.objsize());
        }
        QVERIFY(bytes < 80 * 1024);
        QVERIFY(talk.conversation().wantsInput());
    }

    void largeReplyIsEncodedWhenItIsTakenAndLetsOthersPass()
    {
        fillWithGroups(*m_server);
        UserTalk talk(*m_server);
        talk.query(2, AccountGroup);
        talk.query(3);
        m_server->requests.runAll();
        const std::vector<wire::Message> answer = talk.hear();
        const QString heard = QString::fromStdString(Talk::describe(answer));
        QVERIFY2(
            heard.startsWith("replyBegin 2, replyBegin 3, replyChunk 2, replyChunk 3, replyChunk 2, replyEnd 3 (0)"),
            qPrintable(heard));
        QVERIFY(heard.endsWith("replyChunk 2, replyEnd 2 (0)"));
        std::vector<nvservice::IDataPtr> records;
        for (const wire::Message& message : answer) {
            const auto* chunk = std::get_if<wire::ReplyChunk>(&message);
            if (chunk && chunk->id == 2) {
                QVERIFY(chunk->frame.size() < 2 * wire::ReplyChunkBytes);
                QVERIFY(chunk->records(records).isSuccess());
            }
        }
        QCOMPARE(records.size(), std::size_t(Groups));
    }

    void noFurtherQueryBeginsWhileMuchIsHeld()
    {
        fillWithGroups(*m_server);
        m_server->context.limits.heldMebibytesPerConnection = 1;
        UserTalk talk(*m_server);
        talk.query(2, AccountGroup);
        m_server->requests.runAll();
        talk.query(3, AccountGroup);
        talk.addGroup(4, "新");
        QCOMPARE(m_server->requests.waiting(), std::size_t(1)); // the operation
        int taken = 0;
        while (m_server->requests.waiting() < 2 && !talk.conversation().takeMessage().isEmpty()) {
            ++taken;
        }
        QVERIFY2(taken >= 2, qPrintable(QString::number(taken))); // a chunk, and records are left
        m_server->requests.runAll();
        const QString rest = QString::fromStdString(Talk::describe(talk.hear()));
        QVERIFY(rest.contains("replyChunk 2") && rest.contains("replyEnd 3 (0)"));
        QCOMPARE(m_server->held.bytes(), std::size_t(0));
    }

    void onlySmallQueriesBeginWhileOthersHoldTooMuch()
    {
        fillWithGroups(*m_server);
        Talk slow(*m_server), other(*m_server);
        slow.enter();
        other.enter();
        const auto ask = [&](Talk& talk, std::int64_t id) {
            talk.query(id);
            talk.query(id + 1, AccountGroup);
            m_server->requests.runAll();
        };
        ask(other, 2); // from which the sizes are known
        other.hear();
        m_server->held = service::daemon::HeldBytes(1024 * 1024);
        m_server->held.learn("query_12231", 200);
        m_server->now += seconds(3);
        QCOMPARE(slow.conversation().lateness().count(), 0.0);
        ask(slow, 2);
        QVERIFY(m_server->held.isFull());
        m_server->now += seconds(3);
        QCOMPARE(slow.conversation().lateness().count(), 3.0);
        for (int i = 0; i < 5; ++i) { // the beginnings, the short answer, a chunk of 256 KiB
            slow.conversation().takeMessage();
        }
        QVERIFY(slow.conversation().lateness().count() > 1.5 && slow.conversation().lateness().count() < 2.5);
        ask(other, 4);
        QCOMPARE(Talk::describe(other.hear()), std::string("replyBegin 4, replyChunk 4, replyEnd 4 (0)"));
        slow.destroy();
        QCOMPARE(m_server->held.bytes(), std::size_t(0));
        other.conversation().checkTime();
        m_server->requests.runAll();
        QVERIFY(QString::fromStdString(Talk::describe(other.hear())).endsWith("replyEnd 5 (0)"));
        QCOMPARE(m_server->held.bytes(), std::size_t(0));
    }

    void cancelledRequestEndsAtOnceInEveryState()
    {
        fillWithGroups(*m_server);
        UserTalk talk(*m_server);
        // Waiting behind an operation.
        talk.addGroup(2, "先");
        talk.query(3, AccountGroup);
        talk.say(wire::Cancel{3});
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 3 (4)"));
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 2 (0)"));
        // At the database.
        talk.query(4, AccountGroup);
        m_server->requests.runOne(false);
        talk.say(wire::Cancel{4});
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 4 (4)"));
        m_server->requests.deliver();
        QCOMPARE(Talk::describe(talk.hear()), std::string());
        // On its way.
        talk.query(5, AccountGroup);
        m_server->requests.runAll();
        talk.conversation().takeMessage();
        talk.conversation().takeMessage();
        talk.say(wire::Cancel{5});
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 5 (4)"));
        // Gone, and never there.
        talk.say(wire::Cancel{5});
        talk.say(wire::Cancel{6});
        QCOMPARE(Talk::describe(talk.hear()), std::string());
        m_server->requests.runAll();
        talk.query(7);
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyBegin 7, replyChunk 7, replyEnd 7 (0)"));
    }

    void operationThatHasBegunIsCarriedOutAndAnsweredDespiteACancel()
    {
        UserTalk talk(*m_server);
        talk.addGroup(2, "甲");
        talk.addGroup(3, "乙");
        talk.say(wire::Cancel{2});
        talk.say(wire::Cancel{3});
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 3 (4)"));
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 2 (0)"));
        QCOMPARE(m_server->fixture.text("SELECT group_concat(name) FROM account_group"), std::string("甲"));
    }

    void conversationThatIsGoneHearsOfNothing()
    {
        UserTalk talk(*m_server);
        talk.addGroup(2, "甲");
        talk.query(3);
        Talk other(*m_server);
        other.sayHello();
        other.say(wire::LogIn{1, "admin", "right"});
        talk.destroy();
        other.destroy();
        m_server->requests.runAll();
        m_server->logIns.runAll();
        QCOMPARE(m_server->fixture.number("SELECT count(*) FROM account_group"), std::int64_t{1});
    }

    void whoSaysNothingIsSentAway_data()
    {
        const support::DataRows<int, int> row("stage", "allowedSeconds");
        row("no hello", 0, 10);
        row("no log-in", 1, 300);
        row("silent user", 2, 60);
    }
    void whoSaysNothingIsSentAway()
    {
        QFETCH(int, stage);
        QFETCH(int, allowedSeconds);
        Talk talk(*m_server);
        if (stage == 1) {
            talk.sayHello();
        }
        if (stage == 2) {
            talk.enter();
        }
        for (int second = 0; second < allowedSeconds; ++second) {
            m_server->now += seconds(1);
            if (stage == 1) {
                talk.say(wire::Pong{1});
            }
            talk.conversation().checkTime();
            QVERIFY(!talk.conversation().hasEnded());
        }
        m_server->now += seconds(1);
        talk.conversation().checkTime();
        QVERIFY(talk.conversation().hasEnded());
        QCOMPARE(talk.conversation().reason(), "timeout");
        QVERIFY(QString::fromStdString(Talk::describe(talk.hear())).endsWith("fault (3)"));
    }

    void quietClientThatAnswersPingsStays()
    {
        UserTalk talk(*m_server);
        int pings = 0;
        for (int second = 0; second < 600; ++second) {
            m_server->now += seconds(1);
            talk.conversation().checkTime();
            for (const wire::Message& message : talk.hear()) {
                const auto* ping = std::get_if<wire::Ping>(&message);
                QVERIFY(ping);
                talk.say(wire::Pong{ping->id});
                ++pings;
            }
        }
        QVERIFY(!talk.conversation().hasEnded());
        QCOMPARE(pings, 30);
    }

    void clientThatIsNotReadIsNotSilent()
    {
        m_server->context.limits.requestsPerConnection = 1;
        UserTalk talk(*m_server);
        talk.query(2);
        for (int second = 0; second < 300; ++second) {
            m_server->now += seconds(1);
            talk.conversation().checkTime();
        }
        QVERIFY(!talk.conversation().hasEnded());
        m_server->requests.runAll();
        QVERIFY(QString::fromStdString(Talk::describe(talk.hear())).contains("replyEnd 2 (0)"));
    }

    void whoTakesAnAnswerTooSlowlyIsSentAway()
    {
        UserTalk talk(*m_server);
        talk.query(2);
        m_server->requests.runAll();
        for (int second = 0; second <= 600; ++second) {
            QVERIFY(!talk.conversation().hasEnded());
            talk.say(wire::Pong{1});
            talk.conversation().checkTime();
            m_server->now += seconds(1);
        }
        talk.conversation().checkTime();
        QVERIFY(talk.conversation().hasEnded());
    }

    void stoppingServerAnswersWhatItHasAndRefusesTheRest()
    {
        UserTalk talk(*m_server);
        talk.addGroup(2, "甲");
        talk.query(3);
        talk.conversation().beginClosing(5000);
        QVERIFY(!talk.conversation().isOver());
        talk.query(4);
        const std::vector<wire::Message> heard = talk.hear();
        QCOMPARE(Talk::describe(heard), std::string("closing, replyEnd 4 (2)"));
        QCOMPARE(std::get<wire::Closing>(heard[0]).graceMilliseconds, 5000);
        QVERIFY(!talk.conversation().isOver());
        m_server->requests.runAll();
        QVERIFY(!talk.conversation().isOver());
        QCOMPARE(Talk::describe(talk.hear()),
                 std::string("replyEnd 2 (0), replyBegin 3, replyChunk 3, replyEnd 3 (0)"));
        QVERIFY(talk.conversation().isOver());
        QCOMPARE(talk.conversation().reason(), "shutdown");
    }

    void figuresOfRequestsAreKept()
    {
        {
            UserTalk talk(*m_server);
            talk.query(2);
            talk.query(3, 4711);
            talk.addGroup(4, "甲");
            m_server->requests.runAll();
            talk.hear();
            talk.query(5);
            const QString text = QString::fromStdString(m_server->metrics.text());
            for (const char* line :
                 {"qav_requests_total{kind=\"log_in\",outcome=\"success\"} 1",
                  "qav_requests_total{kind=\"query_12231\",outcome=\"success\"} 1",
                  "qav_requests_total{kind=\"query_other\",outcome=\"unsupported\"} 1",
                  "qav_requests_total{kind=\"operate_625\",outcome=\"success\"} 1",
                  "qav_request_duration_seconds_count{kind=\"operate_625\"} 1", "qav_requests_under_way 1"}) {
                QVERIFY2(text.contains(line), line);
            }
        }
        QVERIFY(QString::fromStdString(m_server->metrics.text()).contains("qav_requests_under_way 0"));
    }
};

TEST_WITHOUT_WIDGETS(ConversationTest)
#include "tst_conversation.moc"
