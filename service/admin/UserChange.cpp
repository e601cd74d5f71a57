// SPDX-License-Identifier: Apache-2.0
#include "service/admin/UserChange.h"
#include "service/admin/Table.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"

#include <QCoreApplication>

#include <nvservice/CUserInfo.h>
#include <nvservice/Codec.h>
#include <utils/Translation.h>

namespace service
{

Command userCommand(const char* name, const QString& summary, std::function<int(Invocation&)> run)
{
    Command command(name, summary, EStoreUse::Write, std::move(run));
    command.arguments = {{"login", QCoreApplication::translate("service", "用户名"), false}};
    return command;
}

std::string loginOf(const Invocation& call)
{
    return call.arguments().front().toStdString();
}

std::string userKey(const std::string& login)
{
    return "user|" + login;
}

bson::BSONObj userDocument(const SubSystem& server, const StoredUser& user, bool hasNewPassword)
{
    nvservice::CUserInfo info;
    info.userId = user.login;
    info.userName = user.displayName;
    if (user.institution) {
        info.institutionId = static_cast<std::int32_t>(*user.institution);
    }
    info.rights = user.rights;
    info.setSystemTag(server.systemTag);
    bson::BSONObjBuilder more;
    more.append("enabled", user.enabled);
    if (hasNewPassword) {
        more.append("newPassword", true);
    }
    info.unknownFields = more.obj();
    return nvservice::encodeRecord(info);
}

int changeUser(const Administrator& administrator, const std::string& login,
               const std::function<void(const ServerData&, StoredUser&)>& edit)
{
    const auto change = [&](Administration& administration) {
        std::optional<StoredUser> user = findUser(administration, login);
        if (!user) {
            throw Refusal(utils::EErrorCode::NotFound,
                          utils::filled(utils::text("service", "用户%1不存在"), quoted(login)));
        }
        const StoredUser before = *user;
        administration.row.before = userDocument(administration.server, before, false);
        edit(administration, *user);
        administration.row.after =
            userDocument(administration.server, *user, user->passwordHash != before.passwordHash);
        updateUser(administration.connection, *user);
    };
    return reportSaved(carryOut(administrator, nvservice::EZvDataOperation::Modify, userKey(login), change));
}

} // namespace service
