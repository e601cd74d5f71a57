// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/Codec.h>

#include <rapidcheck.h>

#include <boost/make_shared.hpp>

using namespace nvservice;
using AccountPtr = boost::shared_ptr<CAccountInfo>;

namespace
{

AccountPtr account(const std::string& id)
{
    const auto account = boost::make_shared<CAccountInfo>();
    account->accountId = id;
    return account;
}

bson::BSONObj groupOf(const std::vector<AccountPtr>& accounts)
{
    CAccountGroup group;
    group.accounts = accounts;
    return encodeRecord(group);
}

bson::BSONObj groupWithNumberAsAccountName()
{
    return BSON("_type" << "nvservice::CAccountGroup" << "accounts" << BSON_ARRAY(BSON("accountName" << 7)));
}

/// The accounts of the group; empty if it is refused.
std::vector<AccountPtr> accountsOf(const bson::BSONObj& group, CRecordDecoder& decoder)
{
    IDataPtr record;
    decoder.decode(group.objdata(), static_cast<std::size_t>(group.objsize()), record);
    return record ? static_cast<const CAccountGroup&>(*record).accounts : std::vector<AccountPtr>();
}

} // namespace

/// The decoder of an answer, which lets its records share accounts.
class RecordDecoderTest : public QObject
{
    Q_OBJECT

private slots:
    void recordsOfAnAnswerAreDecodedAsEachIsAlone()
    {
        QVERIFY(rc::check([] {
            std::vector<std::string> sent;
            CRecordDecoder decoder;
            std::size_t documents = 0;
            for (int i = *rc::gen::inRange(1, 12); i > 0; --i) {
                if (sent.empty() || *rc::gen::inRange(0, 3) != 0) {
                    const auto& kinds = samples::recordKinds();
                    const auto& kind = kinds[*rc::gen::inRange<std::size_t>(0, 5)]; // those with accounts
                    const bson::BSONObj document = encodeRecord(*kind.makeRandom());
                    sent.emplace_back(document.objdata(), static_cast<std::size_t>(document.objsize()));
                }
                std::string bytes = sent[*rc::gen::inRange<std::size_t>(0, sent.size())];
                if (*rc::gen::inRange(0, 3) == 0) {
                    bytes[*rc::gen::inRange<std::size_t>(0, bytes.size())] = *rc::gen::arbitrary<char>();
                }
                IDataPtr expected;
                IDataPtr actual;
                const utils::NVError alone = decodeRecord(bytes.data(), bytes.size(), expected, &documents);
                const utils::NVError error = decoder.decode(bytes.data(), bytes.size(), actual);
                RC_ASSERT(error.code() == alone.code());
                RC_ASSERT(error.errorMsg() == alone.errorMsg());
                RC_ASSERT(static_cast<bool>(actual) == static_cast<bool>(expected));
                if (actual) {
                    RC_ASSERT(encodeRecord(*actual).binaryEqual(encodeRecord(*expected)));
                }
            }
            RC_ASSERT(decoder.documents() == documents);
        }));
    }

    void equalAccountsAreOneRecord()
    {
        CRecordDecoder decoder;
        const auto first = accountsOf(groupOf({account("1"), account("2"), account("1")}), decoder);
        const auto second = accountsOf(groupOf({account("3"), account("2")}), decoder);
        QCOMPARE(first.size(), std::size_t(3));
        QCOMPARE(second.size(), std::size_t(2));
        QCOMPARE(first[0], first[2]);
        QCOMPARE(first[1], second[1]);
        QVERIFY(first[0] != first[1]);
        QVERIFY(second[0] != first[0]);
    }

    void anotherAnswerHasItsOwnRecords()
    {
        const bson::BSONObj group = groupOf({account("1")});
        CRecordDecoder decoder;
        CRecordDecoder other;
        const auto first = accountsOf(group, decoder);
        const auto second = accountsOf(group, other);
        QCOMPARE(first.size(), std::size_t(1));
        QCOMPARE(second.size(), std::size_t(1));
        QVERIFY(first[0] != second[0]);
    }

    void aRefusedAccountIsRefusedAgain()
    {
        CRecordDecoder decoder;
        for (int time = 0; time < 2; ++time) {
            const bson::BSONObj group = groupWithNumberAsAccountName();
            IDataPtr record;
            const utils::NVError error =
                decoder.decode(group.objdata(), static_cast<std::size_t>(group.objsize()), record);
            QCOMPARE(error.code(), utils::EErrorCode::Malformed);
            QVERIFY(!record);
        }
    }
};

TEST_WITHOUT_WIDGETS(RecordDecoderTest)
#include "tst_record_decoder.moc"
