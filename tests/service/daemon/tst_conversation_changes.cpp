// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ConversationFixture.h"
#include "support/TestProgram.h"

using namespace testservice;

/// What a conversation tells of changes.
class ConversationChangesTest : public ServerTest
{
    Q_OBJECT

    /// Lets the hub read until the client has something to hear.
    std::vector<wire::Message> hearLater(Talk& talk)
    {
        std::vector<wire::Message> heard;
        const auto hear = [&] {
            m_server->requests.runAll();
            if (heard.empty()) {
                heard = talk.hear();
            }
            return !heard.empty();
        };
        [&] { QTRY_VERIFY_WITH_TIMEOUT(hear(), 30000); }();
        return heard;
    }
    /// Lets the hub read everything that was committed. It pauses between readings.
    void letTheHubRead()
    {
        Talk other(*m_server);
        other.enter();
        other.say(wire::Listen{});
        QCOMPARE(Talk::describe(hearLater(other)), std::string("changed 0"));
    }
    void listen(Talk& talk, const std::string& position = {})
    {
        talk.say(wire::Listen{position});
        QCOMPARE(Talk::describe(hearLater(talk)), std::string("changed 0"));
    }
    void addGroup(Talk& talk, const std::string& name)
    {
        talk.addGroup(++m_lastId, name);
        m_server->requests.runAll();
        QVERIFY(QString::fromStdString(Talk::describe(talk.hear())).contains("replyEnd"));
    }

    std::int64_t m_lastId = 100;

private slots:
    void whoListensHearsWhatOthersChange()
    {
        UserTalk listener(*m_server);
        UserTalk silent(*m_server);
        UserTalk other(*m_server);
        listen(listener);
        addGroup(other, "一");
        const std::vector<wire::Message> heard = hearLater(listener);
        QCOMPARE(Talk::describe(heard), std::string("changed 1"));
        const nvservice::CChangeInfo& info = *std::get<wire::Changed>(heard[0]).changes[0];
        QCOMPARE(info.groupName, std::string("一"));
        QCOMPARE(info.userName, std::string("姓名admin"));
        QCOMPARE(Talk::describe(silent.hear()), std::string());
    }

    void aClientThatTakesNothingGetsOneMessage()
    {
        UserTalk listener(*m_server);
        UserTalk other(*m_server);
        listen(listener);
        const int changes = listener.changes();
        addGroup(other, "一");
        letTheHubRead();
        addGroup(other, "二");
        letTheHubRead();
        addGroup(other, "三");
        letTheHubRead();
        QVERIFY(listener.changes() >= changes + 3); // it was offered each time
        QCOMPARE(Talk::describe(listener.hear()), std::string("changed 3"));
        QCOMPARE(Talk::describe(listener.hear()), std::string());
    }

    void aPositionBringsWhatWasMissed()
    {
        UserTalk listener(*m_server);
        UserTalk other(*m_server);
        listener.say(wire::Listen{});
        const std::string position = std::get<wire::Changed>(hearLater(listener).at(0)).position;
        listener.destroy();
        addGroup(other, "一");
        UserTalk again(*m_server);
        again.say(wire::Listen{position});
        QCOMPARE(Talk::describe(hearLater(again)), std::string("changed 1"));
        UserTalk lost(*m_server);
        lost.say(wire::Listen{"unknown"});
        QCOMPARE(Talk::describe(hearLater(lost)), std::string("changed everything"));
    }

    /// Ten thousand is the most for all together.
    void manyChangesAreNotToldOneByOneToMany()
    {
        std::vector<std::unique_ptr<UserTalk>> listeners;
        UserTalk other(*m_server);
        for (const char* const last : {"changed 1", "changed 1", "changed everything"}) {
            listeners.push_back(std::make_unique<UserTalk>(*m_server));
            listen(*listeners.back());
            m_server->fixture.exec(QString("INSERT INTO audit (server_id, at, login, operation, data_type, record_key,"
                                           " operation_id, outcome, message) ") +
                                   numbers(3400) + " SELECT 1, 1, 'x', 0, 625, 'E|1', '', 0, '' FROM n");
            addGroup(other, std::string("组") + std::to_string(listeners.size()));
            std::string heard;
            do {
                heard = Talk::describe(hearLater(*listeners.back()));
            } while (heard == "changed 0"); // a position
            QCOMPARE(heard, std::string(last));
        }
    }

    void theHubPausesBetweenReadings()
    {
        UserTalk listener(*m_server);
        UserTalk other(*m_server);
        listen(listener);
        QElapsedTimer sinceReading;
        bool hasPaused = false;
        do {
            addGroup(other, "组" + std::to_string(m_lastId));
            QTRY_VERIFY_WITH_TIMEOUT(m_server->requests.waiting() > 0, 30000);
            sinceReading.start();
            m_server->requests.runAll();
            addGroup(other, "组" + std::to_string(m_lastId));
            QCoreApplication::processEvents();
            hasPaused = m_server->requests.waiting() == 0;
        } while (sinceReading.elapsed() > 300); // it may have ended
        QVERIFY(hasPaused);
        QTRY_VERIFY_WITH_TIMEOUT(m_server->requests.waiting() > 0, 30000);
    }

    void anotherLogInEndsIt()
    {
        UserTalk listener(*m_server);
        UserTalk other(*m_server);
        listen(listener);
        listener.askToLogIn(90, "reader");
        QCOMPARE(Talk::describe(listener.hear()), std::string("logInReply 90 (0)"));
        addGroup(other, "一");
        letTheHubRead();
        QCOMPARE(Talk::describe(listener.hear()), std::string());
    }

    void whoIsNotLoggedInCannotListen()
    {
        Talk talk(*m_server);
        talk.sayHello();
        talk.hear();
        talk.say(wire::Listen{});
        QCOMPARE(Talk::describe(talk.hear()), std::string("fault (6)"));
    }

    void theFirstVersionOfTheProtocolHasNoChanges()
    {
        Talk old(*m_server);
        old.say(wire::Hello{1, 1, wire::sdkVersion(), "old"});
        QCOMPARE(old.hearOne<wire::Welcome>().protocol, 1);
        old.askToLogIn(1);
        old.hear();
        old.say(wire::Listen{});
        QCOMPARE(Talk::describe(old.hear()), std::string("fault (14)"));
        UserTalk other(*m_server);
        addGroup(other, "一");
        letTheHubRead();
        QCOMPARE(Talk::describe(old.hear()), std::string());
    }

    void aReadingThatFailsIsRepeated()
    {
        UserTalk listener(*m_server);
        UserTalk other(*m_server);
        listen(listener);
        m_server->fixture.exec("ALTER TABLE account_group_history RENAME TO hidden");
        m_server->fixture.exec("INSERT INTO audit (server_id, at, login, operation, data_type, record_key,"
                               " operation_id, outcome, message) VALUES (1, 1, 'x', 0, 625, 'E|1', '', 0, '')");
        QTRY_VERIFY_WITH_TIMEOUT((m_server->requests.runAll(), m_server->logged.filter("changes_not_read").size() > 0),
                                 30000);
        m_server->fixture.exec("ALTER TABLE hidden RENAME TO account_group_history");
        addGroup(other, "一");
        QCOMPARE(Talk::describe(hearLater(listener)), std::string("changed 1"));
    }
};

TEST_WITHOUT_WIDGETS(ConversationChangesTest)
#include "tst_conversation_changes.moc"
