// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/Codec.h>
#include <nvservice/SystemTag.h>

#include <rapidcheck.h>

#include <boost/make_shared.hpp>

using namespace nvservice;

namespace
{

IDataPtr decoded(const bson::BSONObj& document)
{
    IDataPtr record;
    const utils::NVError error = decodeRecord(document, record);
    return error.isSuccess() ? record : IDataPtr();
}

/// A document with the same elements, the last first.
bson::BSONObj reversed(const bson::BSONObj& document)
{
    std::vector<bson::BSONElement> elements;
    for (bson::BSONObjIterator it(document); it.more();) {
        elements.push_back(it.next());
    }
    bson::BSONObjBuilder builder;
    for (auto it = elements.rbegin(); it != elements.rend(); ++it) {
        builder.append(*it);
    }
    return builder.obj();
}

/// A class that the library does not know.
class CForeignRecord : public IData
{
public:
    std::string getKey() const override { return {}; }
    IDataPtr copy() const override { return boost::make_shared<CForeignRecord>(*this); }
    const char* typeName() const override { return "nvservice::CAccountGroup"; }
};

} // namespace

class RecordRoundTripTest : public QObject
{
    Q_OBJECT

private slots:
    void anyRecordComesBackFromItsDocumentUnchanged_data() { samples::addKinds(); }
    void anyRecordComesBackFromItsDocumentUnchanged()
    {
        const samples::RecordKind& tested = samples::kindOfRow();
        QVERIFY(rc::check(tested.typeName, [&tested] {
            const IDataPtr record = tested.makeRandom();
            const IDataPtr back = decoded(encodeRecord(*record));
            RC_ASSERT(back != nullptr);
            const char* difference = tested.difference(*record, *back);
            RC_ASSERT(std::string(difference ? difference : "") == std::string());
            RC_ASSERT(encodeRecord(*back).binaryEqual(encodeRecord(*record)));
            RC_ASSERT(back->getKey() == record->getKey());
        }));
    }

    void theOrderOfElementsDoesNotMatter_data() { samples::addKinds(); }
    void theOrderOfElementsDoesNotMatter()
    {
        const samples::RecordKind& tested = samples::kindOfRow();
        QVERIFY(rc::check(tested.typeName, [&tested] {
            const IDataPtr record = tested.makeRandom();
            record->unknownFields = bson::BSONObj(); // their order among themselves is part of what is kept
            const IDataPtr back = decoded(reversed(encodeRecord(*record)));
            RC_ASSERT(back != nullptr);
            RC_ASSERT(tested.difference(*record, *back) == nullptr);
        }));
    }

    void aDocumentWithNothingButItsTypeGivesTheDefaults_data() { samples::addKinds(); }
    void aDocumentWithNothingButItsTypeGivesTheDefaults()
    {
        const IDataPtr back = decoded(BSON("_type" << samples::kindOfRow().typeName));
        QVERIFY(back);
        QCOMPARE(samples::kindOfRow().difference(*samples::kindOfRow().makeDefault(), *back),
                 static_cast<const char*>(nullptr));
    }

    void aCopyIsEqualAndSharesNothing_data() { samples::addKinds(); }
    void aCopyIsEqualAndSharesNothing()
    {
        const samples::RecordKind& tested = samples::kindOfRow();
        QVERIFY(rc::check(tested.typeName, [&tested] {
            const IDataPtr record = tested.makeRandom();
            const bson::BSONObj before = encodeRecord(*record);
            const IDataPtr copy = record->copy();
            RC_ASSERT(copy != record);
            RC_ASSERT(tested.difference(*record, *copy) == nullptr);
            setSystemTagOfAll(*copy, "another");
            RC_ASSERT(encodeRecord(*record).binaryEqual(before));
        }));
    }

    void manyRecordsCanShareOneBuilderBuffer()
    {
        bson::BufBuilder buffer;
        for (const char* name : {"甲", "乙"}) {
            buffer.setlen(0);
            CAccountGroup group;
            group.groupName = name;
            {
                bson::BSONObjBuilder builder(buffer);
                QVERIFY(encodeRecord(group, builder));
            }
            IDataPtr back;
            QVERIFY(decodeRecord(buffer.buf(), static_cast<std::size_t>(buffer.len()), back).isSuccess());
            QCOMPARE(boost::dynamic_pointer_cast<CAccountGroup>(back)->groupName, std::string(name));
        }
    }

    void aDecodedRecordOutlivesTheBytesItCameFrom()
    {
        CAccountGroup group;
        group.accounts.push_back(boost::make_shared<CAccountInfo>());
        group.accounts[0]->unknownFields = BSON("later" << "nested");
        group.unknownFields = BSON("later" << BSON_ARRAY(1 << 2));
        const bson::BSONObj document = encodeRecord(group);
        std::vector<char> bytes(document.objdata(), document.objdata() + document.objsize());
        IDataPtr back;
        QVERIFY(decodeRecord(bytes.data(), bytes.size(), back).isSuccess());
        std::fill(bytes.begin(), bytes.end(), '\xFF');
        QVERIFY(encodeRecord(*back).binaryEqual(document));
    }

    void unknownFieldsNeverReplaceTheFieldsOfARecord()
    {
        CAccountInfo account;
        account.accountId = "00123";
        account.setSystemTag("A");
        account.unknownFields = BSON("accountId" << 7 << "_tag"
                                                 << "B"
                                                 << "_type"
                                                 << "x"
                                                 << "_rev" << 9 << "later"
                                                 << "kept");
        const boost::shared_ptr<CAccountInfo> back =
            boost::dynamic_pointer_cast<CAccountInfo>(decoded(encodeRecord(account)));
        QVERIFY(back);
        QCOMPARE(back->accountId, std::string("00123"));
        QCOMPARE(back->getSystemTag(), std::string("A"));
        QCOMPARE(back->revision(), std::int64_t(0));
        QVERIFY(back->unknownFields.binaryEqual(BSON("later" << "kept")));
    }

    void nullPointersInListsAreLeftOut()
    {
        CAccountGroup group;
        group.accounts = {nullptr, boost::make_shared<CAccountInfo>(), nullptr};
        const auto back = boost::dynamic_pointer_cast<CAccountGroup>(decoded(encodeRecord(group)));
        QVERIFY(back);
        QCOMPARE(back->accounts.size(), std::size_t(1));
        QVERIFY(back->accounts[0]);
    }

    void anOperationCarriesARecordOfAnyClassOrNone()
    {
        COperateDataReq request;
        QVERIFY(!boost::dynamic_pointer_cast<COperateDataReq>(decoded(encodeRecord(request)))->data);
        const auto config = boost::make_shared<CAccountGroupRCConfig>();
        config->groupId = 17;
        config->rcRule.list(EZvTraderType::Stock).entries.push_back({"000001", "平安银行", {}, {}, {}});
        request.data = config;
        const auto back = boost::dynamic_pointer_cast<COperateDataReq>(decoded(encodeRecord(request)));
        const auto data = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(back->data);
        QVERIFY(data);
        QCOMPARE(data->groupId, 17);
        QCOMPARE(data->rcRule.findList(EZvTraderType::Stock)->entries.at(0).securityCode, std::string("000001"));
    }

    void aClassThatIsNotKnownIsNotEncodedWhateverNameItGives()
    {
        const auto foreign = boost::make_shared<CForeignRecord>();
        QVERIFY(encodeRecord(*foreign).isEmpty());
        COperateDataReq request;
        request.data = foreign;
        QVERIFY(encodeRecord(request).isEmpty());
    }

    void smallNumbersMayComeAsWideOnes()
    {
        const IDataPtr back = decoded(BSON("_type" << "nvservice::CAccountGroup"
                                                   << "groupId" << 7LL << "_rev" << 3));
        QVERIFY(back);
        QCOMPARE(boost::dynamic_pointer_cast<CAccountGroup>(back)->groupId, 7);
        QCOMPARE(back->revision(), std::int64_t(3));
    }
};

TEST_WITHOUT_WIDGETS(RecordRoundTripTest)
#include "tst_record_round_trip.moc"
