// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"

#include "service/store/Query.h"

#include "service/engine/CategoryRights.h"
#include "service/store/Securities.h"
#include "support/TestProgram.h"

#include <nvservice/CCategoryInfo.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CSecurityInfo.h>

using namespace testservice;
using nvservice::EZvTraderType;

namespace DataType = nvservice::DataType;

class RiskQueriesTest : public ServiceTest
{
    Q_OBJECT

private slots:
    void everyCategoryComesWhoeverAsks()
    {
        const auto bound = m_fixture->session("bound", {}, Second);
        for (const char* key : {"-1_-1", ""}) {
            const service::Reply reply = query(m_fixture->east(), bound, DataType::Category, key);
            COMPARE_CODE(reply, EErrorCode::Success);
            QCOMPARE(reply.totalCount, 3);
            const auto last = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(reply.records.at(1));
            QCOMPARE(last->getKey(), std::string("E|12"));
            QCOMPARE(last->categoryName, std::string("内部"));
            QCOMPARE(last->categoryType, 2);
            QCOMPARE(last->sysType, 1);
            QCOMPARE(last->parentId, -1);
        }
        for (const char* key : {"1", "-1", "-1_-1 ", "x"}) {
            COMPARE_CODE(query(m_fixture->east(), bound, DataType::Category, key), EErrorCode::InvalidValue);
        }
    }

    void categoriesAreATree()
    {
        nvservice::CCategoryInfo below;
        below.categoryId = 20;
        below.categoryName = "主板";
        below.parentId = StocksCategory;
        const service::ServerData data{m_fixture->store().connection(), m_fixture->server(0)};
        service::putCategory(data, below);
        const service::Reply reply = m_fixture->query(DataType::Category);
        QCOMPARE(boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(reply.records.at(3))->parentId, StocksCategory);
        below.categoryId = 21;
        below.parentId = 99;
        QVERIFY_EXCEPTION_THROWN(service::putCategory(data, below), service::StoreError);
    }

    void institutionsCarryIdNameAndTag()
    {
        const service::Reply reply = m_fixture->query(DataType::Institution);
        COMPARE_CODE(reply, EErrorCode::Success);
        QCOMPARE(reply.totalCount, 2);
        const auto second = boost::dynamic_pointer_cast<nvservice::CInstitutionInfo>(reply.records.at(1));
        QCOMPARE(second->institutionId, Second);
        QCOMPARE(second->name, std::string("乙机构"));
        QCOMPARE(second->getSystemTag(), std::string("E"));
        COMPARE_CODE(m_fixture->query(DataType::Institution, "1"), EErrorCode::InvalidValue);
    }

    void securitiesComeByTradeTypeWithThoseOfAnyAndKeepTheirZeros()
    {
        const service::ServerData data{m_fixture->store().connection(), m_fixture->server(0)};
        const auto put = [&data](const char* market, const char* code, EZvTraderType type) {
            nvservice::CSecurityInfo security;
            security.market = market;
            security.securityCode = code;
            security.securityName = std::string("名称") + code;
            security.sysType = 5;
            security.traderType = type;
            service::putSecurity(data, security);
        };
        put("SZ", "000001", EZvTraderType::Future);
        put("SZ", "000001", EZvTraderType::Stock); // in place of the first
        put("SH", "000001", EZvTraderType::None);
        put("FUT", "rb2603", EZvTraderType::Future);
        const auto keys = [&](const std::string& key) {
            std::vector<std::string> found;
            const service::Reply reply = m_fixture->query(DataType::Security, key);
            for (const auto& record : reply.records) {
                found.push_back(record->getKey());
            }
            return found;
        };
        using Keys = std::vector<std::string>;
        QCOMPARE(keys(""), (Keys{"E|FUT|rb2603", "E|SH|000001", "E|SZ|000001"}));
        QCOMPARE(keys("1"), (Keys{"E|SH|000001", "E|SZ|000001"}));
        QCOMPARE(keys("2"), (Keys{"E|FUT|rb2603", "E|SH|000001"}));
        QCOMPARE(keys("32"), Keys{"E|SH|000001"});
        const auto all = m_fixture->query(DataType::Security);
        const auto last = boost::dynamic_pointer_cast<nvservice::CSecurityInfo>(all.records.at(2));
        QCOMPARE(last->securityName, std::string("名称000001"));
        QCOMPARE(last->sysType, 5);
        QCOMPARE(static_cast<int>(last->traderType), 1);
        for (const char* key : {"x", "01", "1_2"}) {
            COMPARE_CODE(m_fixture->query(DataType::Security, key), EErrorCode::InvalidValue);
        }
    }

    void configurationNeedsTheDecimalIdOfAGroup()
    {
        m_fixture->storedGroup("组");
        for (const char* key : {"", "x", "01", "1 ", "-1_-1"}) {
            const service::Reply reply = m_fixture->query(ConfigType, key);
            COMPARE_CODE(reply, EErrorCode::InvalidValue);
            QVERIFY(!reply.error.errorMsg().empty());
        }
        COMPARE_CODE(m_fixture->query(ConfigType, "2"), EErrorCode::NotFound);
        QCOMPARE(m_fixture->query(ConfigType, "1").totalCount, 1);
    }

    void brokenConfigurationIsAStorageFailureAndNothingElseSuffers()
    {
        m_fixture->storedGroup("组");
        m_fixture->storedGroup("别组");
        service::Query(m_fixture->store().connection(), "UPDATE group_risk_config SET body = ? WHERE group_id = 1")
            .bind(QByteArray::fromHex("0500000001"))
            .run();
        const service::Reply reply = m_fixture->query(ConfigType, "1");
        COMPARE_CODE(reply, EErrorCode::StorageFailure);
        QVERIFY(!reply.error.errorMsg().empty());
        QVERIFY(m_fixture->loaded(2));
    }

    void systemTypesAreRights()
    {
        using Types = std::set<int>;
        QCOMPARE(service::categorySysTypesOf({10717, 13999, 14000, 14007, 14099, 14100}), (Types{0, 7, 99}));
        QCOMPARE(service::rightOfCategorySysType(7), 14007);
        QCOMPARE(service::rightOfCategorySysType(-1), 0);
        QCOMPARE(service::rightOfCategorySysType(100), 0);
    }
};

TEST_WITHOUT_WIDGETS(RiskQueriesTest)
#include "tst_risk_queries.moc"
