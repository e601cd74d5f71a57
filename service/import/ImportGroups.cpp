// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AccountRights.h"
#include "service/engine/GroupRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/Requests.h"
#include "service/engine/UserRights.h"
#include "service/import/CsvValues.h"
#include "service/import/ImportContext.h"

#include <nvservice/DataType.h>
#include <nvservice/NoInstitutionId.h>
#include <utils/Translation.h>

#include <algorithm>

namespace service
{

namespace
{

using nvservice::CAccountGroup;
using nvservice::EZvDataOperation;

namespace DataType = nvservice::DataType;

struct GroupOfFile {
    CAccountGroup record;
    std::vector<int> lines; ///< of its accounts, in their order
    bool isRefused = false;
};

std::vector<std::string> accountsOf(const CAccountGroup& group)
{
    std::vector<std::string> accounts;
    for (const auto& account : group.accounts) {
        accounts.push_back(wordOfAccountType(account->brokerType) + " " + nvservice::accountDisplayID(account));
    }
    return accounts;
}

/// The removed and added accounts; if there are none, their new order.
Changes changesOf(const CAccountGroup& before, const CAccountGroup& after)
{
    Changes changes;
    changes.add(EColumn::Institution, before.institutionName, after.institutionName);
    const std::vector<std::string> old = accountsOf(before);
    const std::vector<std::string> now = accountsOf(after);
    const std::set<std::string> oldSet(old.begin(), old.end());
    const std::set<std::string> nowSet(now.begin(), now.end());
    for (const std::string& account : old) {
        if (nowSet.count(account) == 0) {
            changes.add(EColumn::AccountId, account, {});
        }
    }
    for (const std::string& account : now) {
        if (oldSet.count(account) == 0) {
            changes.add(EColumn::AccountId, {}, account);
        }
    }
    const auto place = std::mismatch(old.begin(), old.end(), now.begin(), now.end());
    if (oldSet == nowSet && place.first != old.end()) {
        changes.add(EColumn::AccountId, *place.first, *place.second);
    }
    return changes;
}

/// Stores the group and reports its rows. Throws `Refusal`. An unchanged group is not checked, because it may break
/// today's rules.
void store(ImportContext& context, const RequestContext& request, GroupOfFile& ofFile)
{
    CAccountGroup& group = ofFile.record;
    const std::optional<std::int64_t> id = findGroupByName(context, group.groupName);
    Changes changes;
    if (id) {
        const std::optional<StoredGroup> stored = findGroup(context, *id);
        changes = changesOf(*stored->record, group);
        group.groupId = stored->record->groupId;
        group.setRevision(stored->record->revision());
        group.unknownFields = stored->record->unknownFields;
    }
    const EImportOutcome outcome = changes.outcome(!id);
    if (outcome != EImportOutcome::Unchanged) {
        requireReasonableSize(group);
        const auto operation = id ? EZvDataOperation::Modify : EZvDataOperation::Add;
        const AppliedChange change = applyOperation(request, DataType::AccountGroup, operation, group);
        context.audit(!id, DataType::AccountGroup, change.recordKey, change.before, change.after);
    }
    for (const int line : ofFile.lines) {
        context.report(EImportFile::Groups, line, outcome, group.groupName, changes);
        changes = Changes(); // once for each group is enough
    }
}

/// Refuses the rows whose account alone breaks a rule. False if there is none.
bool refuseRowsAlone(ImportContext& context, const RequestContext& request, const GroupOfFile& group)
{
    const std::optional<std::int64_t> id = findGroupByName(context, group.record.groupName);
    const auto present = id ? findGroup(context, *id)->accountRows : std::vector<std::int64_t>();
    bool found = false;
    for (std::size_t i = 0; i < group.lines.size(); ++i) {
        CAccountGroup single;
        single.institutionId = group.record.institutionId;
        single.accounts = {group.record.accounts[i]};
        try {
            requireValidAccounts(request, single, present);
        } catch (const Refusal& refusal) {
            context.refuse(EImportFile::Groups, group.lines[i], group.record.groupName, refusal.what());
            found = true;
        }
    }
    return found;
}

/// True: every account may join a group. False: only those that the files allow.
void letAllEnter(ImportContext& context, bool mayEnter)
{
    for (const auto& [key, account] : context.accounts) {
        if (account.stateCode != 0 || account.excluded) {
            putAccount(context, *account.info, mayEnter ? 0 : account.stateCode, !mayEnter && account.excluded);
        }
    }
}

} // namespace

void importGroups(ImportContext& context, const QByteArray& bytes)
{
    std::vector<GroupOfFile> groups;
    std::unordered_map<std::string, std::size_t> indexOfName;
    const std::vector<EColumn> required = {EColumn::GroupName, EColumn::Institution, EColumn::AccountType,
                                           EColumn::AccountId};
    context.forEachRow(EImportFile::Groups, bytes, required, [&](const TableRow& row) {
        const std::string name = row.field(EColumn::GroupName).toStdString();
        const auto [entry, isNew] = indexOfName.emplace(name, groups.size());
        if (isNew) {
            groups.emplace_back();
        }
        GroupOfFile& group = groups[entry->second];
        try {
            const std::int32_t institution = context.institutionOf(row);
            if (isNew) {
                group.record.groupName = name;
                group.record.institutionId = institution;
                if (institution != nvservice::NoInstitutionId) {
                    group.record.institutionName = context.institutions.at(institution);
                }
            }
            if (group.record.institutionId != institution) {
                throw RowError(utils::text("service", "同一账号组的所属机构前后不一致"));
            }
            const auto& account = context.accountOf(row).info;
            const auto& listed = group.record.accounts;
            const auto same = std::find(listed.begin(), listed.end(), account);
            if (same != listed.end()) {
                throw RowError(utils::filled(utils::text("service", "与第%1行重复"),
                                             group.lines[static_cast<std::size_t>(same - listed.begin())]));
            }
            group.record.accounts.push_back(account);
            group.lines.push_back(row.line());
        } catch (const RowError&) {
            group.isRefused = true;
            throw;
        }
    });

    // Groups of a new server come from another system: their accounts may have been closed after they joined.
    if (context.isNewServer) {
        letAllEnter(context, true);
    }
    // Whoever may write the database has every right.
    const StoredUser user = userWithEveryRight(context.login);
    const RequestContext request{context, user, context.now};
    for (GroupOfFile& group : groups) {
        context.advance(group.lines.size());
        if (group.lines.empty() || (group.isRefused && refuseRowsAlone(context, request, group))) {
            continue;
        }
        try {
            store(context, request, group);
        } catch (const Refusal& refusal) {
            if (!refuseRowsAlone(context, request, group)) {
                context.refuse(EImportFile::Groups, group.lines.front(), group.record.groupName, refusal.what());
            }
        }
    }
    if (context.isNewServer) {
        letAllEnter(context, false);
    }
}

} // namespace service
