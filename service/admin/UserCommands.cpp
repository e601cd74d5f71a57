// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/Rights.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"
#include "service/admin/Users.h"

namespace service
{

namespace
{

const Argument LogIn{"login", "The user's log-in.", false};

UserAdministration administrationOf(Invocation& call)
{
    return {call.store(), call.server(), call.administrator()};
}

std::string loginOf(const Invocation& call)
{
    return call.arguments().front().toStdString();
}

int done(bool isChanged)
{
    printText(isChanged ? QStringLiteral("已保存\n") : QStringLiteral("内容没有变化\n"));
    return Done;
}

int listUsers(Invocation& call)
{
    const ServerData data = call.data();
    Transaction snapshot(data.connection, Transaction::EKind::Read);
    const auto institutions = loadInstitutionNames(data);
    Table table({{"login", "用户名"},
                 {"name", "姓名"},
                 {"institutionId", "机构编号"},
                 {"institution", "所属机构"},
                 {"enabled", "启用"},
                 {"rights", "权限数"}});
    for (const StoredUser& user : loadUsers(data)) {
        const auto institution = user.institution ? institutions.find(*user.institution) : institutions.end();
        const bool isBound = institution != institutions.end();
        table.add({QString::fromStdString(user.login), QString::fromStdString(user.displayName),
                   isBound ? QJsonValue(static_cast<qint64>(*user.institution)) : QJsonValue(),
                   isBound ? QJsonValue(QString::fromStdString(institution->second)) : QJsonValue(), user.enabled,
                   static_cast<int>(user.rights.size())});
    }
    print(table, call.wantsJson());
    return Done;
}

int addUser(Invocation& call)
{
    UserAdministration::NewUser user;
    user.login = loginOf(call);
    user.displayName = call.value("name").toStdString();
    user.institution = call.value("institution").toStdString();
    user.rights = requireRights(call.value("rights").split(QLatin1Char(','), Qt::SkipEmptyParts));
    UserAdministration administration = administrationOf(call);
    user.password = readPassword();
    administration.add(user);
    return done(true);
}

int setPassword(Invocation& call)
{
    UserAdministration administration = administrationOf(call);
    administration.setPassword(loginOf(call), readPassword());
    return done(true);
}

int bindUser(Invocation& call)
{
    if (call.isSet("institution") == call.isSet("none")) {
        throw UsageError(QStringLiteral("请用 --institution 指定机构，或用 --none 解除绑定"));
    }
    const QString institution = call.isSet("none") ? QString() : call.requiredValue("institution");
    return done(administrationOf(call).bind(loginOf(call), institution.toStdString()));
}

Command makeList()
{
    Command command;
    command.name = QStringLiteral("user list");
    command.summary = QStringLiteral("List the users of a sub-system.");
    command.storeUse = EStoreUse::Read;
    command.hasServer = command.hasJson = true;
    command.run = listUsers;
    return command;
}

/// A command that changes the user who is its first argument.
Command changeOfUser(const char* name, const char* summary, std::function<int(Invocation&)> run)
{
    Command command;
    command.name = QLatin1String(name);
    command.summary = QLatin1String(summary);
    command.storeUse = EStoreUse::Write;
    command.hasServer = true;
    command.arguments = {LogIn};
    command.run = std::move(run);
    return command;
}

Command makeAdd()
{
    Command command =
        changeOfUser("user add", "Create a user; the password is the first line of standard input.", addUser);
    command.details =
        QStringList{"The password has at least 8 characters. On a terminal it is asked for and not shown.",
                    "A user who is bound to an institution sees and changes that institution's records only."};
    command.examples = QStringList{"user add boss --server SH01 --rights all < password.txt",
                                   "user add li --name 李岚 --institution 101 --rights edit-account-group,10041"};
    command.options = {{"name", "The name that others see; the log-in without it.", "name"},
                       {"institution", "The institution that the user is bound to, by id or name.", "institution"},
                       {"rights", "Rights, separated by commas, as 'right grant' takes them.", "rights"}};
    return command;
}

Command makePassword()
{
    Command command =
        changeOfUser("user password", "Give a user another password, the first line of standard input.", setPassword);
    command.details =
        QStringList{"Sessions that are open end with their next request: the user logs in again with the new "
                    "password."};
    return command;
}

Command makeBind()
{
    Command command = changeOfUser("user bind", "Bind a user to an institution, or to none.", bindUser);
    command.options = {{"institution", "The institution, by id or name.", "institution"},
                       {"none", "The user sees every institution."}};
    return command;
}

} // namespace

std::vector<Command> userCommands()
{
    Command disable = changeOfUser("user disable", "Take a user's access away, at once.", [](Invocation& call) {
        return done(administrationOf(call).setEnabled(loginOf(call), false));
    });
    disable.details = QStringList{"A request of a session that is open already is refused, too."};
    const Command enable = changeOfUser("user enable", "Give a user access again.", [](Invocation& call) {
        return done(administrationOf(call).setEnabled(loginOf(call), true));
    });
    return {makeList(), makeAdd(), disable, enable, makePassword(), makeBind()};
}

std::vector<Command> rightCommands()
{
    Command list;
    list.name = QStringLiteral("right list");
    list.summary = QStringLiteral("List rights with numbers and names, and who has them.");
    list.storeUse = EStoreUse::Read;
    list.hasServer = list.hasJson = true;
    list.options = {{"user", "Only the rights of this user.", "login"}};
    list.run = listRights;

    const Argument rights{"right", "A number, a key or a name of 'right list'; 'all' for every right.", true};
    Command grant = changeOfUser("right grant", "Give rights to a user.", [](Invocation& call) {
        return done(administrationOf(call).grant(loginOf(call), requireRights(call.arguments().mid(1))));
    });
    Command revoke = changeOfUser("right revoke", "Take rights from a user.", [](Invocation& call) {
        return done(administrationOf(call).revoke(loginOf(call), requireRights(call.arguments().mid(1))));
    });
    grant.arguments.push_back(rights);
    revoke.arguments.push_back(rights);
    grant.examples = QStringList{"right grant li 10719 category-1 证券账号"};
    return {list, grant, revoke};
}

} // namespace service
