// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/CustomEmailRC.h>
#include <nvservice/DataType.h>
#include <nvservice/MetaTypes.h>
#include <nvservice/SystemTag.h>
#include <nvservice/TypeManager.h>
#include <nvservice/UserRight.h>

#include <rapidcheck.h>

#include <boost/make_shared.hpp>

#include <thread>

using namespace nvservice;

namespace
{

boost::shared_ptr<CAccountInfo> account(EZVBrokerType type, const char* id, const char* unit = "")
{
    const auto result = boost::make_shared<CAccountInfo>();
    result->brokerType = type;
    result->accountId = id;
    result->unitId = unit;
    return result;
}

} // namespace

class RecordBasicsTest : public QObject
{
    Q_OBJECT

signals:
    void sigRecords(std::vector<nvservice::IDataPtr> datas, int nTotalDataCount);

private slots:
    void recordsCrossThreadsInQueuedSignals()
    {
        registerMetaTypes();
        registerMetaTypes();
        QVERIFY(QMetaType::type("std::vector<nvservice::IDataPtr>") != QMetaType::UnknownType);
        std::vector<IDataPtr> received;
        QThread* receivedOn = nullptr;
        const auto connection =
            connect(this, &RecordBasicsTest::sigRecords, this, [&](std::vector<IDataPtr> records, int) {
                received = std::move(records);
                receivedOn = QThread::currentThread();
            });
        const auto sent = boost::make_shared<CAccountGroup>();
        std::thread([this, &sent] { emit sigRecords({sent}, 1); }).join();
        QVERIFY(received.empty());
        QTRY_COMPARE(received.size(), std::size_t(1));
        QCOMPARE(received[0].get(), static_cast<IData*>(sent.get()));
        QCOMPARE(receivedOn, thread());
        disconnect(connection);
    }

    void keysNameServerAndIdentity()
    {
        CAccountGroup group;
        QCOMPARE(group.getKey(), std::string("|-1"));
        group.groupId = 12;
        group.setSystemTag("sys1");
        QCOMPARE(group.getKey(), std::string("sys1|12"));
        QCOMPARE(group.getCsKey(), group.getKey());

        const auto unit = account(EZVBrokerType::Interbank, "00123", "07");
        unit->setSystemTag("sys1");
        QCOMPARE(unit->getKey(), std::string("sys1|15002|00123|07"));
        QCOMPARE(account(EZVBrokerType::Future, "9")->getKey(), std::string("|1|9|"));

        CKolmAccountInfo wrapper;
        wrapper.account = account(EZVBrokerType::Stock, "5");
        wrapper.setSystemTag("sys2");
        QCOMPARE(wrapper.getKey(), std::string("sys2|2|5|"));
        wrapper.account.reset();
        QCOMPARE(wrapper.getKey(), std::string("sys2"));

        CEmailRC email;
        email.ruleKind = "2";
        email.accountKey = "12";
        email.ruleKey = "a|b";
        QCOMPARE(email.getKey(), std::string("|2|12|a\\|b"));

        COperateDataReq request;
        request.dataType = DataType::AccountGroup;
        request.operationId = "op";
        QCOMPARE(request.getKey(), std::string("|625|op"));
    }

    void differentAccountsNeverShareAKey()
    {
        QVERIFY(rc::check([] {
            const auto text = [] { return *rc::gen::container<std::string>(rc::gen::element('|', '\\', 'a')); };
            CAccountInfo left;
            CAccountInfo right;
            for (CAccountInfo* record : {&left, &right}) {
                record->setSystemTag(text());
                record->accountId = text();
                record->unitId = text();
            }
            const bool same = left.getSystemTag() == right.getSystemTag() && left.accountId == right.accountId &&
                              left.unitId == right.unitId;
            RC_ASSERT((left.getKey() == right.getKey()) == same);
        }));
    }

    void aNewGroupBelongsToNoInstitutionAndHasNoId()
    {
        const CAccountGroup group;
        QCOMPARE(group.groupId, -1);
        QCOMPARE(group.institutionId, NoInstitutionId);
        QCOMPARE(NoInstitutionId, 2147483647);
        QVERIFY(group.institutionName.empty());
        QVERIFY(group.accounts.empty());
        QVERIFY(group.getSystemTag().empty());
        QCOMPARE(group.revision(), std::int64_t(0));
    }

    void changingACopyLeavesTheOriginalUntouched()
    {
        CAccountGroup group;
        group.accounts.push_back(account(EZVBrokerType::Future, "1"));
        const auto copy = boost::dynamic_pointer_cast<CAccountGroup>(group.copy());
        copy->accounts[0]->accountId = "changed";
        copy->accounts.push_back(account(EZVBrokerType::Future, "2"));
        QCOMPARE(group.accounts.size(), std::size_t(1));
        QCOMPARE(group.accounts[0]->accountId, std::string("1"));

        COperateDataReq request;
        request.data = boost::make_shared<CAccountGroup>(group);
        const auto requestCopy = boost::dynamic_pointer_cast<COperateDataReq>(request.copy());
        const auto groupCopy = boost::dynamic_pointer_cast<CAccountGroup>(requestCopy->data);
        groupCopy->groupName = "changed";
        groupCopy->accounts[0]->accountId = "changed";
        QVERIFY(boost::dynamic_pointer_cast<CAccountGroup>(request.data)->groupName.empty());
        QCOMPARE(group.accounts[0]->accountId, std::string("1"));

        CKolmAccountInfo wrapper;
        const auto wrapperCopy = boost::dynamic_pointer_cast<CKolmAccountInfo>(wrapper.copy());
        QVERIFY(wrapperCopy->account != wrapper.account);
        wrapper.account.reset();
        QVERIFY(!boost::dynamic_pointer_cast<CKolmAccountInfo>(wrapper.copy())->account);

        CAccountGroupRCConfig config;
        config.rcRule.list(EZvTraderType::Future).entries.resize(2);
        const auto configCopy = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(config.copy());
        configCopy->rcRule.list(EZvTraderType::Future).entries.clear();
        QCOMPARE(config.rcRule.findList(EZvTraderType::Future)->entries.size(), std::size_t(2));
    }

    void aCopyOwnsUnknownFieldsThatTheOriginalOnlyBorrowed()
    {
        const bson::BSONObj document = BSON("later" << 1);
        std::vector<char> bytes(document.objdata(), document.objdata() + document.objsize());
        CCategoryInfo category;
        category.unknownFields = bson::BSONObj(bytes.data(), bytes.size());
        const IDataPtr copy = category.copy();
        category.unknownFields = bson::BSONObj();
        std::fill(bytes.begin(), bytes.end(), '\0');
        QVERIFY(copy->unknownFields.binaryEqual(document));
    }

    void theTagOfARecordIsItsOwn()
    {
        const auto member = account(EZVBrokerType::Stock, "1");
        member->setSystemTag("A");
        CAccountGroup group;
        group.accounts = {member};
        group.setSystemTag("B");
        QCOMPARE(group.getSystemTag(), std::string("B"));
        QCOMPARE(member->getSystemTag(), std::string("A"));

        CKolmAccountInfo wrapper;
        wrapper.account = member;
        wrapper.setSystemTag("B");
        QCOMPARE(member->getSystemTag(), std::string("A"));
    }

    void allOfARecordCanBeTagged()
    {
        const auto member = account(EZVBrokerType::Stock, "1");
        const auto product = boost::make_shared<CProductInfo>();
        product->accounts = {member, nullptr};
        CKolmProductsResp reply;
        reply.products = {product, nullptr};
        setSystemTagOfAll(reply, "B");
        QCOMPARE(reply.getSystemTag(), std::string("B"));
        QCOMPARE(product->getSystemTag(), std::string("B"));
        QCOMPARE(member->getSystemTag(), std::string("B"));

        CKolmAccountInfo wrapper;
        wrapper.account = member;
        setSystemTagOfAll(wrapper, "C");
        QCOMPARE(member->getSystemTag(), std::string("C"));

        CAccountGroupRCConfig config;
        config.assetsRCs.resize(1);
        config.emailRCs.resize(1);
        setSystemTagOfAll(config, "D");
        QCOMPARE(config.rcRule.getSystemTag(), std::string("D"));
        QCOMPARE(config.ratProofSetting.getSystemTag(), std::string("D"));
        QCOMPARE(config.assetsRCs[0].getSystemTag(), std::string("D"));
        QCOMPARE(config.emailRCs[0].getSystemTag(), std::string("D"));

        CustomEmailRC emails;
        emails.emailRCs.resize(1);
        emails.emailRCs[0].setSystemTag("E");
        setSystemTagOfAll(emails, emails.emailRCs[0].getSystemTag());
        QCOMPARE(emails.getSystemTag(), std::string("E"));
    }

    void missingTagsAreAddedAndOthersKept()
    {
        const auto product = boost::make_shared<CProductInfo>();
        product->accounts = {account(EZVBrokerType::Stock, "1"), nullptr, account(EZVBrokerType::Stock, "2")};
        product->accounts[2]->setSystemTag("A");
        product->setSystemTag("B");
        CKolmProductsResp reply;
        reply.products = {nullptr, product};
        addMissingSystemTags(reply, "C");
        QCOMPARE(reply.getSystemTag(), std::string("C"));
        QCOMPARE(product->getSystemTag(), std::string("B"));
        QCOMPARE(product->accounts[0]->getSystemTag(), std::string("C"));
        QCOMPARE(product->accounts[2]->getSystemTag(), std::string("A"));
    }

    void aRuleHasOnePartPerTradeType()
    {
        CAccountGroupRCRule rule;
        QVERIFY(!rule.findList(EZvTraderType::Stock));
        rule.list(EZvTraderType::Stock).entries.resize(3);
        rule.list(EZvTraderType::Interbank);
        QCOMPARE(rule.list(EZvTraderType::Stock).entries.size(), std::size_t(3));
        QCOMPARE(rule.lists.size(), std::size_t(2));
        QCOMPARE(static_cast<int>(rule.findList(EZvTraderType::Interbank)->traderType), 32768);
    }

    void brokerTypesHaveTheNamesTheUserKnows_data()
    {
        const support::DataRows<int, QString> row("value", "name");
        const std::pair<int, const char*> names[] = {{1, "期货账号"},      {2, "证券账号"},      {3, "信用账号"},
                                                     {4, "贵金属账号"},    {5, "期货期权账号"},  {6, "股票期权账号"},
                                                     {7, "沪港通账号"},    {10, "全国股转账号"}, {11, "深港通账号"},
                                                     {12, "全业务账号"},   {13, "理财账号"},     {1001, "外盘期货账号"},
                                                     {1002, "IB外盘账号"}, {15002, "银行间账号"}};
        for (const auto& [value, name] : names) {
            row(QString::number(value), value, QString(name));
        }
        for (const int value : {0, 8, 9, 14, -1, 15001}) {
            row("without a name " + QString::number(value), value, QString::number(value));
        }
    }
    void brokerTypesHaveTheNamesTheUserKnows()
    {
        QFETCH(int, value);
        QFETCH(QString, name);
        QCOMPARE(QString::fromStdString(TypeManager::getEnumItemName("nvservice::EZVBrokerType", value, 1)), name);
    }

    void directionsAreNamedByTradeType()
    {
        const std::string type = "nvservice::EZVRCDirection";
        QCOMPARE(TypeManager::getEnumItemName(type, 1, static_cast<int>(EZvTraderType::Stock)), std::string("买入"));
        QCOMPARE(TypeManager::getEnumItemName(type, 1, static_cast<int>(EZvTraderType::StockOption)),
                 std::string("买"));
        QCOMPARE(TypeManager::getEnumItemName(type, 0, static_cast<int>(EZvTraderType::StockOption)),
                 std::string("双向"));
    }

    void anEnumThatIsNotKnownHasNoNames()
    {
        QCOMPARE(TypeManager::getEnumItemName("EZVBrokerType", 1, 1), std::string());
        QCOMPARE(TypeManager::getEnumItemName("", 1, 1), std::string());
    }

    void anAccountIsShownByIdAndUnit()
    {
        QCOMPARE(accountDisplayID(account(EZVBrokerType::Stock, "00123")), std::string("00123"));
        QCOMPARE(accountDisplayID(account(EZVBrokerType::Stock, "00123", "07")), std::string("00123-07"));
        QCOMPARE(accountDisplayID(nullptr), std::string());
    }
};

TEST_WITHOUT_WIDGETS(RecordBasicsTest)
#include "tst_record_basics.moc"
