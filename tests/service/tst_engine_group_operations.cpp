// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include <nvservice/CKolmProductsResp.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/Codec.h>

#include "service/store/Query.h"
#include "support/TestProgram.h"

using namespace testservice;

class GroupOperationsTest : public ServiceTest
{
    Q_OBJECT

    static constexpr int Groups = nvservice::DataType::AccountGroup;

    static GroupPtr decoded(const QByteArray& body)
    {
        nvservice::IDataPtr record;
        if (!nvservice::decodeRecord(bson::BSONObj(body.constData(), static_cast<std::size_t>(body.size())), record)
                 .isSuccess()) {
            return {};
        }
        return boost::dynamic_pointer_cast<CAccountGroup>(record);
    }

private slots:
    void addedGroupComesBackComplete()
    {
        const auto added =
            group("对冲一号", First,
                  {account(EZVBrokerType::Stock, "0010", "01"), future("8001"), account(EZVBrokerType::Stock, "0010")});
        added->accounts[0]->setSystemTag("E");
        const service::Reply reply = m_fixture->operate(EZvDataOperation::Add, added);
        COMPARE_CODE(reply, EErrorCode::Success);
        QVERIFY(reply.document.isEmpty());
        QVERIFY(reply.records.empty());

        const service::Reply all = m_fixture->query(Groups);
        COMPARE_CODE(all, EErrorCode::Success);
        QCOMPARE(all.totalCount, 1);
        const auto record = boost::dynamic_pointer_cast<CAccountGroup>(all.records.at(0));
        QCOMPARE(record->groupId, 1);
        QCOMPARE(record->groupName, std::string("对冲一号"));
        QCOMPARE(record->institutionId, First);
        QCOMPARE(record->institutionName, std::string("甲机构"));
        QCOMPARE(record->revision(), std::int64_t{1});
        QCOMPARE(record->getSystemTag(), std::string("E"));
        QCOMPARE(record->accounts.size(), std::size_t{3});
        QCOMPARE(record->accounts[0]->getKey(), std::string("E|2|0010|01"));
        QCOMPARE(record->accounts[1]->getKey(), std::string("E|1|8001|"));
        QCOMPARE(record->accounts[2]->getKey(), std::string("E|2|0010|"));
        QCOMPARE(record->accounts[1]->accountName, std::string("户名8001"));
        QCOMPARE(record->accounts[1]->institutionName, std::string("甲机构"));
        QCOMPARE(record->accounts[1]->getSystemTag(), std::string("E"));

        // Asked for alone, the group is the same.
        const service::Reply one = m_fixture->query(Groups, "1");
        QCOMPARE(nvservice::encodeRecord(*one.records.at(0)).toString(), nvservice::encodeRecord(*record).toString());
        QCOMPARE(m_fixture->number("SELECT revision FROM group_risk_config WHERE group_id = 1"), 1);
    }

    void accountsOfALargeGroupKeepTheirOrder()
    {
        const service::ServerData data{m_fixture->store().connection(), m_fixture->server(0)};
        std::vector<boost::shared_ptr<CAccountInfo>> members;
        for (int i = 0; i < 217; ++i) {
            members.push_back(account(EZVBrokerType::Stock, std::to_string(1000 + i * 37 % 217), "大"));
            members.back()->institutionId = First;
            service::putAccount(data, *members.back(), 0, false);
        }
        const auto keysOf = [](const CAccountGroup& record) {
            std::vector<std::string> keys;
            for (const auto& each : record.accounts) {
                keys.push_back(each->accountId);
            }
            return keys;
        };
        const GroupPtr added = group("大组", First, members);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, added), EErrorCode::Success);
        const GroupPtr stored = m_fixture->current(1);
        QCOMPARE(keysOf(*stored), keysOf(*added));

        std::reverse(stored->accounts.begin(), stored->accounts.end());
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, stored), EErrorCode::Success);
        QCOMPARE(keysOf(*m_fixture->current(1)), keysOf(*stored));

        stored->setRevision(2);
        stored->accounts.back() = account(EZVBrokerType::Stock, "999", "大");
        const service::Reply reply = m_fixture->operate(EZvDataOperation::Modify, stored);
        COMPARE_CODE(reply, EErrorCode::InvalidValue);
        QVERIFY(reply.error.errorMsg().find("999") != std::string::npos);
    }

    void modifyCountsTheRevisionAndDeleteRemovesTheGroup()
    {
        const GroupPtr record = m_fixture->storedGroup("旧名");
        record->groupName = "新名";
        record->accounts = {future("8002"), future("8001")};
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::Success);
        const GroupPtr changed = m_fixture->current(record->groupId);
        QCOMPARE(changed->groupName, std::string("新名"));
        QCOMPARE(changed->revision(), std::int64_t{2});
        QCOMPARE(changed->accounts.size(), std::size_t{2});
        QCOMPARE(changed->accounts[0]->accountId, std::string("8002"));

        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, changed), EErrorCode::Success);
        QVERIFY(!m_fixture->current(record->groupId));
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group_member"), 0);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM group_risk_config"), 0);
    }

    void groupIdIsNeverUsedAgain()
    {
        const GroupPtr first = m_fixture->storedGroup("一");
        m_fixture->operate(EZvDataOperation::Delete, first);
        m_fixture->operate(EZvDataOperation::Add, group("二", First, {future("8001")}));
        QCOMPARE(m_fixture->number("SELECT group_id FROM account_group"), first->groupId + 1);
    }

    void outdatedRevisionIsRefusedAndSaysWhoAndWhen()
    {
        const auto zhang = m_fixture->session("zhang", everyRight());
        const GroupPtr seen = m_fixture->storedGroup("组");
        const auto mine = boost::dynamic_pointer_cast<CAccountGroup>(seen->copy());
        seen->groupName = "张的名字";
        COMPARE_CODE(operate(m_fixture->east(), zhang, EZvDataOperation::Modify, seen), EErrorCode::Success);

        mine->groupName = "我的名字";
        for (const auto operation : {EZvDataOperation::Modify, EZvDataOperation::Delete}) {
            const service::Reply reply = m_fixture->operate(operation, mine);
            COMPARE_CODE(reply, EErrorCode::Conflict);
            const QString text = QString::fromStdString(reply.error.errorMsg());
            QVERIFY2(text.contains("姓名zhang（zhang）"), qPrintable(text));
            const qint64 at = m_fixture->number("SELECT modified_at FROM account_group");
            QVERIFY2(text.contains(QDateTime::fromMSecsSinceEpoch(at).toString("yyyy-MM-dd HH:mm:ss")),
                     qPrintable(text));
        }
        QCOMPARE(m_fixture->current(mine->groupId)->groupName, std::string("张的名字"));
        QCOMPARE(m_fixture->current(mine->groupId)->revision(), std::int64_t{2});

        // A revision of the future or none is as wrong as one of the past.
        for (const std::int64_t revision : {std::int64_t{0}, std::int64_t{3}, std::int64_t{-1}}) {
            mine->setRevision(revision);
            COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, mine), EErrorCode::Conflict);
        }
    }

    void groupThatIsGoneIsNotFoundAndSaysWhoDeletedIt()
    {
        const auto zhang = m_fixture->session("zhang", everyRight());
        const GroupPtr record = m_fixture->storedGroup("组");
        COMPARE_CODE(operate(m_fixture->east(), zhang, EZvDataOperation::Delete, record), EErrorCode::Success);
        for (const auto operation : {EZvDataOperation::Modify, EZvDataOperation::Delete}) {
            const service::Reply reply = m_fixture->operate(operation, record);
            COMPARE_CODE(reply, EErrorCode::NotFound);
            QVERIFY(reply.error.errorMsg().find("zhang") != std::string::npos);
        }
        record->groupId = 4711;
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, record), EErrorCode::NotFound);
    }

    void nameIsUniqueOnItsServerOnly()
    {
        m_fixture->storedGroup("同名");
        const GroupPtr other = m_fixture->storedGroup("别名");
        const auto again = group("同名", First, {future("8001")});
        const service::Reply reply = m_fixture->operate(EZvDataOperation::Add, again);
        COMPARE_CODE(reply, EErrorCode::Duplicate);
        QVERIFY(reply.error.errorMsg().find("同名") != std::string::npos);
        other->groupName = "同名";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, other), EErrorCode::Duplicate);
        QCOMPARE(m_fixture->current(other->groupId)->groupName, std::string("别名"));

        const auto western = m_fixture->session("western", everyRight(), None, 1);
        COMPARE_CODE(operate(m_fixture->west(), western, EZvDataOperation::Add, again), EErrorCode::Success);
        other->groupName = "别名";
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, other), EErrorCode::Success);
    }

    void operationSentTwiceIsAppliedOnce()
    {
        const auto sendTwice = [this](EZvDataOperation operation, const GroupPtr& record, const char* id) {
            const service::Reply first = m_fixture->operate(operation, record, id);
            const service::Reply again = m_fixture->operate(operation, record, id);
            return first.error.isSuccess() && again.error.isSuccess() && first.newId == again.newId ? first.newId : -1;
        };
        m_fixture->storedGroup("占用");
        QCOMPARE(sendTwice(EZvDataOperation::Add, group("组", First, {future("8001")}), "a"), std::int64_t{2});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), 2);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM audit WHERE operation_id = 'a'"), 1);

        const GroupPtr record = m_fixture->current(2);
        record->groupName = "改";
        QCOMPARE(sendTwice(EZvDataOperation::Modify, record, "b"), std::int64_t{0});
        QCOMPARE(m_fixture->current(2)->revision(), std::int64_t{2});
        QCOMPARE(sendTwice(EZvDataOperation::Delete, m_fixture->current(2), "c"), std::int64_t{0});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group_history WHERE group_id = 2"), 3);
    }

    void refusalIsRepeatedForTheSameOperationId()
    {
        const GroupPtr holder = m_fixture->storedGroup("占用");
        const auto add = group("占用", First, {future("8001")});
        const service::Reply first = m_fixture->operate(EZvDataOperation::Add, add, "a");
        COMPARE_CODE(first, EErrorCode::Duplicate);
        QCOMPARE(first.newId, std::int64_t{0});
        m_fixture->operate(EZvDataOperation::Delete, holder);
        const service::Reply again = m_fixture->operate(EZvDataOperation::Add, add, "a");
        COMPARE_CODE(again, EErrorCode::Duplicate);
        QCOMPARE(again.error.errorMsg(), first.error.errorMsg());
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, add, "b"), EErrorCode::Success);
    }

    void operationIdBelongsToOneUserAndOneRequest()
    {
        const auto other = m_fixture->session("other", everyRight());
        const auto a = group("甲组", First, {future("8001")});
        const auto b = group("乙组", First, {future("8001")});
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, a, "id"), EErrorCode::Success);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, b, "id"), EErrorCode::InvalidValue);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, a, "id"), EErrorCode::InvalidValue);
        COMPARE_CODE(operate(m_fixture->east(), other, EZvDataOperation::Add, b, "id"), EErrorCode::Success);
        COMPARE_CODE(operate(m_fixture->east(), other, EZvDataOperation::Add, b, std::string(129, 'x')),
                     EErrorCode::InvalidValue);
        QCOMPARE(m_fixture->number("SELECT count(*) FROM account_group"), 2);
    }

    void everyChangeAndRefusalIsAuditedWithBothStates()
    {
        const auto add = group("一", First, {future("8001")});
        m_fixture->operate(EZvDataOperation::Add, add, "op-1");
        const GroupPtr modified = m_fixture->current(1);
        modified->groupName = "二";
        m_fixture->operate(EZvDataOperation::Modify, modified, "op-2");
        m_fixture->operate(EZvDataOperation::Modify, modified, "op-3");
        m_fixture->operate(EZvDataOperation::Delete, m_fixture->current(1), "op-4");

        struct Expected {
            int operation;
            EErrorCode outcome;
            const char* before;
            const char* after;
        };
        const std::vector<Expected> expected = {{2, EErrorCode::Success, nullptr, "一"},
                                                {0, EErrorCode::Success, "一", "二"},
                                                {0, EErrorCode::Conflict, nullptr, "二"},
                                                {3, EErrorCode::Success, "二", nullptr}};
        service::Query audit(m_fixture->store().connection(),
                             "SELECT operation, outcome, before_body, after_body, login, record_key, operation_id,"
                             " message, data_type, at FROM audit ORDER BY id");
        audit.run();
        for (std::size_t i = 0; i < expected.size(); ++i) {
            QVERIFY(audit.next());
            QCOMPARE(static_cast<int>(audit.integer(0)), expected[i].operation);
            QCOMPARE(static_cast<int>(audit.integer(1)), static_cast<int>(expected[i].outcome));
            QCOMPARE(audit.isNull(2) || audit.blob(2).isEmpty(), expected[i].before == nullptr);
            QCOMPARE(audit.isNull(3) || audit.blob(3).isEmpty(), expected[i].after == nullptr);
            if (expected[i].before) {
                QCOMPARE(decoded(audit.blob(2))->groupName, std::string(expected[i].before));
            }
            if (expected[i].after) {
                QCOMPARE(decoded(audit.blob(3))->groupName, std::string(expected[i].after));
            }
            QCOMPARE(audit.text(4), std::string("admin"));
            QCOMPARE(audit.text(5), std::string("E|1"));
            QCOMPARE(audit.text(6), "op-" + std::to_string(i + 1));
            QCOMPARE(audit.text(7).empty(), expected[i].outcome == EErrorCode::Success);
            QCOMPARE(static_cast<int>(audit.integer(8)), Groups);
            QVERIFY(qAbs(audit.integer(9) - QDateTime::currentMSecsSinceEpoch()) < 600000);
        }
        QVERIFY(!audit.next());
    }

    void historyKeepsEveryRevisionOfAGroup()
    {
        m_fixture->operate(EZvDataOperation::Add, group("一", First, {future("8001")}));
        const GroupPtr record = m_fixture->current(1);
        record->groupName = "二";
        record->accounts = {future("8002"), future("8001")};
        m_fixture->operate(EZvDataOperation::Modify, record);
        service::Query(m_fixture->store().connection(), "UPDATE group_risk_config SET body = ?")
            .bind(QByteArray::fromHex("0500000000"))
            .run();
        m_fixture->operate(EZvDataOperation::Delete, m_fixture->current(1));
        QStringList lines;
        service::Query history(m_fixture->store().connection(),
                               "SELECT revision, operation, name, members, changed_by, length(risk_config)"
                               " FROM account_group_history ORDER BY revision");
        for (history.run(); history.next();) {
            lines << QString::fromStdString(history.text(0) + " " + history.text(1) + " " + history.text(2) + " " +
                                            history.text(3) + " " + history.text(4) + " " + history.text(5));
        }
        QCOMPARE(lines, (QStringList{"1 2 一 1 admin ", "2 0 二 2,1 admin ", "3 3 二 2,1 admin 5"}));
    }

    void productsComeAsOneRecordWithTheirAccounts()
    {
        const service::ServerData data{m_fixture->store().connection(), m_fixture->server(0)};
        service::putProduct(data, {1, "一号产品", First, false});
        service::putProduct(data, {2, "二号产品", Second, true});
        service::putProductAccount(data, 1, 1);
        service::putProductAccount(data, 1, 3);
        service::putProductAccount(data, 2, 5);
        const auto list = [&](const service::SessionPtr& session) {
            const service::Reply reply = query(m_fixture->east(), session, nvservice::DataType::Product);
            return boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(reply.records.at(0));
        };
        const auto all = list(m_fixture->admin());
        QCOMPARE(all->getSystemTag(), std::string("E"));
        QCOMPARE(all->products.size(), std::size_t{2});
        const auto first = boost::dynamic_pointer_cast<nvservice::CProductInfo>(all->products[0]);
        QCOMPARE(first->productName, std::string("一号产品"));
        QVERIFY(!first->excluded);
        QCOMPARE(first->getSystemTag(), std::string("E"));
        QCOMPARE(first->accounts.size(), std::size_t{2});
        QCOMPARE(first->accounts[1]->getKey(), std::string("E|2|0010|"));
        QVERIFY(boost::dynamic_pointer_cast<nvservice::CProductInfo>(all->products[1])->excluded);
        QCOMPARE(list(m_fixture->session("bound", {}, First))->products.size(), std::size_t{1});
        const auto western = m_fixture->session("western", {}, None, 1);
        const service::Reply none = query(m_fixture->west(), western, nvservice::DataType::Product);
        QCOMPARE(none.records.size(), std::size_t{1});
    }

    void accountsComeWithStateAndExclusion()
    {
        std::map<std::string, boost::shared_ptr<nvservice::CKolmAccountInfo>> byKey;
        for (const auto& data : m_fixture->query(nvservice::DataType::Account).records) {
            byKey[data->getKey()] = boost::dynamic_pointer_cast<nvservice::CKolmAccountInfo>(data);
        }
        QCOMPARE(byKey.size(), std::size_t{8});
        QCOMPARE(byKey.at("E|1|5001|")->stateCode, 5);
        QCOMPARE(byKey.at("E|1|5001|")->getSystemTag(), std::string("E"));
        QCOMPARE(byKey.at("E|1|8001|")->stateCode, 0);
        QVERIFY(byKey.at("E|1|6001|")->excluded);
        QVERIFY(!byKey.at("E|1|8001|")->excluded);
        QCOMPARE(byKey.at("E|2|0010|01")->account->getSystemTag(), std::string("E"));
        QCOMPARE(byKey.at("E|1|7001|")->account->institutionId, None);
        const auto bound = m_fixture->session("bound", everyRight(), First);
        for (const auto& data : query(m_fixture->east(), bound, nvservice::DataType::Account).records) {
            const auto own = boost::dynamic_pointer_cast<nvservice::CKolmAccountInfo>(data);
            QCOMPARE(own->account->institutionId, First);
            byKey.erase(own->getKey());
        }
        QCOMPARE(byKey.size(), std::size_t{2});
    }

    void queryOfOtherTypesAndBadKeysAreTypedErrors()
    {
        for (const int type : {0, 23460, -5}) {
            const service::Reply reply = m_fixture->query(type);
            COMPARE_CODE(reply, EErrorCode::Unsupported);
            QVERIFY(!reply.error.errorMsg().empty());
        }
        for (const char* key : {"x", "1 ", "01", "1;2", "-1_-1"}) {
            COMPARE_CODE(m_fixture->query(Groups, key), EErrorCode::InvalidValue);
        }
        QCOMPARE(m_fixture->query(Groups, "77").totalCount, 0);
    }
};

TEST_WITHOUT_WIDGETS(GroupOperationsTest)
#include "tst_engine_group_operations.moc"
