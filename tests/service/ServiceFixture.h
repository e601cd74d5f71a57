// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/FixtureTest.h"
#include "support/service/RealService.h"
#include "support/service/TestDatabase.h"

#include "service/store/Groups.h"
#include "service/store/MasterData.h"
#include "service/store/RiskConfigs.h"
#include "service/store/Users.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/CustomEmailRC.h>
#include <nvservice/DataType.h>
#include <nvservice/NoInstitutionId.h>
#include <nvservice/UserRight.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace testservice
{

using nvservice::CAccountGroup;
using nvservice::CAccountInfo;
using nvservice::EZVBrokerType;
using nvservice::EZvDataOperation;
using service::GroupPtr;
using service::RiskConfigPtr;
using support::directoryTemplate;
using support::TestDatabase;
using utils::EErrorCode;

constexpr int First = 1;             ///< institution 甲机构
constexpr int Second = 2;            ///< institution 乙机构
constexpr int StocksCategory = 11;   ///< 股票: system type 1, which everyRight() covers
constexpr int InternalCategory = 12; ///< 内部: system type 1, categoryType 2
constexpr int FuturesCategory = 13;  ///< 期货: system type 2, which nobody has a right to
constexpr int None = nvservice::NoInstitutionId;

/// For `StoreOptions::faultHook`: lets the statement fail before which `remaining` others are run. With a negative
/// number none fails.
inline std::function<bool(const QString&)> failureAfter(int& remaining)
{
    return [&remaining](const QString&) {
        if (remaining < 0) {
            return false;
        }
        return remaining-- == 0;
    };
}

/// Gives an empty store what a `ServiceFixture` begins with.
void fill(service::Store& store);

/// A store with two servers, "东分系统" (tag E) and "西分系统" (tag W), each with the institutions First and Second and
/// the same accounts: 8001 and 8002 (futures, First), 0010 with unit 01 (stock, First), 9001 (futures, Second), 7001
/// (futures, no institution), 5001 (closed, First), 6001 (excluded, First). No groups, no users. The categories above.
class ServiceFixture : public TestDatabase, public support::RealService
{
public:
    explicit ServiceFixture(const service::StoreOptions& options = {});

    service::DataEngine& east() { return engine(0); }
    service::DataEngine& west() { return engine(1); }

    /// A session of a new user of the server; institution None: bound to none.
    service::SessionPtr session(const std::string& login, const std::set<int>& rights, int institution = None,
                                int server = 0);
    /// Every right, bound to nothing, on the east server.
    service::SessionPtr admin();

    /// What `admin()` asks of the east server.
    service::Reply operate(EZvDataOperation operation, const nvservice::IDataPtr& record,
                           const std::string& operationId = {});
    service::Reply operateOn(int dataType, EZvDataOperation operation, const nvservice::IDataPtr& record,
                             const std::string& operationId = {});
    service::Reply query(int dataType, const std::string& key = {});
    service::Reply save(const RiskConfigPtr& config, const std::string& operationId = {});
    RiskConfigPtr loaded(int groupId);

    /// Stores a group as if an administrator had added it, and gives it as a query would.
    GroupPtr storedGroup(const std::string& name, int institution = First, int server = 0);
    GroupPtr current(int groupId);
    /// The stored configuration of a group of the east server.
    RiskConfigPtr config(int groupId);

    /// One line for each row of every table, but for when migrations were applied.
    QStringList content();

private:
    service::SessionPtr m_admin;
};

std::set<int> everyRight();

boost::shared_ptr<CAccountInfo> account(EZVBrokerType type, const std::string& id, const std::string& unit = {});
boost::shared_ptr<CAccountInfo> future(const std::string& id);
boost::shared_ptr<CAccountGroup> group(const std::string& name, int institution,
                                       std::vector<boost::shared_ptr<CAccountInfo>> accounts);

service::Reply operate(service::DataEngine& engine, const service::SessionPtr& session, EZvDataOperation operation,
                       const nvservice::IDataPtr& record, const std::string& operationId = {});
/// The same for the records of other data types.
service::Reply operateOn(int dataType, service::DataEngine& engine, const service::SessionPtr& session,
                         EZvDataOperation operation, const nvservice::IDataPtr& record,
                         const std::string& operationId = {});
service::Reply query(service::DataEngine& engine, const service::SessionPtr& session, int dataType,
                     const std::string& key = {});
nvservice::CEmailRC emailRule(int groupId, const std::string& key);
/// The request that empties the e-mail rules of a group, as the risk settings send it with every save.
boost::shared_ptr<nvservice::CustomEmailRC> everyEmailRule(int groupId);
std::vector<std::string> groupNames(const service::Reply& reply);

/// The table n with i = 1, 2, 3 and so on. Belongs before "SELECT".
inline QString numbers(int count)
{
    return QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1)").arg(count);
}

/// Rows of every table of a database.
QStringList contentOf(service::Store& store);

using ServiceTest = support::FixtureTest<ServiceFixture>;

} // namespace testservice

/// Compares error codes and shows the text of the error when they differ.
#define COMPARE_CODE(reply, expected)                                                                                  \
    do {                                                                                                               \
        const auto compared = (reply);                                                                                 \
        if (compared.error.code() != (expected))                                                                       \
            qInfo("%s", compared.error.errorMsg().c_str());                                                            \
        QCOMPARE(static_cast<int>(compared.error.code()), static_cast<int>(expected));                                 \
    } while (false)
