// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include "service/RiskSamples.h"

#include "support/records/Requests.h"

#include "service/engine/CategoryRights.h"
#include "service/store/Query.h"
#include "service/store/Securities.h"

#include <QCoreApplication>
#include <QSqlRecord>

namespace testservice
{

using service::Connection;
using service::Query;
using service::Transaction;

namespace
{

boost::shared_ptr<CAccountInfo> owned(EZVBrokerType type, const char* id, const char* unit, int institution)
{
    auto info = account(type, id, unit);
    info->accountName = std::string("户名") + id;
    info->institutionId = institution;
    return info;
}

nvservice::CCategoryInfo category(int id, const char* name, int sysType, int categoryType)
{
    nvservice::CCategoryInfo made;
    made.categoryId = id;
    made.categoryName = name;
    made.sysType = sysType;
    made.categoryType = categoryType;
    return made;
}

void makeServer(Connection& connection, const char* name, const char* tag)
{
    const service::SubSystem server = service::insertSubSystem(connection, name, tag);
    const service::ServerData data{connection, server};
    service::putInstitution(data, First, "甲机构");
    service::putInstitution(data, Second, "乙机构");
    service::putAccount(data, *owned(EZVBrokerType::Future, "8001", "", First), 0, false);
    service::putAccount(data, *owned(EZVBrokerType::Future, "8002", "", First), 0, false);
    service::putAccount(data, *owned(EZVBrokerType::Stock, "0010", "", First), 0, false);
    service::putAccount(data, *owned(EZVBrokerType::Stock, "0010", "01", First), 0, false);
    service::putAccount(data, *owned(EZVBrokerType::Future, "9001", "", Second), 0, false);
    service::putAccount(data, *owned(EZVBrokerType::Future, "7001", "", None), 0, false);
    service::putAccount(data, *owned(EZVBrokerType::Future, "5001", "", First),
                        nvservice::CKolmAccountInfo::ClosedState, false);
    service::putAccount(data, *owned(EZVBrokerType::Future, "6001", "", First), 0, true);
    service::putCategory(data, category(StocksCategory, "股票", 1, 0));
    service::putCategory(data, category(InternalCategory, "内部", 1, nvservice::CCategoryInfo::InternalCategoryType));
    service::putCategory(data, category(FuturesCategory, "期货", 2, 0));
}

/// What every fixture begins with. Made once; it goes with the application.
const TestDatabase& original()
{
    static std::unique_ptr<TestDatabase> database;
    if (database) {
        return *database;
    }
    database = std::make_unique<TestDatabase>();
    qAddPostRoutine([] { database.reset(); });
    fill(*support::openStore(database->location()));
    return *database;
}

} // namespace

ServiceFixture::ServiceFixture(const service::StoreOptions& options)
    : TestDatabase(&original()), RealService(location(), options)
{
}

void fill(service::Store& store)
{
    Transaction transaction(store.connection(), Transaction::EKind::Write);
    makeServer(store.connection(), "东分系统", "E");
    makeServer(store.connection(), "西分系统", "W");
    transaction.commit();
}

service::SessionPtr ServiceFixture::session(const std::string& login, const std::set<int>& rights, int institution,
                                            int serverIndex)
{
    service::StoredUser user;
    user.login = login;
    user.displayName = "姓名" + login;
    user.passwordHash = "-";
    user.enabled = true;
    user.rights = rights;
    if (institution != None) {
        user.institution = institution;
    }
    user.row = service::insertUser({store().connection(), server(serverIndex)}, user);
    return boost::make_shared<service::Session>(user, server(serverIndex).id);
}

service::SessionPtr ServiceFixture::admin()
{
    if (!m_admin) {
        m_admin = session("admin", everyRight());
    }
    return m_admin;
}

service::Reply ServiceFixture::operate(EZvDataOperation operation, const nvservice::IDataPtr& record,
                                       const std::string& operationId)
{
    return testservice::operate(east(), admin(), operation, record, operationId);
}

service::Reply ServiceFixture::operateOn(int dataType, EZvDataOperation operation, const nvservice::IDataPtr& record,
                                         const std::string& operationId)
{
    return testservice::operateOn(dataType, east(), admin(), operation, record, operationId);
}

service::Reply ServiceFixture::query(int dataType, const std::string& key)
{
    return testservice::query(east(), admin(), dataType, key);
}

service::Reply ServiceFixture::save(const RiskConfigPtr& config, const std::string& operationId)
{
    return testservice::save(east(), admin(), config, operationId);
}

RiskConfigPtr ServiceFixture::loaded(int groupId)
{
    return testservice::loaded(east(), admin(), groupId);
}

GroupPtr ServiceFixture::storedGroup(const std::string& name, int institution, int serverIndex)
{
    Connection& connection = store().connection();
    const std::string member = institution == First ? "8001" : institution == Second ? "9001" : "7001";
    Transaction transaction(connection, Transaction::EKind::Write);
    auto record = group(name, institution, {future(member)});
    const service::ServerData data{connection, server(serverIndex)};
    record->groupId = service::takeGroupId(data);
    record->setRevision(1);
    const auto row = service::findAccounts(data, record->accounts)[0]->row;
    service::insertGroup(data, *record, {row}, {"founder", 1000});
    transaction.commit();
    return service::findGroup(data, record->groupId)->record;
}

GroupPtr ServiceFixture::current(int groupId)
{
    const auto stored = service::findGroup({store().connection(), server(0)}, groupId);
    return stored ? stored->record : GroupPtr();
}

RiskConfigPtr ServiceFixture::config(int groupId)
{
    const auto stored = service::findRiskConfig({store().connection(), server(0)}, groupId);
    return stored ? stored->record : RiskConfigPtr();
}

QStringList ServiceFixture::content()
{
    return contentOf(store());
}

std::set<int> everyRight()
{
    std::set<int> rights = {nvservice::UserRight::EditAccountGroup, nvservice::UserRight::SetAccountGroupRisk,
                            nvservice::UserRight::DeleteAccountGroup, nvservice::UserRight::ReadAudit};
    rights.insert({nvservice::UserRight::FutureAccount, nvservice::UserRight::StockAccount});
    rights.insert(service::rightOfCategorySysType(1));
    return rights;
}

boost::shared_ptr<CAccountInfo> account(EZVBrokerType type, const std::string& id, const std::string& unit)
{
    auto info = boost::make_shared<CAccountInfo>();
    info->brokerType = type;
    info->accountId = id;
    info->unitId = unit;
    return info;
}

boost::shared_ptr<CAccountInfo> future(const std::string& id)
{
    return account(EZVBrokerType::Future, id);
}

boost::shared_ptr<CAccountGroup> group(const std::string& name, int institution,
                                       std::vector<boost::shared_ptr<CAccountInfo>> accounts)
{
    auto record = boost::make_shared<CAccountGroup>();
    record->groupName = name;
    record->institutionId = institution;
    record->accounts = std::move(accounts);
    return record;
}

service::Reply operate(service::DataEngine& engine, const service::SessionPtr& session, EZvDataOperation operation,
                       const nvservice::IDataPtr& record, const std::string& operationId)
{
    return operateOn(nvservice::DataType::AccountGroup, engine, session, operation, record, operationId);
}

service::Reply operateOn(int dataType, service::DataEngine& engine, const service::SessionPtr& session,
                         EZvDataOperation operation, const nvservice::IDataPtr& record, const std::string& operationId)
{
    return engine.operate(session, support::operationOn(dataType, operation, record, operationId));
}

service::Reply query(service::DataEngine& engine, const service::SessionPtr& session, int dataType,
                     const std::string& key)
{
    return engine.query(session, support::queryOf(dataType, key));
}

nvservice::CEmailRC emailRule(int groupId, const std::string& key)
{
    nvservice::CEmailRC rule;
    rule.ruleKind = "2";
    rule.accountKey = std::to_string(groupId);
    rule.ruleKey = key;
    if (!key.empty()) {
        rule.recipients = {key + "@example.com"};
    }
    return rule;
}

boost::shared_ptr<nvservice::CustomEmailRC> everyEmailRule(int groupId)
{
    auto rules = boost::make_shared<nvservice::CustomEmailRC>();
    rules->emailRCs = {emailRule(groupId, {})};
    return rules;
}

std::vector<std::string> groupNames(const service::Reply& reply)
{
    std::vector<std::string> names;
    for (const nvservice::IDataPtr& record : reply.records) {
        names.push_back(boost::dynamic_pointer_cast<CAccountGroup>(record)->groupName);
    }
    return names;
}

QStringList contentOf(service::Store& store)
{
    QStringList tables;
    Query names(store.connection(),
                TestDatabase::isPostgres()
                    ? "SELECT tablename FROM pg_tables WHERE schemaname = 'public' AND tablename <> 'schema_version'"
                    : "SELECT name FROM sqlite_master WHERE type = 'table' AND name <> 'schema_version'");
    for (names.run(); names.next();) {
        tables << QString::fromStdString(names.text(0));
    }
    QStringList lines;
    for (const QString& table : tables) {
        QSqlQuery rows(QStringLiteral("SELECT * FROM \"%1\"").arg(table), store.connection().database());
        while (rows.next()) {
            QString line = table;
            for (int column = 0; column < rows.record().count(); ++column) {
                const QVariant value = rows.value(column);
                line += '|' +
                        (value.type() == QVariant::ByteArray ? QString(value.toByteArray().toHex()) : value.toString());
            }
            lines << line;
        }
    }
    lines.sort();
    return lines;
}

} // namespace testservice
