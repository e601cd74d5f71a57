// SPDX-License-Identifier: Apache-2.0
#include "service/engine/MasterDataRules.h"
#include "service/import/CsvValues.h"
#include "service/import/ImportContext.h"

#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/NoInstitutionId.h>

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
        throw RowError("“状态”应为数字、“正常”或“已销户”：" + text.toStdString());
    }
    return *state;
}

/// Accounts that are held by a group or product of an institution: they can't move to another one.
std::set<std::int64_t> accountsTiedToInstitution(Connection& connection, const SubSystem& server)
{
    std::set<std::int64_t> rows;
    Query query(connection, QStringLiteral("SELECT m.account_id FROM account_group_member m JOIN account_group g"
                                           " ON g.server_id = m.server_id AND g.group_id = m.group_id"
                                           " WHERE m.server_id = ? AND g.institution_id IS NOT NULL UNION "
                                           "SELECT m.account_id FROM product_account m JOIN product p"
                                           " ON p.server_id = m.server_id AND p.product_id = m.product_id"
                                           " WHERE m.server_id = ? AND p.institution_id IS NOT NULL"));
    query.bind(server.id).bind(server.id);
    for (query.run(); query.next();) {
        rows.insert(query.integer(0));
    }
    return rows;
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
    context.forEachRow(
        EImportFile::Institutions, bytes, required, [&](const CsvTable& table, const utils::CsvRow& row) {
            const std::int32_t id = context.numberOf(table, row, EColumn::InstitutionId);
            const std::string name = context.textOf(table, row, EColumn::InstitutionName);
            seen.add(std::to_string(id), row.line);
            const auto holder = idOfName.find(name);
            if (holder != idOfName.end() && holder->second != id) {
                throw RowError("机构名称“" + name + "”已被机构" + std::to_string(holder->second) + "使用");
            }
            const auto old = context.institutions.find(id);
            const bool isNew = old == context.institutions.end();
            if (!isNew && old->second == name) {
                return context.report(EImportFile::Institutions, row.line, EImportOutcome::Unchanged, name);
            }
            context.writer.putInstitution(id, name);
            const bson::BSONObj before = isNew ? bson::BSONObj() : institutionDocument(context.server, id, old->second);
            Changes changes;
            if (!isNew) {
                idOfName.erase(old->second);
                changes.add(EColumn::InstitutionName, old->second, name);
            }
            context.audit(isNew, NoDataType, institutionKey(std::to_string(id)), before,
                          institutionDocument(context.server, id, name));
            context.institutions[id] = name;
            idOfName[name] = id;
            context.report(EImportFile::Institutions, row.line, isNew ? EImportOutcome::Added : EImportOutcome::Changed,
                           name, changes);
        });
}

void importAccounts(ImportContext& context, const QByteArray& bytes)
{
    SeenKeys seen;
    std::optional<std::set<std::int64_t>> tied;
    const std::vector<EColumn> required = {EColumn::AccountId, EColumn::AccountType};
    context.forEachRow(EImportFile::Accounts, bytes, required, [&](const CsvTable& table, const utils::CsvRow& row) {
        StoredAccount account;
        account.info = boost::make_shared<CAccountInfo>(context.accountKeyOf(table, row));
        account.info->accountName = context.textOf(table, row, EColumn::AccountName, true);
        account.info->institutionId = context.institutionOf(table, row);
        if (account.info->institutionId != NoInstitutionId) {
            account.info->institutionName = context.institutions.at(account.info->institutionId);
        }
        account.stateCode = stateOf(table.field(row, EColumn::State));
        account.excluded = context.flagOf(table, row, EColumn::Excluded);
        const std::string key = account.info->getKey();
        const std::string shown = nvservice::accountDisplayID(account.info);
        seen.add(key, row.line);

        const auto old = context.accounts.find(key);
        const bool isNew = old == context.accounts.end();
        const Changes changes = isNew ? Changes() : changesOf(old->second, account);
        if (!isNew && changes.all().empty()) {
            return context.report(EImportFile::Accounts, row.line, EImportOutcome::Unchanged, shown);
        }
        if (!isNew && old->second.info->institutionId != account.info->institutionId) {
            if (!tied) {
                tied = accountsTiedToInstitution(context.connection, context.server);
            }
            if (tied->count(old->second.row) != 0) {
                throw RowError("账号已在账号组或产品中，不能变更所属机构");
            }
        }
        account.row = context.writer.putAccount(*account.info, account.stateCode, account.excluded);
        context.audit(isNew, nvservice::DataType::Account, key,
                      isNew ? bson::BSONObj() : documentOf(context, old->second), documentOf(context, account));
        context.accounts[key] = account;
        context.report(EImportFile::Accounts, row.line, isNew ? EImportOutcome::Added : EImportOutcome::Changed, shown,
                       changes);
    });
}

} // namespace service
