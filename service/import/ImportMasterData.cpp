// SPDX-License-Identifier: Apache-2.0
#include "service/engine/MasterDataRules.h"
#include "service/import/CsvValues.h"
#include "service/import/ImportContext.h"
#include "service/store/Query.h"

#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/NoInstitutionId.h>
#include <utils/Translation.h>

namespace service
{

namespace
{

using nvservice::CAccountInfo;
using nvservice::CKolmAccountInfo;
using nvservice::NoInstitutionId;

bson::BSONObj documentOf(const ImportContext& context, const StoredAccount& account)
{
    CKolmAccountInfo record;
    record.account = account.info;
    record.stateCode = account.stateCode;
    record.excluded = account.excluded;
    record.setSystemTag(context.server.systemTag);
    return nvservice::encodeRecord(record);
}

Changes changesOf(const StoredAccount& before, const StoredAccount& after)
{
    Changes changes;
    changes.add(EColumn::AccountName, before.info->accountName, after.info->accountName);
    if (before.info->institutionId != after.info->institutionId) {
        changes.add(EColumn::Institution, before.info->institutionName, after.info->institutionName);
    }
    changes.add(EColumn::State, textOfState(before.stateCode), textOfState(after.stateCode));
    changes.add(EColumn::Excluded, textOfFlag(before.excluded), textOfFlag(after.excluded));
    return changes;
}

int stateOf(const QString& text)
{
    const std::optional<int> state = readState(text);
    if (!state) {
        throw RowError(
            utils::filled(utils::text("service", "“状态”应为数字、“正常”或“已销户”：%1"), text.toStdString()));
    }
    return *state;
}

/// The accounts in groups and products of an institution. They cannot move to another institution.
std::set<std::int64_t> accountsTiedToInstitution(const ServerData& data)
{
    Query query(data.connection, QStringLiteral("SELECT m.account_id FROM account_group_member m JOIN account_group g"
                                                " ON g.server_id = m.server_id AND g.group_id = m.group_id"
                                                " WHERE m.server_id = ? AND g.institution_id IS NOT NULL UNION "
                                                "SELECT m.account_id FROM product_account m JOIN product p"
                                                " ON p.server_id = m.server_id AND p.product_id = m.product_id"
                                                " WHERE m.server_id = ? AND p.institution_id IS NOT NULL"));
    const auto rows = query.bind(data.server.id, data.server.id).all([](const Query& row) { return row.integer(0); });
    return {rows.begin(), rows.end()};
}

} // namespace

void importInstitutions(ImportContext& context, const QByteArray& bytes)
{
    SeenKeys seen;
    std::unordered_map<std::string, std::int64_t> idOfName;
    for (const auto& [id, name] : context.institutions) {
        idOfName.emplace(name, id);
    }
    const std::vector<EColumn> required = {EColumn::InstitutionId, EColumn::InstitutionName};
    context.forEachRow(EImportFile::Institutions, bytes, required, [&](const TableRow& row) {
        const std::int32_t id = context.numberOf(row, EColumn::InstitutionId);
        const std::string name = context.textOf(row, EColumn::InstitutionName);
        seen.add(std::to_string(id), row.line());
        const auto holder = idOfName.find(name);
        if (holder != idOfName.end() && holder->second != id) {
            throw RowError(utils::filled(utils::text("service", "机构名称“%1”已被机构%2使用"), name, holder->second));
        }
        const auto old = context.institutions.find(id);
        const bool isNew = old == context.institutions.end();
        Changes changes;
        bson::BSONObj before;
        if (!isNew) {
            changes.add(EColumn::InstitutionName, old->second, name);
            before = institutionDocument(context.server, id, old->second);
        }
        const EImportOutcome outcome = changes.outcome(isNew);
        if (outcome != EImportOutcome::Unchanged) {
            putInstitution(context, id, name);
            context.audit(isNew, NoDataType, institutionKey(std::to_string(id)), before,
                          institutionDocument(context.server, id, name));
            if (!isNew) {
                idOfName.erase(old->second);
            }
            context.institutions[id] = name;
            idOfName[name] = id;
        }
        context.report(EImportFile::Institutions, row.line(), outcome, name, changes);
    });
}

void importAccounts(ImportContext& context, const QByteArray& bytes)
{
    SeenKeys seen;
    std::optional<std::set<std::int64_t>> tied;
    const std::vector<EColumn> required = {EColumn::AccountId, EColumn::AccountType};
    context.forEachRow(EImportFile::Accounts, bytes, required, [&](const TableRow& row) {
        StoredAccount account;
        account.info = boost::make_shared<CAccountInfo>(context.accountKeyOf(row));
        account.info->accountName = context.textOf(row, EColumn::AccountName, true);
        account.info->institutionId = context.institutionOf(row);
        if (account.info->institutionId != NoInstitutionId) {
            account.info->institutionName = context.institutions.at(account.info->institutionId);
        }
        account.stateCode = stateOf(row.field(EColumn::State));
        account.excluded = context.flagOf(row, EColumn::Excluded);
        const std::string key = account.info->getKey();
        seen.add(key, row.line());

        const auto old = context.accounts.find(key);
        const bool isNew = old == context.accounts.end();
        const Changes changes = isNew ? Changes() : changesOf(old->second, account);
        const EImportOutcome outcome = changes.outcome(isNew);
        if (!isNew && old->second.info->institutionId != account.info->institutionId) {
            if (!tied) {
                tied = accountsTiedToInstitution(context);
            }
            if (tied->count(old->second.row) != 0) {
                throw RowError(utils::text("service", "账号已在账号组或产品中，不能变更所属机构"));
            }
        }
        if (outcome != EImportOutcome::Unchanged) {
            account.row = putAccount(context, *account.info, account.stateCode, account.excluded);
            context.audit(isNew, nvservice::DataType::Account, key,
                          isNew ? bson::BSONObj() : documentOf(context, old->second), documentOf(context, account));
            context.accounts[key] = account;
        }
        context.report(EImportFile::Accounts, row.line(), outcome, nvservice::accountDisplayID(account.info), changes);
    });
}

} // namespace service
