#include "service/engine/GroupOperations.h"
#include "service/engine/AccountRights.h"
#include "service/engine/GroupRules.h"
#include "service/engine/GroupScope.h"
#include "service/engine/RecordSize.h"
#include "service/engine/Refusal.h"

#include <nvservice/Codec.h>
#include <nvservice/UserRight.h>

#include <set>

namespace service
{

namespace
{

using nvservice::CAccountGroup;
using nvservice::EZvDataOperation;
using utils::EErrorCode;

void requireRight(const StoredUser& user, int right, const char* what)
{
    if (!user.has(right))
        throw Refusal(EErrorCode::PermissionDenied, std::string("您没有") + what + "账号组的权限");
}

void requireFreeName(Connection& connection, const SubSystem& server, const std::string& name, std::int64_t ownId)
{
    const std::optional<std::int64_t> holder = findGroupByName(connection, server, name);
    if (holder && *holder != ownId)
        throw Refusal(EErrorCode::Duplicate, "账号组名称“" + name + "”已被使用");
}

/// The stored group that the sent record is a later or equal state of.
StoredGroup requireCurrent(Connection& connection, const SubSystem& server, const StoredUser& user,
                           const CAccountGroup& sent)
{
    std::optional<StoredGroup> stored = findGroup(connection, server, sent.groupId);
    if (!stored)
        refuseMissingGroup(connection, server, user, sent.groupId);
    if (user.institution && stored->record->institutionId != *user.institution)
        throw Refusal(EErrorCode::OutOfScope, "您只能操作本机构的账号组");
    if (stored->record->revision() != sent.revision())
        throw Refusal(EErrorCode::Conflict, "账号组“" + stored->record->groupName + "”已被" +
                                                whoAndWhen(connection, server, stored->lastChange) +
                                                "修改，请刷新后重试");
    return std::move(*stored);
}

struct ValidGroup {
    CAccountGroup record;
    std::vector<std::int64_t> accountRows;
};

/// The record as it will be stored: names and accounts are the store's own.
ValidGroup requireValid(Connection& connection, const SubSystem& server, const StoredUser& user,
                        const CAccountGroup& sent, const std::vector<std::int64_t>& present)
{
    requireValidName(sent.groupName);
    ValidGroup valid;
    valid.record.groupId = sent.groupId;
    valid.record.groupName = sent.groupName;
    valid.record.institutionId = sent.institutionId;
    valid.record.institutionName = requireValidInstitution(connection, server, user, sent);
    valid.record.unknownFields = sent.unknownFields.getOwned();
    for (StoredAccount& account : requireValidAccounts(connection, server, user, sent, present)) {
        valid.accountRows.push_back(account.row);
        valid.record.accounts.push_back(std::move(account.info));
    }
    valid.record.setSystemTag(server.systemTag);
    return valid;
}

/// Nobody takes an account out of a group unseen.
void requireUnreadKept(const StoredUser& user, const StoredGroup& stored, const std::vector<std::int64_t>& accountRows)
{
    const std::set<std::int64_t> kept(accountRows.begin(), accountRows.end());
    for (std::size_t i = 0; i < stored.accountRows.size(); ++i) {
        const nvservice::EZVBrokerType type = stored.record->accounts[i]->brokerType;
        if (!mayRead(user, type) && kept.count(stored.accountRows[i]) == 0)
            throw Refusal(EErrorCode::PermissionDenied,
                          "您没有" + nameOfAccountType(type) + "的权限，不能从账号组中移除这类账号");
    }
}

AppliedChange addGroup(Connection& connection, const SubSystem& server, const StoredUser& user,
                       const CAccountGroup& sent, const Change& change)
{
    requireRight(user, nvservice::UserRight::EditAccountGroup, "添加");
    ValidGroup group = requireValid(connection, server, user, sent, {});
    requireFreeName(connection, server, group.record.groupName, -1);
    group.record.groupId = takeGroupId(connection, server);
    group.record.setRevision(1);
    GroupWriter(connection, server).insert(group.record, group.accountRows, change);
    return {group.record.getKey(), {}, documentToStore(group.record, "账号组"), group.record.groupId};
}

AppliedChange modifyGroup(Connection& connection, const SubSystem& server, const StoredUser& user,
                          const CAccountGroup& sent, const Change& change)
{
    requireRight(user, nvservice::UserRight::EditAccountGroup, "编辑");
    const StoredGroup stored = requireCurrent(connection, server, user, sent);
    ValidGroup group = requireValid(connection, server, user, withoutStandIns(sent, stored), stored.accountRows);
    requireUnreadKept(user, stored, group.accountRows);
    requireFreeName(connection, server, group.record.groupName, sent.groupId);
    group.record.setRevision(sent.revision() + 1);
    if (!GroupWriter(connection, server).update(group.record, group.accountRows, sent.revision(), change))
        throw Refusal(EErrorCode::Conflict, "账号组“" + sent.groupName + "”已被他人修改，请刷新后重试");
    return {group.record.getKey(), nvservice::encodeRecord(*stored.record), documentToStore(group.record, "账号组")};
}

AppliedChange deleteGroup(Connection& connection, const SubSystem& server, const StoredUser& user,
                          const CAccountGroup& sent, const Change& change)
{
    requireRight(user, nvservice::UserRight::DeleteAccountGroup, "删除");
    const StoredGroup stored = requireCurrent(connection, server, user, sent);
    if (!GroupWriter(connection, server).remove(*stored.record, stored.accountRows, change))
        throw Refusal(EErrorCode::Conflict, "账号组“" + stored.record->groupName + "”已被他人修改，请刷新后重试");
    return {stored.record->getKey(), nvservice::encodeRecord(*stored.record), {}};
}

} // namespace

AppliedChange applyGroupOperation(Connection& connection, const SubSystem& server, const StoredUser& user,
                                  EZvDataOperation operation, const CAccountGroup& sent, std::int64_t now)
{
    if (!sent.getSystemTag().empty() && sent.getSystemTag() != server.systemTag)
        throw Refusal(EErrorCode::OutOfScope, "账号组不属于分系统“" + server.name + "”");
    const Change change{user.login, now};
    switch (operation) {
    case EZvDataOperation::Add:
        return addGroup(connection, server, user, sent, change);
    case EZvDataOperation::Modify:
        return modifyGroup(connection, server, user, sent, change);
    case EZvDataOperation::Delete:
        return deleteGroup(connection, server, user, sent, change);
    }
    throw Refusal(EErrorCode::Unsupported, "不支持的操作");
}

} // namespace service
