// SPDX-License-Identifier: Apache-2.0
#include "GroupModel.h"

#include "service/store/Query.h"
#include "service/store/RiskConfigs.h"
#include "service/store/Store.h"

#include <nvservice/CKolmAccountInfo.h>

#include <algorithm>

namespace panel_test
{

using nvservice::EZVBrokerType;
using service::Query;
using utils::EErrorCode;

namespace
{

ModelGroups readGroups(service::Store& store, const service::SubSystem& server)
{
    service::Connection& connection = store.connection();
    ModelGroups groups;
    Query heads(connection, QStringLiteral("SELECT group_id, name, coalesce(institution_id, 0), revision"
                                           " FROM account_group WHERE server_id = ?"));
    for (heads.bind(server.id).run(); heads.next();) {
        ModelGroup& group = groups[int(heads.integer(0))];
        group.id = int(heads.integer(0));
        group.input.name = heads.text(1);
        group.input.institution = int(heads.integer(2));
        group.revision = heads.integer(3);
    }
    Query members(connection, QStringLiteral("SELECT group_id, account_id FROM account_group_member"
                                             " WHERE server_id = ? ORDER BY group_id, position"));
    for (members.bind(server.id).run(); members.next();) {
        groups[int(members.integer(0))].input.accounts.push_back(members.integer(1));
    }
    for (auto& [id, group] : groups) {
        const auto config = service::findRiskConfig({connection, server}, id);
        if (!config) {
            continue;
        }
        group.riskRevision = config->record->revision();
        group.checks = checksOf(config->record->ratProofSetting);
    }
    return groups;
}

std::int64_t number(service::Store& store, const service::SubSystem& server, const char* sql)
{
    Query query(store.connection(), QString::fromLatin1(sql));
    query.bind(server.id);
    return query.runAndNext() ? query.integer(0) : -1;
}

constexpr const char* CountOfAudits = "SELECT count(*) FROM audit WHERE server_id = ?";
constexpr const char* CountOfHistory = "SELECT count(*) FROM account_group_history WHERE server_id = ?";
constexpr const char* NextGroupId = "SELECT next_group_id FROM sub_system WHERE id = ?";

QStringList toLines(const ModelGroups& groups, std::int64_t nextId, std::int64_t audits, std::int64_t histories)
{
    QStringList lines{
        QStringLiteral("next id %1, %2 audit rows, %3 history rows").arg(nextId).arg(audits).arg(histories)};
    for (const auto& [id, group] : groups) {
        QStringList accounts;
        for (const std::int64_t row : group.input.accounts) {
            accounts << QString::number(row);
        }
        lines << QStringLiteral("%1 r%2 '%3' of %4: %5; risk r%6 %7%8%9%10")
                     .arg(id)
                     .arg(group.revision)
                     .arg(QString::fromStdString(group.input.name))
                     .arg(group.input.institution)
                     .arg(accounts.join(','))
                     .arg(group.riskRevision)
                     .arg(int(group.checks.reverseOrderCheck))
                     .arg(int(group.checks.reverseOrderWarnOnly))
                     .arg(int(group.checks.notCountCancelledOrders))
                     .arg(int(group.checks.washTradeForbidden));
    }
    return lines;
}

} // namespace

bool TradeChecks::operator==(const TradeChecks& other) const
{
    return reverseOrderCheck == other.reverseOrderCheck && reverseOrderWarnOnly == other.reverseOrderWarnOnly &&
           notCountCancelledOrders == other.notCountCancelledOrders && washTradeForbidden == other.washTradeForbidden;
}

TradeChecks checksOf(const nvservice::CRatProofSetting& setting)
{
    return {setting.reverseOrderCheck, setting.reverseOrderWarnOnly, setting.notCountCancelledOrders,
            setting.washTradeForbidden};
}

GroupModel::GroupModel(service::Store& store, const service::SubSystem& server)
    : m_groups(readGroups(store, server)), m_nextId(int(number(store, server, NextGroupId))),
      m_audits(number(store, server, CountOfAudits)), m_histories(number(store, server, CountOfHistory))
{
    Query institutions(store.connection(),
                       QStringLiteral("SELECT institution_id, name FROM institution WHERE server_id = ?"));
    for (institutions.bind(server.id).run(); institutions.next();) {
        m_institutions[int(institutions.integer(0))] = institutions.text(1);
    }
    Query accounts(
        store.connection(),
        QStringLiteral("SELECT id, broker_type, account_id, unit_id, coalesce(institution_id, 0), state_code,"
                       " excluded FROM account WHERE server_id = ? ORDER BY id"));
    for (accounts.bind(server.id).run(); accounts.next();) {
        ModelAccount account;
        account.row = accounts.integer(0);
        account.info.brokerType = static_cast<EZVBrokerType>(accounts.integer(1));
        account.info.accountId = accounts.text(2);
        account.info.unitId = accounts.text(3);
        account.info.institutionId = int(accounts.integer(4));
        account.info.setSystemTag(server.systemTag);
        account.isOffered =
            accounts.integer(5) != nvservice::CKolmAccountInfo::ClosedState && accounts.integer(6) == 0 &&
            (account.info.brokerType == EZVBrokerType::Future || account.info.brokerType == EZVBrokerType::Stock);
        m_accounts.push_back(account);
    }
}

const ModelAccount& GroupModel::account(std::int64_t row) const
{
    return *std::find_if(m_accounts.begin(), m_accounts.end(),
                         [row](const ModelAccount& account) { return account.row == row; });
}

EErrorCode GroupModel::check(int id, const GroupInput& input) const
{
    for (const std::int64_t row : input.accounts) {
        if (input.institution != NoInstitution && account(row).info.institutionId != input.institution) {
            return EErrorCode::OutOfScope;
        }
    }
    const bool isTaken = std::any_of(m_groups.begin(), m_groups.end(), [&](const auto& entry) {
        return entry.first != id && entry.second.input.name == input.name;
    });
    return isTaken ? EErrorCode::Duplicate : EErrorCode::Success;
}

EErrorCode GroupModel::add(const GroupInput& input)
{
    noteOperation();
    const EErrorCode outcome = check(-1, input);
    if (outcome == EErrorCode::Success) {
        const int id = m_nextId++;
        m_groups[id] = {id, 1, input, 1, 0, {}};
        ++m_histories;
    }
    return outcome;
}

EErrorCode GroupModel::modify(int id, std::int64_t revision, const GroupInput& input)
{
    noteOperation();
    const auto group = m_groups.find(id);
    if (group == m_groups.end()) {
        return EErrorCode::NotFound;
    }
    if (group->second.revision != revision) {
        return EErrorCode::Conflict;
    }
    const EErrorCode outcome = check(id, input);
    if (outcome == EErrorCode::Success) {
        group->second.input = input;
        ++group->second.revision;
        ++m_histories;
    }
    return outcome;
}

EErrorCode GroupModel::remove(int id, std::int64_t revision)
{
    noteOperation();
    const auto group = m_groups.find(id);
    if (group == m_groups.end()) {
        return EErrorCode::NotFound;
    }
    if (group->second.revision != revision) {
        return EErrorCode::Conflict;
    }
    m_groups.erase(group);
    ++m_histories;
    return EErrorCode::Success;
}

EErrorCode GroupModel::saveRisk(int id, std::int64_t revision, const TradeChecks& checks, bool byColleague)
{
    noteOperation();
    if (!byColleague) {
        noteOperation(); // the e-mail rules go with every save of the dialog
    }
    const auto group = m_groups.find(id);
    if (group == m_groups.end()) {
        return EErrorCode::NotFound;
    }
    if (revision < group->second.foreignRiskRevision) {
        return EErrorCode::Conflict;
    }
    group->second.checks = checks;
    ++group->second.riskRevision;
    if (byColleague) {
        group->second.foreignRiskRevision = group->second.riskRevision;
    }
    return EErrorCode::Success;
}

QStringList GroupModel::lines() const
{
    return toLines(m_groups, m_nextId, m_audits, m_histories);
}

QStringList GroupModel::linesOf(service::Store& store, const service::SubSystem& server)
{
    return toLines(readGroups(store, server), number(store, server, NextGroupId), number(store, server, CountOfAudits),
                   number(store, server, CountOfHistory));
}

} // namespace panel_test
