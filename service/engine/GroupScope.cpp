// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"

#include <utils/Translation.h>

#include <QDateTime>

namespace service
{

using utils::EErrorCode;

std::string groupKey(const SubSystem& server, std::int32_t groupId)
{
    nvservice::CAccountGroup group;
    group.groupId = groupId;
    group.setSystemTag(server.systemTag);
    return group.getKey();
}

std::string whoAndWhen(const ServerData& data, const Change& change)
{
    const std::optional<StoredUser> user = findUser(data, change.login);
    const bool named = user && !user->displayName.empty() && user->displayName != change.login;
    const std::string who =
        named ? utils::filled(utils::text("service", "%1（%2）"), user->displayName, change.login) : change.login;
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(change.at);
    return utils::filled(utils::text("service", "%1于%2"), who,
                         when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toStdString());
}

bool isInScope(const StoredUser& user, InstitutionId institution)
{
    return !user.institution || user.institution == institution;
}

void requireInScope(const StoredUser& user, InstitutionId institution)
{
    if (!isInScope(user, institution)) {
        throw Refusal(EErrorCode::OutOfScope, utils::text("service", "您只能操作本机构的账号组"));
    }
}

void refuseMissingGroup(const RequestContext& context, std::int64_t groupId)
{
    const std::optional<Change> deletion = findGroupDeletion(context, groupId);
    if (deletion && !context.user.institution) {
        throw Refusal(EErrorCode::NotFound,
                      utils::filled(utils::text("service", "账号组已被%1删除"), whoAndWhen(context, *deletion)));
    }
    throw Refusal(EErrorCode::NotFound, utils::text("service", "账号组不存在或已被删除"));
}

GroupHead requireGroupInScope(const RequestContext& context, std::int64_t groupId)
{
    std::optional<GroupHead> group = findGroupHead(context, groupId);
    if (!group) {
        refuseMissingGroup(context, groupId);
    }
    requireInScope(context.user, group->institution);
    return std::move(*group);
}

} // namespace service
