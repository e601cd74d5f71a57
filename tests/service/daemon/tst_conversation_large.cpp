// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"
#include "service/daemon/ConversationFixture.h"

#include "platform/wire/WireSamples.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/Codec.h>
#include <nvservice/SystemTag.h>

using namespace testservice;

namespace
{

std::size_t sizeOf(const nvservice::IData& record)
{
    return static_cast<std::size_t>(nvservice::encodeRecord(record).objsize());
}

/// A configuration that any user may save over the first one, whose document is that large once it is stored.
RiskConfigPtr configOfStoredSize(std::size_t bytes, int groupId)
{
    auto config = boost::make_shared<nvservice::CAccountGroupRCConfig>();
    config->groupId = groupId;
    nvservice::setSystemTagOfAll(*config, "E");
    config->setRevision(2);
    nvservice::CTradeLimitList list;
    list.traderType = nvservice::EZvTraderType::Stock;
    config->rcRule.lists.push_back(list);
    std::vector<nvservice::CTradeLimitEntry>& entries = config->rcRule.lists[0].entries;
    const auto add = [&] {
        entries.push_back(entry(std::to_string(1000000 + entries.size())));
        entries.back().securityName = QString(64, QChar(0x8BC1)).toStdString();
    };
    constexpr std::size_t spare = 2000;
    std::size_t ofAnEntry = 0;
    while (entries.size() < 100) {
        const std::size_t before = sizeOf(*config);
        add();
        ofAnEntry = sizeOf(*config) - before;
    }
    while (sizeOf(*config) + spare < bytes) {
        const std::size_t more = std::max<std::size_t>(1, (bytes - spare - sizeOf(*config)) / (ofAnEntry + 4));
        for (std::size_t i = 0; i < more; ++i) {
            add();
        }
    }
    const std::string pad(bytes - sizeOf(*config), 'x');
    config->unknownFields = BSON("pad" << pad);
    // The name and the length of the padding take room too.
    config->unknownFields = BSON("pad" << pad.substr(sizeOf(*config) - bytes));
    nvservice::setSystemTagOfAll(*config, {});
    config->setRevision(1);
    return config;
}

wire::Operate saveOf(std::int64_t id, const nvservice::IDataPtr& record)
{
    wire::Operate operate;
    operate.id = id;
    operate.request.dataType = ConfigType;
    operate.request.operation = EZvDataOperation::Modify;
    operate.request.data = record;
    operate.request.operationId = "op-" + std::to_string(id);
    return operate;
}

} // namespace

/// Messages and records near the limits.
class ConversationLargeTest : public ServerTest
{
    Q_OBJECT

private slots:
    void largestRecordThatIsStoredIsReadBackAndSavedAgain()
    {
        const int groupId = m_server->fixture.storedGroup("甲")->groupId;
        UserTalk talk(*m_server);
        const RiskConfigPtr largest = configOfStoredSize(nvservice::MaxRecordBytes, groupId);
        talk.say(saveOf(2, largest));
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 2 (0)"));
        talk.query(3, ConfigType, std::to_string(groupId));
        m_server->requests.runAll();
        const std::vector<wire::Message> answer = talk.hear();
        QCOMPARE(Talk::describe(answer), std::string("replyBegin 3, replyChunk 3, replyEnd 3 (0)"));
        std::vector<nvservice::IDataPtr> records;
        QVERIFY(std::get<wire::ReplyChunk>(answer[1]).records(records).isSuccess());
        QCOMPARE(records.size(), std::size_t(1));
        QCOMPARE(sizeOf(*records[0]), nvservice::MaxRecordBytes);
        talk.say(saveOf(4, records[0]));
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()), std::string("replyEnd 4 (0)"));
    }

    void recordThatNobodyCouldReadBackIsRefused()
    {
        const int groupId = m_server->fixture.storedGroup("甲")->groupId;
        UserTalk talk(*m_server);
        // As it is sent it is shorter by what the service adds.
        const RiskConfigPtr tooLarge = configOfStoredSize(nvservice::MaxRecordBytes + 1, groupId);
        QVERIFY(sizeOf(*tooLarge) < nvservice::MaxRecordBytes);
        talk.say(saveOf(2, tooLarge));
        m_server->requests.runAll();
        const auto end = talk.hearOne<wire::ReplyEnd>();
        QCOMPARE(end.error.code(), EErrorCode::ResourceExhausted);
        QCOMPARE(end.error.errorMsg(), std::string("风控配置数据过大，已被拒绝"));
        QCOMPARE(m_server->fixture.config(groupId)->revision(), std::int64_t{1});
        // A longer one does not even leave the client, and without a network the service refuses it.
        const RiskConfigPtr longer = configOfStoredSize(nvservice::MaxRecordBytes + 100000, groupId);
        QVERIFY(wire::encode(saveOf(3, longer)).isEmpty());
        QCOMPARE(save(m_server->fixture.east(), m_server->fixture.session("desk", everyRight()), longer).error.code(),
                 EErrorCode::ResourceExhausted);
    }

    void longMessageIsReadByAWorker()
    {
        const int groupId = m_server->fixture.storedGroup("甲")->groupId;
        UserTalk talk(*m_server);
        const wire::Frame good = samples::frameOf(wire::encode(saveOf(2, configOfStoredSize(300000, groupId))));
        wire::Frame broken = samples::frameOf(wire::encode(saveOf(3, configOfStoredSize(300000, groupId))));
        broken[broken.find("nvservice::CAccountGroupRCConfig")] = 'x';
        wire::Frame shapeless = samples::frameOf(wire::encode(saveOf(4, configOfStoredSize(300000, groupId))));
        shapeless[shapeless.size() - 1] = 'x';
        talk.say(good);
        talk.say(broken);
        talk.say(shapeless);
        talk.query(5, ConfigType, std::to_string(groupId));
        QCOMPARE(Talk::describe(talk.hear()), std::string());
        QCOMPARE(m_server->requests.waiting(), std::size_t(1)); // operations, one after the other
        m_server->requests.runAll();
        QCOMPARE(Talk::describe(talk.hear()),
                 std::string("replyEnd 2 (0), replyEnd 3 (5), replyEnd 4 (5), replyBegin 5, replyChunk 5, replyEnd 5 "
                             "(0)"));
        QCOMPARE(m_server->logged.filter("\"event\":\"operation\"").size(), 1);
        const QString figures = QString::fromStdString(m_server->metrics.text());
        QVERIFY(figures.contains("qav_requests_total{kind=\"operate_7131\",outcome=\"success\"} 1"));
        QVERIFY(figures.contains("qav_requests_total{kind=\"operate_other\",outcome=\"malformed\"} 2"));
    }

    void longMessageThatIsNoRequestIsAFault()
    {
        UserTalk talk(*m_server);
        const std::string filling(100000, 'x');
        talk.say(samples::frameOf(BSON("type" << "ping"
                                              << "id" << 2LL << "filling" << filling)));
        talk.say(samples::frameOf(BSON("type" << "query"
                                              << "filling" << filling << "id" << 3LL)));
        QCOMPARE(Talk::describe(talk.hear()), std::string("fault (15), fault (15)"));
        talk.say(wire::Ping{4});
        QCOMPARE(talk.hearOne<wire::Pong>().id, std::int64_t{4});
    }

    void requestsThatWaitHoldABoundedNumberOfBytes()
    {
        const int groupId = m_server->fixture.storedGroup("甲")->groupId;
        UserTalk talk(*m_server);
        const RiskConfigPtr config = configOfStoredSize(300000, groupId);
        std::int64_t id = 1;
        while (talk.conversation().wantsInput() && id < 30) {
            talk.say(saveOf(++id, config));
        }
        QCOMPARE(id, std::int64_t{5}); // the fourth one passes 1 MiB
        m_server->requests.runOne();
        QVERIFY(talk.conversation().wantsInput());
        m_server->requests.runAll();
        talk.hear();
        while (talk.conversation().wantsInput() && id < 30) {
            talk.say(saveOf(++id, config));
        }
        QCOMPARE(id, std::int64_t{9});
        talk.say(wire::Cancel{8}); // waits until it is read
        m_server->requests.runAll();
        talk.hear();
        QVERIFY(talk.conversation().wantsInput());
    }
};

TEST_WITHOUT_WIDGETS(ConversationLargeTest)
#include "tst_conversation_large.moc"
