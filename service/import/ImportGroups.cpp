#include "service/engine/GroupOperations.h"
#include "service/engine/GroupRules.h"
#include "service/import/ImportContext.h"

#include <nvservice/DataType.h>
#include <nvservice/NoInstitutionId.h>
#include <nvservice/UserRight.h>

#include <algorithm>

namespace service
{

namespace
{

using nvservice::CAccountGroup;
using nvservice::EZvDataOperation;

struct GroupOfFile {
    CAccountGroup record;
    std::vector<int> lines; ///< of its accounts, in their order
    bool isRefused = false;
};

/// Imports are made by whoever may write the database: every right, every institution.
StoredUser importingUser(const std::string& login)
{
    StoredUser user;
    user.login = login;
    user.enabled = true;
    user.rights.insert(nvservice::UserRight::EditAccountGroup);
    for (const auto type : {1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 1001, 1002, 15002})
        user.rights.insert(rightOfAccountType(static_cast<nvservice::EZVBrokerType>(type)));
    return user;
}

bool isSame(const CAccountGroup& a, const CAccountGroup& b)
{
    return a.institutionId == b.institutionId &&
           std::equal(a.accounts.begin(), a.accounts.end(), b.accounts.begin(), b.accounts.end(),
                      [](const auto& x, const auto& y) { return x->getKey() == y->getKey(); });
}

/// Stores the group; throws `Refusal`.
EImportOutcome store(ImportContext& context, const StoredUser& user, CAccountGroup& group)
{
    const std::optional<std::int64_t> id = findGroupByName(context.connection, context.server, group.groupName);
    if (id) {
        const std::optional<StoredGroup> stored = findGroup(context.connection, context.server, *id);
        if (isSame(*stored->record, group))
            return EImportOutcome::Unchanged;
        group.groupId = stored->record->groupId;
        group.setRevision(stored->record->revision());
        group.unknownFields = stored->record->unknownFields;
    }
    const auto operation = id ? EZvDataOperation::Modify : EZvDataOperation::Add;
    const AppliedChange change =
        applyGroupOperation(context.connection, context.server, user, operation, group, context.now);
    context.audit(!id, nvservice::DataType::AccountGroup, change.recordKey, change.before, change.after);
    return id ? EImportOutcome::Changed : EImportOutcome::Added;
}

/// Finds the accounts that are the reason why a group was refused. False when none of them alone is.
bool refuseRowsAlone(ImportContext& context, const StoredUser& user, const GroupOfFile& group)
{
    const std::optional<std::int64_t> id = findGroupByName(context.connection, context.server, group.record.groupName);
    const auto present =
        id ? findGroup(context.connection, context.server, *id)->accountRows : std::vector<std::int64_t>();
    bool found = false;
    for (std::size_t i = 0; i < group.lines.size(); ++i) {
        CAccountGroup single;
        single.institutionId = group.record.institutionId;
        single.accounts = {group.record.accounts[i]};
        try {
            requireValidAccounts(context.connection, context.server, user, single, present);
        } catch (const Refusal& refusal) {
            context.refuse(EImportFile::Groups, group.lines[i], group.record.groupName, refusal.what());
            found = true;
        }
    }
    return found;
}

} // namespace

void importGroups(ImportContext& context, const QByteArray& bytes)
{
    std::vector<GroupOfFile> groups;
    std::unordered_map<std::string, std::size_t> indexOfName;
    const std::vector<EColumn> required = {EColumn::GroupName, EColumn::Institution, EColumn::AccountType,
                                           EColumn::AccountId};
    context.forEachRow(EImportFile::Groups, bytes, required, [&](const CsvTable& table, const CsvRecord& row) {
        const std::string name = table.field(row, EColumn::GroupName).toStdString();
        const auto [entry, isNew] = indexOfName.emplace(name, groups.size());
        if (isNew)
            groups.emplace_back();
        GroupOfFile& group = groups[entry->second];
        try {
            const std::int32_t institution = context.institutionOf(table, row);
            if (isNew) {
                group.record.groupName = name;
                group.record.institutionId = institution;
            }
            if (group.record.institutionId != institution)
                throw RowError("同一账号组的所属机构前后不一致");
            const auto& account = context.accountOf(table, row).info;
            const auto& listed = group.record.accounts;
            const auto same = std::find(listed.begin(), listed.end(), account);
            if (same != listed.end())
                throw RowError("与第" + std::to_string(group.lines[static_cast<std::size_t>(same - listed.begin())]) +
                               "行重复");
            group.record.accounts.push_back(account);
            group.lines.push_back(row.line);
        } catch (const RowError&) {
            group.isRefused = true;
            throw;
        }
    });

    const StoredUser user = importingUser(context.login);
    for (GroupOfFile& group : groups) {
        if (group.lines.empty() || (group.isRefused && refuseRowsAlone(context, user, group)))
            continue;
        try {
            requireReasonableSize(group.record);
            requireValidName(group.record.groupName);
            const EImportOutcome outcome = store(context, user, group.record);
            for (const int line : group.lines)
                context.report(EImportFile::Groups, line, outcome, group.record.groupName);
        } catch (const Refusal& refusal) {
            if (!refuseRowsAlone(context, user, group))
                context.refuse(EImportFile::Groups, group.lines.front(), group.record.groupName, refusal.what());
        }
    }
}

} // namespace service
