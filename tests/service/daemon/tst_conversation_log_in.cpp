// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ConversationFixture.h"
#include "support/TestProgram.h"

using namespace testservice;
using std::chrono::seconds;

namespace
{

std::string textOf(const wire::LogInReply& reply)
{
    return reply.error.errorMsg();
}

} // namespace

/// Who is let in, and what of it is told and logged.
class ConversationLogInTest : public ServerTest
{
    Q_OBJECT

private slots:
    void welcomeNamesTheSubSystemAndTheLogInItsUser()
    {
        Talk talk(*m_server);
        talk.sayHello();
        const auto welcome = talk.hearOne<wire::Welcome>();
        QCOMPARE(welcome.serverName, std::string("东分系统"));
        QCOMPARE(welcome.systemTag, std::string("E"));
        QCOMPARE(welcome.keepAliveSeconds, 20);
        talk.askToLogIn(1);
        const auto reply = talk.hearOne<wire::LogInReply>();
        QVERIFY(reply.error.isSuccess());
        QCOMPARE(reply.user->userId, std::string("admin"));
        QCOMPARE(reply.user->rights, everyRight());
        QCOMPARE(talk.conversation().user(), std::string("admin"));
        QCOMPARE(talk.changes(), 1);
    }

    void wrongPasswordAndUnknownUserGetTheSameAnswer()
    {
        Talk talk(*m_server);
        talk.sayHello();
        talk.hear();
        talk.askToLogIn(1, "admin", "wrong");
        const auto wrong = talk.hearOne<wire::LogInReply>();
        talk.askToLogIn(2, "nobody", "wrong");
        const auto unknown = talk.hearOne<wire::LogInReply>();
        QCOMPARE(wrong.error.code(), EErrorCode::NotLoggedIn);
        QCOMPARE(unknown.error.code(), EErrorCode::NotLoggedIn);
        QCOMPARE(textOf(wrong), textOf(unknown));
        QVERIFY(!wrong.user && !unknown.user);
    }

    void guessingIsStoppedForKnownAndUnknownUsersAlike()
    {
        for (const std::string user : {"admin", "nobody"}) {
            const std::string address = "192.0.2." + std::to_string(user.size());
            for (int i = 0; i < 5; ++i) {
                Talk talk(*m_server, address);
                talk.sayHello();
                talk.askToLogIn(1, user, "wrong");
                QCOMPARE(Talk::describe(talk.hear()), std::string("welcome, logInReply 1 (6)"));
            }
            Talk talk(*m_server, address);
            talk.sayHello();
            talk.hear();
            talk.askToLogIn(1, user, "right");
            const auto locked = talk.hearOne<wire::LogInReply>();
            QCOMPARE(locked.error.code(), EErrorCode::ResourceExhausted);
            QCOMPARE(textOf(locked), std::string("登录失败次数过多，请5秒后再试"));
            QCOMPARE(m_server->logIns.waiting(), std::size_t(0));
            // Another desk is not locked out.
            Talk other(*m_server, "198.51.100.7");
            other.sayHello();
            other.hear();
            other.askToLogIn(1, user, "right");
            QCOMPARE(other.hearOne<wire::LogInReply>().error.isSuccess(), user == "admin");
        }
        m_server->now += seconds(6);
        Talk talk(*m_server, "192.0.2.5");
        talk.enter();
        QCOMPARE(talk.conversation().user(), std::string("admin"));
    }

    void whoIsRefusedAgainAndAgainIsSentAway()
    {
        Talk talk(*m_server);
        talk.sayHello();
        for (int i = 1; i < 20; ++i) {
            talk.askToLogIn(i, "admin", "wrong");
        }
        QVERIFY(!talk.conversation().hasEnded());
        talk.hear();
        talk.askToLogIn(20, "admin", "wrong");
        QCOMPARE(Talk::describe(talk.hear()), std::string("logInReply 20 (15), fault (15)"));
        QVERIFY(talk.conversation().isOver());
        talk.askToLogIn(21);
        QCOMPARE(Talk::describe(talk.hear()), std::string());
        QVERIFY(m_server->logged.filter("log_in").size() <= 20);
    }

    void aLogInThatSucceedsForgivesTheRefusals()
    {
        Talk talk(*m_server);
        talk.sayHello();
        for (int i = 1; i < 20; ++i) {
            talk.askToLogIn(i, "admin", "wrong");
        }
        m_server->now += std::chrono::hours(1);
        talk.askToLogIn(20);
        QCOMPARE(talk.conversation().user(), std::string("admin"));
        for (int i = 21; i < 40; ++i) {
            talk.askToLogIn(i, "admin", "wrong");
        }
        QVERIFY(!talk.conversation().hasEnded());
        talk.askToLogIn(40, "admin", "wrong");
        QVERIFY(talk.conversation().hasEnded());
    }

    void passwordsAreNotLogged()
    {
        Talk talk(*m_server);
        talk.sayHello();
        talk.askToLogIn(1, "admin", "geheim-7531");
        talk.askToLogIn(2, "ad\"min\n{}", "geheim-7531");
        talk.askToLogIn(3);
        talk.addGroup(4, "名称-8642");
        m_server->requests.runAll();
        QVERIFY(m_server->logged.size() >= 5);
        QVERIFY(m_server->logged.filter("geheim").isEmpty());
        QVERIFY(m_server->logged.filter("名称").filter("group").isEmpty());
        QCOMPARE(m_server->logged.filter("\"user\":\"ad\\\"min\\u000a{}\"").size(), 1);
    }

    void logInThatFailsLeavesNoUser()
    {
        UserTalk talk(*m_server);
        talk.askToLogIn(2, "admin", "wrong");
        talk.query(3);
        QCOMPARE(Talk::describe(talk.hear()), std::string("logInReply 2 (6), replyEnd 3 (6)"));
        talk.askToLogIn(4, "reader");
        QCOMPARE(talk.conversation().user(), std::string("reader"));
        talk.addGroup(5, "x");
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("logInReply 4 (0), replyEnd 5 (7)"));
    }

    void requestsThatWaitAreCarriedOutForTheUserWhoSentThem()
    {
        Talk talk(*m_server);
        talk.enter("admin");
        talk.addGroup(2, "甲");
        talk.addGroup(3, "乙"); // waits for the first one
        talk.askToLogIn(4, "admin", "wrong");
        talk.query(5);
        talk.askToLogIn(6, "reader");
        talk.addGroup(7, "丁");
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("logInReply 4 (6), replyEnd 5 (6), logInReply 6 (0), "
                                                          "replyEnd 2 (0), replyEnd 3 (0), replyEnd 7 (7)"));
        QCOMPARE(m_server->fixture.column("SELECT login FROM audit ORDER BY id"), std::string("admin,admin,reader"));
        QCOMPARE(m_server->logged.filter("\"event\":\"operation\"").filter("\"user\":\"admin\"").size(), 2);
    }

    void nothingIsReadWhileALogInIsBeingChecked()
    {
        Talk talk(*m_server);
        talk.sayHello();
        talk.say(wire::LogIn{1, "admin", "right"});
        QVERIFY(!talk.conversation().wantsInput());
        talk.query(2);
        QCOMPARE(Talk::describe(talk.hear()), std::string("welcome"));
        m_server->logIns.runAll();
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()),
                 std::string("logInReply 1 (0), replyBegin 2, replyChunk 2, replyEnd 2 (0)"));
    }

    void tooManyLogInsAtOnceAreRefused()
    {
        m_server->context.limits.waitingLogIns = 2;
        Talk first(*m_server), second(*m_server), third(*m_server);
        for (Talk* talk : {&first, &second, &third}) {
            talk->sayHello();
            talk->say(wire::LogIn{1, "admin", "right"});
        }
        QCOMPARE(Talk::describe(third.hear()), std::string("welcome, logInReply 1 (15)"));
        m_server->logIns.runAll();
        QCOMPARE(Talk::describe(first.hear()), std::string("welcome, logInReply 1 (0)"));
    }
};

TEST_WITHOUT_WIDGETS(ConversationLogInTest)
#include "tst_conversation_log_in.moc"
