// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordSamples.h"
#include "platform/wire/WireSamples.h"

#include "platform/wire/Protocol.h"
#include "platform/wire/ReplyEncoder.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>

#include <rapidcheck.h>

using namespace wire;
using utils::EErrorCode;
using utils::NVError;

namespace
{

/// Decodes what must be readable, as the given kind.
template <typename Kind>
Kind decoded(const bson::BSONObj& message)
{
    Message out;
    const NVError error = decode(samples::frameOf(message), LimitsAfterLogIn, out);
    if (!error.isSuccess()) {
        throw std::runtime_error(error.errorMsg());
    }
    return std::get<Kind>(out);
}

NVError refusalOf(const bson::BSONObj& message)
{
    Message out;
    return decode(samples::frameOf(message), LimitsAfterLogIn, out);
}

bool sameError(const NVError& left, const NVError& right)
{
    return left.code() == right.code() && left.errorMsg() == right.errorMsg();
}

std::int64_t randomId()
{
    return *rc::gen::inRange<std::int64_t>(1, std::numeric_limits<std::int64_t>::max());
}

NVError randomError()
{
    const int code = *rc::gen::inRange(0, 16);
    return {static_cast<EErrorCode>(code), samples::randomText()};
}

/// Runs a property; prints the counter-example.
#define HOLDS(...) QVERIFY(rc::check(__VA_ARGS__))

const char* differenceOf(const nvservice::IData& left, const nvservice::IData& right)
{
    for (const samples::RecordKind& kind : samples::recordKinds()) {
        if (std::strcmp(kind.typeName, left.typeName()) == 0) {
            return kind.difference(left, right);
        }
    }
    return "class";
}

} // namespace

/// Every message comes out of its bytes as it went in, and what is no message is refused.
class WireMessagesTest : public QObject
{
    Q_OBJECT

private slots:
    void greetingsComeBackAsTheyWere()
    {
        HOLDS([] {
            const Hello hello{*rc::gen::inRange(0, 9), *rc::gen::inRange(9, 99), "1.7", samples::randomText()};
            const Hello back = decoded<Hello>(encode(hello));
            RC_ASSERT(back.oldestProtocol == hello.oldestProtocol && back.newestProtocol == hello.newestProtocol);
            RC_ASSERT(back.sdkVersion == hello.sdkVersion && back.client == hello.client);
            const Welcome welcome{1, "2.0", samples::randomText(), samples::randomText(), *rc::gen::inRange(1, 999)};
            const Welcome again = decoded<Welcome>(encode(welcome));
            RC_ASSERT(again.protocol == welcome.protocol && again.sdkVersion == welcome.sdkVersion);
            RC_ASSERT(again.serverName == welcome.serverName && again.systemTag == welcome.systemTag);
            RC_ASSERT(again.keepAliveSeconds == welcome.keepAliveSeconds);
        });
        const Refused refused{{EErrorCode::Unsupported, "版本"}, 3, 5, "2.0"};
        const Refused back = decoded<Refused>(encode(refused));
        QVERIFY(sameError(back.error, refused.error));
        QCOMPARE(back.oldestProtocol, 3);
        QCOMPARE(back.newestProtocol, 5);
        QCOMPARE(back.sdkVersion, std::string("2.0"));
    }

    void logInsComeBackAsTheyWere()
    {
        HOLDS([] {
            const LogIn logIn{randomId(), samples::randomText(), samples::randomText()};
            const LogIn back = decoded<LogIn>(encode(logIn));
            RC_ASSERT(back.id == logIn.id && back.user == logIn.user && back.password == logIn.password);
        });
        const auto user = boost::make_shared<nvservice::CUserInfo>();
        user->userId = "admin";
        user->rights = {1, 2, 3};
        const LogInReply granted = decoded<LogInReply>(encode(LogInReply{7, {}, user}));
        QVERIFY(granted.error.isSuccess());
        QVERIFY(!differenceOf(*granted.user, *user));
        const NVError no(EErrorCode::NotLoggedIn, "用户名或密码错误");
        const LogInReply refused = decoded<LogInReply>(encode(LogInReply{7, no, nullptr}));
        QVERIFY(sameError(refused.error, no));
        QVERIFY(!refused.user);
    }

    void requestsComeBackAsTheyWere()
    {
        HOLDS([] {
            Query query;
            query.id = randomId();
            query.request.dataType = *rc::gen::arbitrary<int>();
            query.request.queryKey = samples::randomText();
            const Query back = decoded<Query>(encode(query));
            RC_ASSERT(back.id == query.id);
            RC_ASSERT(!differenceOf(back.request, query.request));
        });
        HOLDS([] {
            Operate operate;
            operate.id = randomId();
            operate.request.dataType = *rc::gen::arbitrary<int>();
            operate.request.operation = nvservice::EZvDataOperation::Delete;
            const auto& kinds = samples::recordKinds();
            operate.request.data = kinds[*rc::gen::inRange<std::size_t>(0, kinds.size())].makeRandom();
            operate.request.operationId = "id" + std::to_string(operate.id);
            const Operate back = decoded<Operate>(encode(operate));
            RC_ASSERT(back.id == operate.id);
            RC_ASSERT(back.request.operationId == operate.request.operationId);
            RC_ASSERT(back.request.operation == operate.request.operation);
            RC_ASSERT(!differenceOf(*back.request.data, *operate.request.data));
        });
    }

    void answersComeBackAsTheyWere()
    {
        HOLDS([] {
            const ReplyEnd end{randomId(), randomError(), *rc::gen::inRange<std::int64_t>(0, 1LL << 40),
                               samples::randomUnknownFields(), *rc::gen::inRange<std::int64_t>(0, 3)};
            const ReplyEnd back = decoded<ReplyEnd>(encode(end));
            RC_ASSERT(back.id == end.id && back.recordCount == end.recordCount && sameError(back.error, end.error));
            RC_ASSERT(back.document.binaryEqual(end.document));
            RC_ASSERT(back.newId == end.newId && encode(end).hasField("newId") == (end.newId != 0));
            const Fault fault{{EErrorCode::Malformed, samples::randomText()}};
            RC_ASSERT(sameError(decoded<Fault>(encode(fault)).error, fault.error));
            const Closing closing{*rc::gen::inRange(0, 100000), samples::randomText()};
            const Closing again = decoded<Closing>(encode(closing));
            RC_ASSERT(again.graceMilliseconds == closing.graceMilliseconds && again.text == closing.text);
            const std::int64_t id = randomId();
            RC_ASSERT(decoded<Ping>(encode(Ping{id})).id == id);
            RC_ASSERT(decoded<Pong>(encode(Pong{id})).id == id);
            RC_ASSERT(decoded<Cancel>(encode(Cancel{id})).id == id);
            const ReplyBegin begin{id, *rc::gen::inRange(0, 1 << 30)};
            RC_ASSERT(decoded<ReplyBegin>(encode(begin)).totalCount == begin.totalCount);
        });
    }

    void changesComeBackAsTheyWere()
    {
        HOLDS([] {
            const Listen listen{std::to_string(*rc::gen::inRange(0, 9))};
            RC_ASSERT(decoded<Listen>(encode(listen)).position == listen.position);
            RC_ASSERT(decoded<Listen>(encode(Listen{})).position.empty() && !encode(Listen{}).hasField("position"));
            Changed changed{samples::randomText(), true, {}};
            const int count = *rc::gen::inRange(0, 20);
            for (int i = 0; i < count; ++i) {
                const auto info = boost::make_shared<nvservice::CChangeInfo>();
                info->groupId = i;
                info->groupName = samples::randomText();
                info->operation = nvservice::EZvDataOperation::Delete;
                info->changedAt = *rc::gen::arbitrary<std::int64_t>();
                info->setRevision(*rc::gen::arbitrary<std::int64_t>());
                changed.changes.push_back(info);
            }
            const Changed back = decoded<Changed>(encode(changed));
            RC_ASSERT(back.position == changed.position && back.isComplete);
            RC_ASSERT(back.changes.size() == changed.changes.size());
            for (std::size_t i = 0; i < back.changes.size(); ++i) {
                RC_ASSERT(!differenceOf(*back.changes[i], *changed.changes[i]));
            }
            RC_ASSERT(!decoded<Changed>(encode(Changed{"1", false, {}})).isComplete);
        });
    }

    void whatIsNoChangeIsRefused()
    {
        const auto info = boost::make_shared<nvservice::CChangeInfo>();
        QCOMPARE(refusalOf(encode(Changed{"1", false, {info}})).code(), EErrorCode::Malformed);
        QVERIFY(refusalOf(encode(Changed{"1", true, {info}})).isSuccess());
        const auto withChange = [](const bson::BSONObj& change) {
            bson::BSONObjBuilder builder;
            builder.append("type", "changed").append("position", "1").append("complete", true);
            bson::BSONArrayBuilder changes(builder.subarrayStart("changes"));
            changes.append(change);
            changes.done();
            return refusalOf(builder.obj()).code();
        };
        QCOMPARE(withChange(nvservice::encodeRecord(*info)), EErrorCode::Success);
        QCOMPARE(withChange(nvservice::encodeRecord(nvservice::CKolmQueryDataReq())), EErrorCode::Malformed);
        QCOMPARE(withChange(bson::BSONObj()), EErrorCode::Malformed);
    }

    void recordsOfAllClassesComeThroughChunks()
    {
        HOLDS([] {
            std::vector<nvservice::IDataPtr> records;
            for (int i = *rc::gen::inRange(0, 12); i > 0; --i) {
                const auto& kinds = samples::recordKinds();
                records.push_back(kinds[*rc::gen::inRange<std::size_t>(0, kinds.size())].makeRandom());
            }
            ReplyEncoder encoder(5, *rc::gen::inRange<std::size_t>(1, 4096));
            std::vector<nvservice::IDataPtr> back;
            const auto deliver = [&] {
                const ReplyChunk chunk = decoded<ReplyChunk>(encoder.take());
                RC_ASSERT(chunk.id == 5);
                RC_ASSERT(chunk.records(back).isSuccess());
            };
            for (const nvservice::IDataPtr& record : records) {
                RC_ASSERT(encoder.add(*record).isSuccess());
                if (encoder.isFull()) {
                    deliver();
                }
            }
            if (!encoder.isEmpty()) {
                deliver();
            }
            RC_ASSERT(encoder.recordCount() == static_cast<std::int64_t>(records.size()));
            RC_ASSERT(back.size() == records.size());
            for (std::size_t i = 0; i < back.size(); ++i) {
                RC_ASSERT(!differenceOf(*back[i], *records[i]));
            }
        });
    }

    void everyKindHasASampleOfItsOwn()
    {
        std::set<std::size_t> kinds;
        for (const samples::WireSample& sample : samples::wireSamples()) {
            Message message;
            const NVError error = decode(sample.frame, LimitsAfterLogIn, message);
            QVERIFY2(error.isSuccess(), qPrintable(sample.name + QString(": ") + error.errorMsg().c_str()));
            kinds.insert(message.index());
        }
        QCOMPARE(kinds.size(), std::variant_size_v<Message>);
    }

    void whatComesBeforeLogInFitsTheNarrowLimits()
    {
        Message out;
        QVERIFY(decode(samples::frameOf(encode(Hello{1, 1, "2.0", std::string(1024, 'c')})), LimitsBeforeLogIn, out)
                    .isSuccess());
        QVERIFY(decode(samples::frameOf(encode(LogIn{1, std::string(1024, 'u'), std::string(1024, 'p')})),
                       LimitsBeforeLogIn, out)
                    .isSuccess());
        QVERIFY(encode(LogIn{1, std::string(1025, 'u'), "p"}).isEmpty());
        QVERIFY(encode(LogIn{1, "u", std::string(1025, 'p')}).isEmpty());
    }

    void theKindAndTheIdOfAnyMessageCanBeReadWithoutTrustingIt()
    {
        for (const samples::WireSample& sample : samples::wireSamples()) {
            const bson::BSONObj document(sample.frame.data(), sample.frame.size());
            const std::int64_t expected = document.hasField("id") ? document.getField("id").numberLong() : 0;
            QCOMPARE(idOf(sample.frame), expected);
            const std::string kind(document.getField("type").str());
            QCOMPARE(std::string(kindOf(sample.frame)), kind);
            // Cut anywhere: either the same id or none, and never a read beyond the bytes.
            for (std::size_t cut = 0; cut < sample.frame.size(); ++cut) {
                const Frame part(std::vector<char>(sample.frame.begin(), sample.frame.begin() + long(cut)).data(), cut);
                const std::int64_t id = idOf(part);
                QVERIFY(id == expected || id == 0);
                QVERIFY(kindOf(part) == kind || kindOf(part).empty());
            }
        }
        QCOMPARE(idOf(samples::frameOf(BSON("type" << "x"
                                                   << "id" << 7))),
                 std::int64_t(7));
        QCOMPARE(idOf(samples::frameOf(BSON("type" << "x"
                                                   << "id" << -7))),
                 std::int64_t(0));
        QCOMPARE(idOf(samples::frameOf(BSON("type" << "x"
                                                   << "id" << 7.0))),
                 std::int64_t(0));
        QCOMPARE(idOf(samples::frameOf(BSON("id" << 7 << "type"
                                                 << "x"))),
                 std::int64_t(0));
    }

    void aFieldThatIsAbsentOrOfAnotherTypeIsRefused()
    {
        for (const samples::WireSample& sample : samples::wireSamples()) {
            const bson::BSONObj document(sample.frame.data(), sample.frame.size());
            for (bson::BSONObjIterator it(document); it.more();) {
                const std::string name(it.next().fieldName());
                bson::BSONObjBuilder without;
                bson::BSONObjBuilder other;
                for (bson::BSONObjIterator fields(document); fields.more();) {
                    const bson::BSONElement field = fields.next();
                    if (name != field.fieldName()) {
                        without.append(field);
                        other.append(field);
                    } else {
                        other.append(name, 1.5);
                    }
                }
                const bool optional = name == "document" || sample.name == std::string("listen");
                QVERIFY2(optional || !refusalOf(without.obj()).isSuccess(), (sample.name + (": " + name)).c_str());
                QVERIFY2(!refusalOf(other.obj()).isSuccess(), (sample.name + (": " + name)).c_str());
            }
        }
    }

    void fieldsThatNobodyKnowsArePassedOver()
    {
        bson::BSONObjBuilder builder;
        builder.appendElements(encode(Ping{9}));
        builder.append("later", BSON("a" << 1));
        QCOMPARE(decoded<Ping>(builder.obj()).id, std::int64_t(9));
    }

    void anUnknownKindIsUnsupportedAndKeepsItsId()
    {
        const bson::BSONObj message = BSON("type" << "subscribe"
                                                  << "id" << 8LL);
        QCOMPARE(refusalOf(message).code(), EErrorCode::Unsupported);
        QCOMPARE(idOf(samples::frameOf(message)), std::int64_t(8));
        QCOMPARE(refusalOf(BSON("id" << 8LL << "type"
                                     << "ping"))
                     .code(),
                 EErrorCode::Malformed);
        QCOMPARE(refusalOf(bson::BSONObj()).code(), EErrorCode::Malformed);
    }

    void valuesOutsideTheirRangeAreRefused()
    {
        QCOMPARE(refusalOf(encode(Ping{0})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(Ping{-1})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(ReplyBegin{1, -1})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(ReplyEnd{1, {}, -1, {}})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(ReplyEnd{1, {}, 0, {}, -1})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(Hello{3, 2, "2.0", ""})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(Welcome{1, "2.0", "", "", 0})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(Fault{})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(Refused{{}, 1, 1, "2.0"})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(LogInReply{1, {}, nullptr})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(encode(LogIn{1, "\xC3(", "p"})).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(BSON("type" << "replyBegin"
                                       << "id" << 1 << "totalCount" << (1LL << 31)))
                     .code(),
                 EErrorCode::Malformed);
    }

    void anErrorCodeOfALaterVersionIsAFailureWithItsText()
    {
        const auto end = decoded<ReplyEnd>(BSON("type" << "replyEnd"
                                                       << "id" << 1 << "code" << 99 << "text"
                                                       << "新的错误"
                                                       << "recordCount" << 0));
        QCOMPARE(end.error.code(), EErrorCode::Failed);
        QCOMPARE(end.error.errorMsg(), std::string("新的错误"));
    }

    void anOperationNeedsARecordAndAnIdOfItsOwn()
    {
        Operate operate;
        operate.id = 1;
        QVERIFY(encode(operate).isEmpty());
        operate.request.data = samples::groupOf(1, 1);
        QCOMPARE(refusalOf(encode(operate)).code(), EErrorCode::Malformed);
        operate.request.operationId = std::string(MaxOperationIdBytes, 'x');
        QVERIFY(refusalOf(encode(operate)).isSuccess());
        operate.request.operationId += 'x';
        QCOMPARE(refusalOf(encode(operate)).code(), EErrorCode::Malformed);
    }

    void aRequestIsNotTakenForAnother()
    {
        bson::BSONObjBuilder builder;
        builder.append("type", "operate").append("id", 1LL);
        builder.append("request", nvservice::encodeRecord(nvservice::CKolmQueryDataReq()));
        QCOMPARE(refusalOf(builder.obj()).code(), EErrorCode::Malformed);
    }

    void aTextBeyondTheLimitIsCutBetweenCharacters()
    {
        std::string longText;
        while (longText.size() <= MaxTextBytes) {
            longText += "错";
        }
        const auto fault = decoded<Fault>(encode(Fault{{EErrorCode::Failed, longText}}));
        QVERIFY(fault.error.errorMsg().size() <= MaxTextBytes);
        QVERIFY(fault.error.errorMsg().size() > MaxTextBytes - 3);
        QVERIFY(longText.compare(0, fault.error.errorMsg().size(), fault.error.errorMsg()) == 0);
    }

    void protocolsAreChosenOrRefusedWithBothVersions()
    {
        std::int32_t protocol = 0;
        QVERIFY(chooseProtocol({1, 1, "2.0", ""}, protocol).isSuccess());
        QCOMPARE(protocol, 1);
        QVERIFY(chooseProtocol({0, 7, "2.9", ""}, protocol).isSuccess());
        QCOMPARE(protocol, NewestProtocol);
        const NVError newer = chooseProtocol({3, 7, "2.0", ""}, protocol);
        QCOMPARE(newer.code(), EErrorCode::Unsupported);
        QCOMPARE(newer.errorMsg(), std::string("通信协议版本不兼容: 服务端支持 1 至 2, 客户端支持 3 至 7"));
        QCOMPARE(chooseProtocol({0, 0, "2.0", ""}, protocol).code(), EErrorCode::Unsupported);
        const NVError sdk = chooseProtocol({1, 1, "1.0", ""}, protocol);
        QCOMPARE(sdk.errorMsg(), "SDK 版本不兼容: 服务端为 " + sdkVersion() + ", 客户端为 1.0");
    }
};

TEST_WITHOUT_WIDGETS(WireMessagesTest)
#include "tst_wire_messages.moc"
