// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"
#include "RefusedDocuments.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/Codec.h>

#include <rapidcheck.h>

#include <random>

using namespace nvservice;
using namespace refusals;
using utils::EErrorCode;

namespace
{

/// The document with one element, given by its position, replaced by one of a type that no record field has.
bson::BSONObj withWrongType(const bson::BSONObj& document, int position, std::string& name)
{
    bson::BSONObjBuilder builder;
    int index = 0;
    for (bson::BSONObjIterator it(document); it.more(); ++index) {
        const bson::BSONElement element = it.next();
        if (index == position) {
            name = element.fieldName();
            builder.appendNull(name);
        } else {
            builder.append(element);
        }
    }
    return builder.obj();
}

utils::NVError decodeError(const bson::BSONObj& document)
{
    IDataPtr record;
    const utils::NVError error = decodeRecord(document, record);
    return static_cast<bool>(record) == error.isSuccess()
               ? error
               : utils::NVError(EErrorCode::Failed, "record and error contradict each other");
}

} // namespace

class RecordRefusalTest : public QObject
{
    Q_OBJECT

private slots:
    void everyFieldOfTheWrongTypeIsRefusedByName_data() { samples::addKinds(); }
    void everyFieldOfTheWrongTypeIsRefusedByName()
    {
        const IDataPtr record = samples::kindOfRow().makeDefault();
        record->setSystemTag("A");
        record->setRevision(1);
        const bson::BSONObj document = encodeRecord(*record);
        QVERIFY(document.nFields() > 3);
        for (int position = 0; position < document.nFields(); ++position) {
            std::string name;
            const utils::NVError error = decodeError(withWrongType(document, position, name));
            QCOMPARE(error.code(), EErrorCode::Malformed);
            QVERIFY2(QString::fromStdString(error.errorMsg()).contains(QString::fromStdString("字段 " + name + ")")),
                     error.errorMsg().c_str());
        }
    }

    void brokenBytesNeverCrashAndNeverGiveARecordThatCannotBeWrittenAgain_data() { samples::addKinds(); }
    void brokenBytesNeverCrashAndNeverGiveARecordThatCannotBeWrittenAgain()
    {
        std::vector<std::string> documents;
        QVERIFY(rc::check(samples::kindOfRow().typeName, [&documents] {
            const bson::BSONObj document = encodeRecord(*samples::kindOfRow().makeRandom());
            documents.emplace_back(document.objdata(), static_cast<std::size_t>(document.objsize()));
        }));
        std::mt19937 random(20240607);
        int accepted = 0;
        int refused = 0;
        for (int round = 0; round < 3000; ++round) {
            std::string bytes = documents[random() % documents.size()];
            for (std::size_t changes = 1 + random() % 3; changes > 0; --changes) {
                bytes[random() % bytes.size()] = static_cast<char>(random());
            }
            if (round % 4 == 0) {
                bytes.resize(random() % bytes.size());
            }
            IDataPtr record;
            const utils::NVError error = decodeRecord(bytes.data(), bytes.size(), record);
            QCOMPARE(static_cast<bool>(record), error.isSuccess());
            if (!record) {
                ++refused;
                QVERIFY(!error.errorMsg().empty());
                // Only what is not UTF-8 changes on the way; the document may hold a replacement character itself.
                QCOMPARE(QString::fromStdString(error.errorMsg()).toStdString(), error.errorMsg());
                continue;
            }
            ++accepted;
            IDataPtr again;
            QVERIFY(decodeRecord(encodeRecord(*record), again).isSuccess());
            QVERIFY(encodeRecord(*again).binaryEqual(encodeRecord(*record)));
        }
        QVERIFY(accepted > 0);
        QVERIFY(refused > 0);
    }

    void everyTruncationIsRefused()
    {
        QVERIFY(rc::check([] {
            const bson::BSONObj document = encodeRecord(*samples::recordKinds()[1].makeRandom());
            // Exact allocations, so that a read beyond the end is seen by the address sanitizer.
            for (std::size_t size = 0; size < static_cast<std::size_t>(document.objsize()); ++size) {
                const std::vector<char> bytes(document.objdata(), document.objdata() + size);
                IDataPtr record;
                RC_ASSERT(decodeRecord(bytes.data(), size, record).code() == EErrorCode::Malformed);
                RC_ASSERT(record == nullptr);
            }
        }));
    }

    void aFieldOfANestedRecordIsNamedByItsPath()
    {
        const utils::NVError error =
            decodeError(group(BSON("accounts" << BSON_ARRAY(bson::BSONObj() << BSON("accountName" << 7)))));
        QCOMPARE(error.code(), EErrorCode::Malformed);
        QCOMPARE(error.errorMsg(), std::string("数据格式错误: 类型不符(字段 accounts.1.accountName)"));
    }

    void valuesThatNoFieldCanHoldAreRefused_data()
    {
        addColumns();
        const auto limit = [](auto threshold) {
            return BSON("_type" << "nvservice::CAssetsRC"
                                << "threshold" << threshold);
        };
        bson::BSONArrayBuilder listOfNull;
        listOfNull.appendNull();
        row("number too large", group(BSON("groupId" << 5000000000LL)), "groupId");
        row("number too small", group(BSON("institutionId" << -5000000000LL)), "institutionId");
        row("fraction as an integer", group(BSON("groupId" << 1.5)), "groupId");
        row("null in a list of records", group(BSON("accounts" << listOfNull.arr())), "accounts.0");
        row("a document in place of a list", group(BSON("accounts" << bson::BSONObj())), "accounts");
        row("text that is not UTF-8", group(BSON("groupName" << "\xC0\xAF")), "groupName");
        row("half a surrogate pair", group(BSON("groupName" << "\xED\xA0\x80")), "groupName");
        row("tag that is not UTF-8", group(BSON("_tag" << "\xFF")), "_tag");
        row("field twice",
            group(BSON("groupId" << 1 << "groupName"
                                 << ""
                                 << "groupId" << 2)),
            "groupId");
        row("not a number", limit(std::numeric_limits<double>::quiet_NaN()), "threshold");
        row("infinite", limit(std::numeric_limits<double>::infinity()), "threshold");
        row("no type", BSON("groupId" << 1), "_type");
        row("unknown type", BSON("_type" << "nvservice::CNobody"), "_type");
        row("record of another class inside",
            group(BSON("accounts" << BSON_ARRAY(BSON("_type" << "nvservice::CUserInfo")))), "accounts.0._type");
        row("unknown class in a list of any record",
            BSON("_type" << "nvservice::CKolmProductsResp"
                         << "products" << BSON_ARRAY(BSON("productId" << 1))),
            "products.0._type");
    }
    void valuesThatNoFieldCanHoldAreRefused() { verifyRow(); }

    void requestsNestedInRequestsEndAtTheDepthLimit()
    {
        bson::BSONObj document = BSON("_type" << "nvservice::COperateDataReq");
        for (int depth = 1; depth < MaxDocumentDepth; ++depth) {
            document = BSON("_type" << "nvservice::COperateDataReq"
                                    << "data" << document);
        }
        QVERIFY(decodeError(document).isSuccess());
        document = BSON("_type" << "nvservice::COperateDataReq"
                                << "data" << document);
        QCOMPARE(decodeError(document).code(), EErrorCode::ResourceExhausted);
    }

    void aRecordBeyondTheSizeOfADocumentIsNotEncoded()
    {
        CAccountGroup group;
        const std::size_t besides = static_cast<std::size_t>(encodeRecord(group).objsize());
        group.groupName.assign(MaxDocumentBytes - besides, 'x');
        const bson::BSONObj largest = encodeRecord(group);
        QCOMPARE(static_cast<std::size_t>(largest.objsize()), MaxDocumentBytes);
        QVERIFY(decodeError(largest).isSuccess());
        for (const std::size_t more : {std::size_t(1), std::size_t(5), 5 * MaxDocumentBytes}) {
            group.groupName.append(more, 'x');
            QVERIFY(encodeRecord(group).isEmpty());
            bson::BSONObjBuilder builder;
            QVERIFY(!encodeRecord(group, builder));
        }
    }
};

TEST_WITHOUT_WIDGETS(RecordRefusalTest)
#include "tst_record_refusal.moc"
