// SPDX-License-Identifier: Apache-2.0
#include "service/engine/AccountRights.h"
#include "service/engine/DataHandler.h"
#include "service/engine/GroupRules.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Objections.h"
#include "service/engine/RecordDocument.h"

#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/UserRight.h>
#include <utils/Translation.h>

#include <QCoreApplication>

#include <set>

namespace service
{

namespace
{

using nvservice::CAccountGroup;
using nvservice::EZvDataOperation;
using utils::EErrorCode;

constexpr char RecordName[] = QT_TRANSLATE_NOOP("service", "账号组");

Records queryGroup(const RequestContext& context, std::int64_t groupId)
{
    const StoredUser& user = context.user;
    const std::optional<StoredGroup> group = findGroup(context, groupId);
    if (!group || !isInScope(user, group->record->institutionId)) {
        return {};
    }
    for (std::size_t i = 0; i < group->accountRows.size(); ++i) {
        auto& account = group->record->accounts[i];
        account = accountShownTo(user, group->accountRows[i], account);
    }
    return {group->record};
}

Records queryGroups(const RequestContext& context, const std::string& key)
{
    if (!key.empty()) {
        return queryGroup(context, requireId(key, RecordName));
    }
    AccountsByRow accounts = accountsByRow(loadAccounts(context, std::nullopt));
    for (auto& [row, account] : accounts) {
        account = accountShownTo(context.user, row, account);
    }
    const auto groups = loadGroups(context, context.user.institution, accounts);
    return {groups.begin(), groups.end()};
}

std::optional<std::int32_t> groupOf(const CAccountGroup& sent, EZvDataOperation operation)
{
    return operation == EZvDataOperation::Add ? CAccountGroup().groupId : sent.groupId;
}

void requireFreeName(const RequestContext& context, const std::string& name, std::int64_t ownId)
{
    const std::optional<std::int64_t> holder = findGroupByName(context, name);
    if (holder && *holder != ownId) {
        throw Refusal(EErrorCode::Duplicate, utils::filled(utils::text("service", "账号组名称“%1”已被使用"), name));
    }
}

/// The stored group, which must have the revision of the sent record.
StoredGroup requireCurrent(const RequestContext& context, const CAccountGroup& sent)
{
    std::optional<StoredGroup> stored = findGroup(context, sent.groupId);
    if (!stored) {
        refuseMissingGroup(context, sent.groupId);
    }
    requireInScope(context.user, stored->record->institutionId);
    if (stored->record->revision() != sent.revision()) {
        throw Refusal(EErrorCode::Conflict,
                      utils::filled(utils::text("service", "账号组“%1”已被%2修改，请刷新后重试"),
                                    stored->record->groupName, whoAndWhen(context, stored->lastChange)));
    }
    return std::move(*stored);
}

struct ValidGroup {
    CAccountGroup record;
    std::vector<std::int64_t> accountRows;
};

/// The record as it will be stored: names and accounts are the store's own.
ValidGroup requireValid(const RequestContext& context, const CAccountGroup& sent,
                        const std::vector<std::int64_t>& present)
{
    require(context, [&] { requireValidName(sent.groupName); });
    ValidGroup valid;
    valid.record.groupId = sent.groupId;
    valid.record.groupName = sent.groupName;
    valid.record.institutionId = sent.institutionId;
    require(context, [&] { valid.record.institutionName = requireValidInstitution(context, sent); });
    valid.record.unknownFields = sent.unknownFields.getOwned();
    for (StoredAccount& account : requireValidAccounts(context, sent, present)) {
        valid.accountRows.push_back(account.row);
        valid.record.accounts.push_back(std::move(account.info));
    }
    valid.record.setSystemTag(context.server.systemTag);
    return valid;
}

/// Users cannot remove accounts that they may not read.
void requireUnreadKept(const StoredUser& user, const StoredGroup& stored, const std::vector<std::int64_t>& accountRows)
{
    const std::set<std::int64_t> kept(accountRows.begin(), accountRows.end());
    for (std::size_t i = 0; i < stored.accountRows.size(); ++i) {
        const nvservice::EZVBrokerType type = stored.record->accounts[i]->brokerType;
        if (!mayRead(user, type) && kept.count(stored.accountRows[i]) == 0) {
            throw Refusal(EErrorCode::PermissionDenied,
                          utils::filled(utils::text("service", "您没有%1的权限，不能从账号组中移除这类账号"),
                                        nameOfAccountType(type)));
        }
    }
}

AppliedChange addGroup(const RequestContext& context, const CAccountGroup& sent)
{
    ValidGroup group = requireValid(context, sent, {});
    require(context, [&] { requireFreeName(context, group.record.groupName, -1); });
    group.record.setRevision(1);
    if (!context.isTrial()) {
        group.record.groupId = takeGroupId(context);
        insertGroup(context, group.record, group.accountRows, {context.user.login, context.now});
    }
    return {group.record.getKey(), {}, documentToStore(group.record, RecordName), group.record.groupId};
}

AppliedChange modifyGroup(const RequestContext& context, const CAccountGroup& sent)
{
    const StoredGroup stored = requireCurrent(context, sent);
    ValidGroup group = requireValid(context, withoutStandIns(sent, stored), stored.accountRows);
    require(context, [&] { requireUnreadKept(context.user, stored, group.accountRows); });
    require(context, [&] { requireFreeName(context, group.record.groupName, sent.groupId); });
    group.record.setRevision(sent.revision() + 1);
    if (!context.isTrial() &&
        !updateGroup(context, group.record, group.accountRows, sent.revision(), {context.user.login, context.now})) {
        throw Refusal(EErrorCode::Conflict,
                      utils::filled(utils::text("service", "账号组“%1”已被他人修改，请刷新后重试"), sent.groupName));
    }
    return {group.record.getKey(), nvservice::encodeRecord(*stored.record), documentToStore(group.record, RecordName)};
}

AppliedChange removeGroup(const RequestContext& context, const CAccountGroup& sent)
{
    const StoredGroup stored = requireCurrent(context, sent);
    if (!deleteGroup(context, *stored.record, stored.accountRows, {context.user.login, context.now})) {
        throw Refusal(
            EErrorCode::Conflict,
            utils::filled(utils::text("service", "账号组“%1”已被他人修改，请刷新后重试"), stored.record->groupName));
    }
    return {stored.record->getKey(), nvservice::encodeRecord(*stored.record), {}};
}

} // namespace

DataHandler accountGroupHandler()
{
    namespace UserRight = nvservice::UserRight;
    return {
        nvservice::DataType::AccountGroup,
        &queryGroups,
        RecordName,
        &requireReasonableSize,
        &groupOf,
        {{EZvDataOperation::Add, UserRight::EditAccountGroup, QT_TRANSLATE_NOOP("service", "添加账号组"), &addGroup},
         {EZvDataOperation::Modify, UserRight::EditAccountGroup, QT_TRANSLATE_NOOP("service", "编辑账号组"),
          &modifyGroup},
         {EZvDataOperation::Delete, UserRight::DeleteAccountGroup, QT_TRANSLATE_NOOP("service", "删除账号组"),
          &removeGroup}}};
}

} // namespace service
