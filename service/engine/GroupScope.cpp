#include "service/engine/GroupScope.h"
#include "service/engine/Refusal.h"

#include <QDateTime>

namespace service
{

using utils::EErrorCode;

std::string whoAndWhen(Connection& connection, const SubSystem& server, const Change& change)
{
    const std::optional<StoredUser> user = findUser(connection, server, change.login);
    const bool named = user && !user->displayName.empty() && user->displayName != change.login;
    const std::string who = named ? user->displayName + "（" + change.login + "）" : change.login;
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(change.at);
    return who + "于" + when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toStdString();
}

void refuseMissingGroup(Connection& connection, const SubSystem& server, const StoredUser& user, std::int64_t groupId)
{
    const std::optional<Change> deletion = findGroupDeletion(connection, server, groupId);
    if (deletion && !user.institution)
        throw Refusal(EErrorCode::NotFound, "账号组已被" + whoAndWhen(connection, server, *deletion) + "删除");
    throw Refusal(EErrorCode::NotFound, "账号组不存在或已被删除");
}

GroupHead requireGroupInScope(Connection& connection, const SubSystem& server, const StoredUser& user,
                              std::int64_t groupId)
{
    std::optional<GroupHead> group = findGroupHead(connection, server, groupId);
    if (!group)
        refuseMissingGroup(connection, server, user, groupId);
    if (user.institution && group->institution != user.institution)
        throw Refusal(EErrorCode::OutOfScope, "您只能操作本机构的账号组");
    return std::move(*group);
}

} // namespace service
