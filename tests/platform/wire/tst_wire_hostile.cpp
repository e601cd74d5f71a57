// SPDX-License-Identifier: Apache-2.0
#include "platform/wire/WireSamples.h"

#include "platform/wire/Protocol.h"
#include "platform/wire/ReplyEncoder.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

#include <nvservice/Codec.h>

#include <random>

using namespace support;
using namespace wire;
using utils::EErrorCode;
using utils::NVError;

namespace
{

/// A message of the given elements behind its kind and id.
Frame messageOf(const char* type, const std::string& elements)
{
    return documentBytes(elementBytes('\x02', "type", textBytes(type)) +
                         elementBytes('\x12', "id", littleEndian(7) + littleEndian(0)) + elements);
}

NVError refusalOf(const Frame& frame, const nvservice::DocumentLimits& limits = LimitsAfterLogIn)
{
    Message message;
    return decode(frame, limits, message);
}

/// A record of about so many bytes.
nvservice::IDataPtr recordOf(std::size_t bytes)
{
    auto group = boost::make_shared<nvservice::CAccountGroup>();
    group->groupName = std::string(bytes, 'x');
    return group;
}

} // namespace

/// What a peer may send that wishes ill.
class WireHostileTest : public QObject
{
    Q_OBJECT

private slots:
    void deepNestingIsRefusedWithoutBeingFollowed()
    {
        for (const char* type : {"query", "operate", "replyEnd", "ping", "nonsense"}) {
            const Frame frame = messageOf(type, elementBytes('\x03', "request", nested(10000)));
            QCOMPARE(refusalOf(frame).code(), EErrorCode::ResourceExhausted);
            QCOMPARE(idOf(frame), std::int64_t(7)); // so that the request is answered all the same
        }
        // Nested in a record of a chunk, where the message itself is flat.
        const std::string deep = nested(10000);
        const Frame chunk =
            messageOf("replyChunk", elementBytes('\x05', "records", littleEndian(deep.size()) + '\x80' + deep));
        Message message;
        QVERIFY(decode(chunk, LimitsAfterLogIn, message).isSuccess());
        std::vector<nvservice::IDataPtr> records;
        QCOMPARE(std::get<ReplyChunk>(message).records(records).code(), EErrorCode::ResourceExhausted);
        QVERIFY(records.empty());
    }

    void depthIsRefusedAboveTheLimitOnly()
    {
        const auto pingOf = [](std::size_t depth) {
            return messageOf("ping", elementBytes('\x03', "more", nested(depth - 1)));
        };
        QVERIFY(refusalOf(pingOf(4), LimitsBeforeLogIn).isSuccess());
        QCOMPARE(refusalOf(pingOf(5), LimitsBeforeLogIn).code(), EErrorCode::ResourceExhausted);
        QVERIFY(refusalOf(pingOf(32)).isSuccess());
        QCOMPARE(refusalOf(pingOf(33)).code(), EErrorCode::ResourceExhausted);
    }

    void countAndTextLengthAreRefusedAboveTheLimitOnly()
    {
        const auto pingOf = [](std::size_t elements) {
            std::string more;
            for (std::size_t i = 2; i < elements; ++i) {
                more += elementBytes('\x0A', std::to_string(i).c_str(), "");
            }
            return messageOf("ping", more);
        };
        QVERIFY(refusalOf(pingOf(64), LimitsBeforeLogIn).isSuccess());
        QCOMPARE(refusalOf(pingOf(65), LimitsBeforeLogIn).code(), EErrorCode::ResourceExhausted);
        const auto textOf = [](char type, std::size_t bytes) {
            return messageOf("ping", elementBytes(type, "t", littleEndian(bytes + 1) + std::string(bytes, 't') + '\0'));
        };
        for (const char type : {'\x02', '\x0D', '\x0E'}) {
            QVERIFY(refusalOf(textOf(type, 1024), LimitsBeforeLogIn).isSuccess());
            QCOMPARE(refusalOf(textOf(type, 1025), LimitsBeforeLogIn).code(), EErrorCode::ResourceExhausted);
            QVERIFY(refusalOf(textOf(type, MaxTextBytes)).isSuccess());
            QCOMPARE(refusalOf(textOf(type, MaxTextBytes + 1)).code(), EErrorCode::ResourceExhausted);
        }
    }

    void documentsAreRefusedAboveTheLimitOnly()
    {
        const auto pingOf = [](std::size_t documents) {
            std::string more;
            for (std::size_t i = 1; i < documents; ++i) {
                more += elementBytes(i % 2 == 0 ? '\x03' : '\x04', std::to_string(i).c_str(), nested(1));
            }
            return messageOf("ping", more);
        };
        QVERIFY(refusalOf(pingOf(MaxDocuments)).isSuccess());
        const NVError error = refusalOf(pingOf(MaxDocuments + 1));
        QCOMPARE(error.code(), EErrorCode::ResourceExhausted);
        QVERIFY2(error.errorMsg().find("内嵌文档过多") != std::string::npos, error.errorMsg().c_str());
    }

    void namesThatOccurTwiceAndTextsThatAreNoneAreRefused()
    {
        const auto wide = [](const char* name) {
            return elementBytes('\x12', name, littleEndian(1) + littleEndian(0));
        };
        const auto text = [](const char* name, const std::string& value) {
            return elementBytes('\x02', name, littleEndian(value.size() + 1) + value + '\0');
        };
        QVERIFY(refusalOf(messageOf("ping", text("later", "甲"))).isSuccess());
        for (const std::string& elements :
             {wide("id"), text("type", "ping"), wide("later") + wide("later"), text("later", "\xC0\x80"),
              text("later", "\xED\xA0\x80"), wide("later\xFF")}) {
            const Frame frame = messageOf("ping", elements);
            for (const nvservice::DocumentLimits& limits : {LimitsBeforeLogIn, LimitsAfterLogIn}) {
                QCOMPARE(refusalOf(frame, limits).code(), EErrorCode::Malformed);
            }
            QCOMPARE(idOf(frame), std::int64_t(7));
        }
    }

    void everyMessageCutAnywhereIsRefused()
    {
        // The ends of messages that may be absent.
        const Frame withoutDocument =
            samples::frameOf(encode(ReplyEnd{13, {EErrorCode::Conflict, "已被他人修改"}, 0, {}}));
        const Frame withoutPosition = samples::frameOf(encode(Listen{}));
        for (const samples::WireSample& sample : samples::wireSamples()) {
            for (std::size_t cut = 0; cut < sample.frame.size(); ++cut) {
                // As it comes, and with a length that fits what is there.
                QVERIFY(!refusalOf(sample.frame.substr(0, cut)).isSuccess());
                if (cut > 5) {
                    const Frame shortened = littleEndian(cut) + sample.frame.substr(4, cut - 5) + '\0';
                    QVERIFY2(!refusalOf(shortened).isSuccess() || shortened == withoutDocument ||
                                 shortened == withoutPosition,
                             sample.name);
                }
            }
        }
    }

    void everyLengthMadeALieIsRefusedOrHarmless()
    {
        // Each four bytes in turn become a lie; where they are no length, the message may well stay a message.
        const std::vector<std::string> lies{littleEndian(0),          littleEndian(1),
                                            littleEndian(0x7FFFFFFF), littleEndian(0x80000000),
                                            littleEndian(0xFFFFFFFF), littleEndian(300)};
        for (const samples::WireSample& sample : samples::wireSamples()) {
            for (std::size_t at = 4; at + 4 <= sample.frame.size(); ++at) {
                for (const std::string& lie : lies) {
                    Frame frame = sample.frame;
                    frame.replace(at, 4, lie);
                    Message message;
                    const NVError error = decode(frame, LimitsAfterLogIn, message);
                    QCOMPARE(error.isSuccess(), error.errorMsg().empty());
                    if (const auto* chunk = std::get_if<ReplyChunk>(&message)) {
                        std::vector<nvservice::IDataPtr> records;
                        chunk->records(records);
                    }
                }
            }
        }
    }

    void everyFlippedBitIsSurvived()
    {
        for (const samples::WireSample& sample : samples::wireSamples()) {
            for (std::size_t bit = 0; bit < sample.frame.size() * 8; ++bit) {
                Frame frame = sample.frame;
                frame[bit / 8] = static_cast<char>(frame[bit / 8] ^ (1 << (bit % 8)));
                Message message;
                const NVError error = decode(frame, LimitsAfterLogIn, message);
                QCOMPARE(error.isSuccess(), error.errorMsg().empty());
                if (const auto* chunk = std::get_if<ReplyChunk>(&message)) {
                    std::vector<nvservice::IDataPtr> records;
                    chunk->records(records);
                }
            }
        }
    }

    void aChunkWithARecordThatIsNoneNamesTheReasonAndKeepsTheOthers()
    {
        ReplyEncoder encoder(3);
        QVERIFY(encoder.add(*samples::groupOf(1, 2)).isSuccess());
        Message message;
        QVERIFY(decode(samples::frameOf(encoder.take()), LimitsAfterLogIn, message).isSuccess());
        ReplyChunk chunk = std::get<ReplyChunk>(message);
        const std::string record = chunk.frame.substr(chunk.offset, chunk.bytes);
        const auto recordsOf = [&](const std::string& blob, std::size_t& count) {
            ReplyChunk other;
            other.frame = blob;
            other.bytes = blob.size();
            std::vector<nvservice::IDataPtr> records;
            const NVError error = other.records(records);
            count = records.size();
            return error;
        };
        std::size_t count = 0;
        QVERIFY(recordsOf(record + record, count).isSuccess());
        QCOMPARE(count, std::size_t(2));
        for (const std::string& tail :
             {std::string("\x01"), littleEndian(5), littleEndian(4) + '\0', littleEndian(0xFFFFFFFF) + '\0',
              littleEndian(100) + '\0', littleEndian(5) + '\0'}) {
            QCOMPARE(recordsOf(record + tail, count).code(), EErrorCode::Malformed);
            QCOMPARE(count, std::size_t(1));
        }
    }

    void recordsThatAreNotBinaryOfTheRightKindAreRefused()
    {
        QCOMPARE(refusalOf(messageOf("replyChunk", "")).code(), EErrorCode::Malformed);
        QCOMPARE(refusalOf(messageOf("replyChunk", elementBytes('\x05', "records", littleEndian(0) + '\0'))).code(),
                 EErrorCode::Malformed);
        QCOMPARE(refusalOf(messageOf("replyChunk", elementBytes('\x04', "records", littleEndian(5) + '\0'))).code(),
                 EErrorCode::Malformed);
        QVERIFY(
            refusalOf(messageOf("replyChunk", elementBytes('\x05', "records", littleEndian(0) + '\x80'))).isSuccess());
    }

    void aRecordNearTheLimitOfTheDocumentClassesIsRefusedAndTheOthersAreSent()
    {
        ReplyEncoder encoder(3);
        QVERIFY(encoder.add(*samples::groupOf(1, 1)).isSuccess());
        QCOMPARE(encoder.add(*recordOf(MaxRecordBytes)).code(), EErrorCode::ResourceExhausted);
        QCOMPARE(encoder.add(*recordOf(20 * 1024 * 1024)).code(), EErrorCode::ResourceExhausted);
        QCOMPARE(encoder.add(*recordOf(70 * 1024 * 1024)).code(), EErrorCode::ResourceExhausted);
        QVERIFY(encoder.add(*samples::groupOf(2, 1)).isSuccess());
        QCOMPARE(encoder.recordCount(), std::int64_t(2));
        Message message;
        QVERIFY(decode(samples::frameOf(encoder.take()), LimitsAfterLogIn, message).isSuccess());
        std::vector<nvservice::IDataPtr> records;
        QVERIFY(std::get<ReplyChunk>(message).records(records).isSuccess());
        QCOMPARE(records.size(), std::size_t(2));
        QCOMPARE(records[1]->getKey(), samples::groupOf(2, 1)->getKey());
    }

    void theLargestRecordFitsIntoAMessageWithAFullChunkBeforeIt()
    {
        ReplyEncoder encoder(3);
        while (true) {
            QVERIFY(encoder.add(*recordOf(60000)).isSuccess());
            if (encoder.recordCount() == 4) {
                break;
            }
        }
        QVERIFY(!encoder.isFull());
        const nvservice::IDataPtr large = recordOf(MaxRecordBytes - 200);
        QVERIFY(encoder.add(*large).isSuccess());
        QVERIFY(encoder.isFull());
        const Frame frame = samples::frameOf(encoder.take());
        QVERIFY(frame.size() <= MaxMessageBytes);
        QVERIFY(encoder.isEmpty());
        Message message;
        QVERIFY(decode(frame, LimitsAfterLogIn, message).isSuccess());
        std::vector<nvservice::IDataPtr> records;
        QVERIFY(std::get<ReplyChunk>(message).records(records).isSuccess());
        QCOMPARE(records.size(), std::size_t(5));
        QVERIFY(static_cast<const nvservice::CAccountGroup&>(*records[4]).groupName ==
                static_cast<const nvservice::CAccountGroup&>(*large).groupName);
    }

    void anOperationThatIsTooLargeIsNotSent()
    {
        Operate operate;
        operate.id = 1;
        operate.request.operationId = "1";
        operate.request.data = recordOf(MaxRecordBytes - 500);
        const bson::BSONObj fits = encode(operate);
        QVERIFY(!fits.isEmpty());
        QVERIFY(static_cast<std::size_t>(fits.objsize()) <= MaxMessageBytes);
        for (const std::size_t bytes : {MaxRecordBytes, std::size_t(17) * 1024 * 1024, std::size_t(70) * 1024 * 1024}) {
            operate.request.data = recordOf(bytes);
            QVERIFY(encode(operate).isEmpty());
        }
        Query query;
        query.id = 1;
        query.request.queryKey = std::string(17 * 1024 * 1024, 'k');
        QVERIFY(encode(query).isEmpty());
    }

    void aDocumentThatIsTooLargeBecomesAnError()
    {
        Message message;
        const bson::BSONObj large = BSON("x" << std::string(MaxRecordBytes, 'x'));
        QVERIFY(decode(samples::frameOf(encode(ReplyEnd{1, {}, 0, large})), LimitsAfterLogIn, message).isSuccess());
        QCOMPARE(std::get<ReplyEnd>(message).error.code(), EErrorCode::ResourceExhausted);
        QVERIFY(std::get<ReplyEnd>(message).document.isEmpty());
    }

    void aChunkIsClosedOnceItIsFull()
    {
        ReplyEncoder encoder(3);
        std::size_t messages = 0;
        std::size_t largest = 0;
        for (int i = 0; i < 2000; ++i) {
            QVERIFY(encoder.add(*samples::groupOf(i, 10)).isSuccess());
            if (encoder.isFull()) {
                largest = std::max(largest, static_cast<std::size_t>(encoder.take().objsize()));
                ++messages;
            }
        }
        QVERIFY(messages > 5);
        QVERIFY(largest < ReplyChunkBytes + 8 * 1024);
        QVERIFY(largest >= ReplyChunkBytes);
    }
};

TEST_WITHOUT_WIDGETS(WireHostileTest)
#include "tst_wire_hostile.moc"
