// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"

#include <utils/Translation.h>

#include <QDateTime>

namespace service
{

using utils::EErrorCode;

std::string timeText(std::int64_t at)
{
    return QDateTime::fromMSecsSinceEpoch(at).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toStdString();
}

std::string whoAndWhen(const ServerData& data, const Change& change)
{
    const std::optional<StoredUser> user = findUser(data, change.login);
    const bool named = user && !user->displayName.empty() && user->displayName != change.login;
    const std::string who =
        named ? utils::filled(utils::text("service", "%1（%2）"), user->displayName, change.login) : change.login;
    return utils::filled(utils::text("service", "%1于%2"), who, timeText(change.at));
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
