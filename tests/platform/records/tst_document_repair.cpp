// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>

#include <rapidcheck.h>

using namespace nvservice;
using utils::EErrorCode;

namespace
{

bson::BSONObj repaired(const bson::BSONObj& document)
{
    bson::BSONObj out;
    const utils::NVError error = repairDocument(document.objdata(), static_cast<std::size_t>(document.objsize()), out);
    return error.isSuccess() ? out : BSON("error" << error.errorMsg());
}

template <typename Fill>
bson::BSONObj repairable(Fill fill)
{
    bson::BSONObjBuilder builder;
    fill(builder);
    return builder.obj();
}

#define COMPARE_DOCUMENTS(actual, expected)                                                                            \
    do {                                                                                                               \
        const bson::BSONObj found = (actual);                                                                          \
        const bson::BSONObj wanted = (expected);                                                                       \
        QVERIFY2(found.binaryEqual(wanted), (found.toString() + " is not " + wanted.toString()).c_str());              \
    } while (false)

} // namespace

class DocumentRepairTest : public QObject
{
    Q_OBJECT

private slots:
    void ofElementsWithOneNameTheFirstIsKept()
    {
        COMPARE_DOCUMENTS(repaired(BSON("_tag" << "A"
                                               << "x" << 1 << "_tag"
                                               << "B"
                                               << "x" << true << "y" << 2)),
                          BSON("_tag" << "A"
                                      << "x" << 1 << "y" << 2));
        COMPARE_DOCUMENTS(repaired(BSON("a" << BSON("x" << 1 << "x" << 2) << "b"
                                            << BSON_ARRAY(BSON("x" << 1) << BSON("x" << 3 << "x" << 4)))),
                          BSON("a" << BSON("x" << 1) << "b" << BSON_ARRAY(BSON("x" << 1) << BSON("x" << 3))));
    }

    void namesThatBecomeOneAreOne()
    {
        COMPARE_DOCUMENTS(repaired(BSON("a\xFF" << 1 << "a\xFE" << 2)), BSON("a\xEF\xBF\xBD" << 1));
    }

    void elementsOfArraysAreNumberedAndAllKept()
    {
        const bson::BSONObj array = repairable([](bson::BSONObjBuilder& builder) {
            bson::BSONObjBuilder list(builder.subarrayStart("list"));
            list.append("0", 1).append("0", 2).append("x", 3).append("\xFF", 4);
        });
        COMPARE_DOCUMENTS(repaired(array), BSON("list" << BSON_ARRAY(1 << 2 << 3 << 4)));
    }

    void everyByteThatBelongsToNoCharacterIsReplaced()
    {
        const std::string mark = "\xEF\xBF\xBD";
        QCOMPARE(repairedUtf8("甲\xFF乙"), "甲" + mark + "乙");
        QCOMPARE(repairedUtf8("a\xC0\x80"), "a" + mark + mark);
        QCOMPARE(repairedUtf8("\xED\xA0\x80"), mark + mark + mark);
        QCOMPARE(repairedUtf8("\xE7\x94"), mark + mark);
        QCOMPARE(repairedUtf8("\xE7\x94x"), mark + mark + "x");
        QCOMPARE(repairedUtf8(std::string_view("a\0\xFF", 3)), std::string("a\0", 2) + mark);
        QCOMPARE(repairedUtf8(""), std::string());
    }

    void everyKindOfTextIsRepaired()
    {
        const auto document = [&](const std::string& text) {
            return repairable([&](bson::BSONObjBuilder& builder) {
                builder.append("text", text);
                builder.appendValue("code", bson::Code, support::textBytes(text));
                builder.appendValue("symbol", bson::Symbol, support::textBytes(text));
                builder.appendValue("pattern", bson::RegEx, text + '\0' + text + '\0');
                builder.appendValue("reference", bson::DBRef, support::textBytes(text) + "0123456789ab");
                builder.append("in", BSON_ARRAY(BSON("text" << text)));
                builder.appendBinData("binary", {"\xFF", 1});
            });
        };
        COMPARE_DOCUMENTS(repaired(document("a\xFFz")), document("a\xEF\xBF\xBDz"));
    }

    void whatIsRightStaysAsItIs_data() { samples::addKinds(); }
    void whatIsRightStaysAsItIs()
    {
        QVERIFY(rc::check([] {
            const bson::BSONObj document = encodeRecord(*samples::kindOfRow().makeRandom());
            const bson::BSONObj same = repaired(document);
            RC_ASSERT(same.isOwned());
            RC_ASSERT(same.binaryEqual(document));
        }));
    }

    void whateverHasTheShapeOfADocumentIsAcceptedAfterIt()
    {
        QVERIFY(rc::check([] {
            const bson::BSONObj document = encodeRecord(*samples::recordKinds()[1].makeRandom());
            std::string bytes(document.objdata(), static_cast<std::size_t>(document.objsize()));
            for (int flips = *rc::gen::inRange(1, 8); flips > 0; --flips) {
                bytes[*rc::gen::inRange<std::size_t>(0, bytes.size())] = *rc::gen::arbitrary<char>();
            }
            bson::BSONObj out;
            if (repairDocument(bytes.data(), bytes.size(), out).isSuccess()) {
                RC_ASSERT(checkDocument(out.objdata(), static_cast<std::size_t>(out.objsize())).isSuccess());
            } else {
                RC_ASSERT(out.isEmpty());
            }
        }));
    }

    void whatIsNoDocumentIsAnError()
    {
        const bson::BSONObj document = BSON("x\xFF" << 1);
        bson::BSONObj out;
        QCOMPARE(repairDocument(document.objdata(), static_cast<std::size_t>(document.objsize()) - 1, out).code(),
                 EErrorCode::Malformed);
        QVERIFY(out.isEmpty());
    }

    void whatGrowsBeyondTheLargestDocumentIsAnError()
    {
        for (const std::size_t bytes : {MaxDocumentBytes / 2, MaxDocumentBytes - 100}) {
            const bson::BSONObj document = BSON("x" << std::string(bytes, '\xFF'));
            bson::BSONObj out;
            QCOMPARE(repairDocument(document.objdata(), static_cast<std::size_t>(document.objsize()), out).code(),
                     EErrorCode::ResourceExhausted);
        }
    }
};

TEST_WITHOUT_WIDGETS(DocumentRepairTest)
#include "tst_document_repair.moc"
