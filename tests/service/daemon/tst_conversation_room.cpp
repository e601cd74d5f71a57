// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ConversationFixture.h"

#include "platform/wire/WireSamples.h"
#include "support/TestProgram.h"

#include <map>

using namespace testservice;
using service::daemon::MessageRoom;
using std::chrono::seconds;

namespace
{

constexpr std::size_t Kibibyte = 1024;
constexpr std::size_t Mebibyte = 1024 * Kibibyte;
constexpr std::size_t Room = 128 * Mebibyte;

/// A query that nobody can answer, of about 50 KB.
wire::Frame longQuery(std::int64_t id)
{
    wire::Query query;
    query.id = id;
    query.request.dataType = nvservice::DataType::Institution;
    query.request.queryKey = std::string(50000, '7');
    return samples::frameOf(wire::encode(query));
}

/// The first bytes of a message that will be so long.
wire::Frame announcement(std::size_t bytes)
{
    wire::Frame frame;
    for (int i = 0; i < 4; ++i) {
        frame += static_cast<char>((bytes >> (8 * i)) & 0xff);
    }
    return frame;
}

} // namespace

/// What messages take while they are received: memory for all clients together, and time for each.
class ConversationRoomTest : public ServerTest
{
    Q_OBJECT

private slots:
    void roomIsGrantedInTheOrderInWhichItIsAskedFor()
    {
        MessageRoom room(100);
        std::map<int, MessageRoom::Share> shares;
        const auto ask = [&](int asker, std::size_t bytes) {
            room.ask(&shares[asker], bytes,
                     [&shares, asker](MessageRoom::Share share) { shares[asker] = std::move(share); });
        };
        ask(1, 60);
        ask(2, 60);
        ask(3, 30);
        ask(4, 20);
        QCOMPARE(room.bytes(), std::size_t(60)); // the third does not pass the second
        room.forget(&shares[2]);
        QCOMPARE(room.bytes(), std::size_t(90));
        shares[3] = {};
        QCOMPARE(room.bytes(), std::size_t(80));
        shares[1] = std::move(shares[4]);
        QCOMPARE(room.bytes(), std::size_t(20));
        shares.clear();
        QCOMPARE(room.bytes(), std::size_t(0));
    }

    void longMessageWaitsUntilOthersGiveRoomBackAndShortOnesDoNot()
    {
        MessageRoom::Share taken;
        m_server->room.ask(&taken, Room - 1000, [&](MessageRoom::Share share) { taken = std::move(share); });
        Talk talk(*m_server), other(*m_server);
        talk.enter();
        other.enter();
        const wire::Frame message = longQuery(5);
        talk.say(message.substr(0, 20000));
        QVERIFY(!talk.conversation().wantsInput());
        other.query(2);
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(other.hear()), std::string("replyBegin 2, replyChunk 2, replyEnd 2 (0)"));
        // The time is not the client's.
        m_server->now += seconds(1000);
        talk.conversation().checkTime();
        QVERIFY(!talk.conversation().hasEnded());
        QCOMPARE(Talk::describe(talk.hear()), std::string("ping 1"));
        const int changes = talk.changes();
        taken = {};
        QCOMPARE(m_server->room.bytes(), message.size());
        m_server->requests.runAll();
        QVERIFY(talk.changes() > changes);
        QVERIFY(talk.conversation().wantsInput());
        talk.say(message.substr(20000));
        m_server->requests.runAll();
        QCOMPARE(talk.hearOne<wire::ReplyEnd>().id, std::int64_t{5});
        QCOMPARE(m_server->room.bytes(), std::size_t(0));
    }

    void roomIsGivenBackHoweverAMessageEnds()
    {
        UserTalk talk(*m_server);
        const wire::Frame query = longQuery(2);
        talk.say(query);
        QCOMPARE(m_server->room.bytes(), query.size());
        m_server->requests.runAll();
        QCOMPARE(m_server->room.bytes(), std::size_t(0));
        talk.hear();

        wire::Frame unreadable = longQuery(3);
        unreadable.replace(unreadable.find("request"), 7, "nothing");
        talk.say(unreadable);
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 3 (5)"));
        QCOMPARE(m_server->room.bytes(), std::size_t(0));

        talk.addGroup(4, "甲"); // what comes behind it waits
        talk.say(longQuery(5));
        QCOMPARE(m_server->room.bytes(), query.size());
        talk.say(wire::Cancel{5});
        QCOMPARE(m_server->room.bytes(), std::size_t(0));
        m_server->requests.runAll();

        UserTalk gone(*m_server);
        gone.say(query.substr(0, 10000));
        QCOMPARE(m_server->room.bytes(), query.size());
        gone.destroy();
        QCOMPARE(m_server->room.bytes(), std::size_t(0));

        UserTalk goneLater(*m_server);
        goneLater.say(query);
        goneLater.destroy();
        QCOMPARE(m_server->room.bytes(), query.size()); // a worker has it
        m_server->requests.runAll();
        QCOMPARE(m_server->room.bytes(), std::size_t(0));
    }

    void whoWaitsForRoomAndGoesLetsOthersHaveIt()
    {
        MessageRoom::Share taken;
        m_server->room.ask(&taken, Room - 10 * Kibibyte, [&](MessageRoom::Share share) { taken = std::move(share); });
        Talk first(*m_server), second(*m_server);
        first.enter();
        second.enter();
        first.say(announcement(50 * Kibibyte));
        second.say(announcement(10 * Kibibyte));
        QVERIFY(!second.conversation().wantsInput());
        first.destroy();
        QVERIFY(second.conversation().wantsInput());
        QCOMPARE(m_server->room.bytes(), Room);
    }

    void messageThatFallsBehindEndsTheConversation_data()
    {
        const support::DataRows<int, int> row("kibibytesPerSecond", "cutAfter");
        row("nothing more", 0, 11);
        row("too slow", 200, 46);
        row("fast enough", 256, 0);
    }
    void messageThatFallsBehindEndsTheConversation()
    {
        QFETCH(int, kibibytesPerSecond);
        QFETCH(int, cutAfter);
        UserTalk talk(*m_server);
        constexpr std::size_t bytes = 15 * Mebibyte;
        talk.say(announcement(bytes));
        const wire::Frame piece(static_cast<std::size_t>(kibibytesPerSecond) * Kibibyte, '\0');
        int second = 0;
        for (std::size_t sent = 4; sent + piece.size() < bytes && second < 1000; sent += piece.size()) {
            m_server->now += seconds(1);
            ++second;
            talk.say(piece);
            talk.conversation().checkTime();
            if (talk.conversation().hasEnded()) {
                break;
            }
        }
        QCOMPARE(talk.conversation().hasEnded(), cutAfter > 0);
        if (cutAfter == 0) {
            return;
        }
        QCOMPARE(second, cutAfter);
        const std::vector<wire::Message> last = talk.hear();
        QCOMPARE(describe(last.back()), std::string("fault (3)"));
        QVERIFY(talk.conversation().isOver());
        QCOMPARE(talk.conversation().reason(), "timeout");
    }

    void messageOfAStrangerIsTimedToo()
    {
        m_server->context.timeouts.handshakeSeconds = 1000;
        Talk talk(*m_server);
        talk.say(announcement(100));
        m_server->now += seconds(10);
        talk.conversation().checkTime();
        QVERIFY(!talk.conversation().hasEnded());
        m_server->now += seconds(1);
        talk.conversation().checkTime();
        QVERIFY(talk.conversation().hasEnded());
    }
};

TEST_WITHOUT_WIDGETS(ConversationRoomTest)
#include "tst_conversation_room.moc"
