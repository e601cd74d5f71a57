// SPDX-License-Identifier: Apache-2.0
#include "service/admin/RightCommands.h"
#include "service/admin/Commands.h"
#include "service/admin/Table.h"
#include "service/admin/UserChange.h"
#include "service/engine/CategoryRights.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/engine/UserRights.h"

#include <utils/Translation.h>

#include <QCoreApplication>

#include <map>

namespace service
{

namespace
{

bool isOfCategories(int right)
{
    return right >= FirstCategorySysTypeRight && right < FirstCategorySysTypeRight + CategorySysTypes;
}

int listRights(Invocation& call)
{
    const ServerData data = call.data();
    std::vector<StoredUser> users = loadUsers(data);
    std::map<int, QJsonArray> holders;
    if (call.isSet("user")) {
        const std::string login = call.value("user").toStdString();
        const std::optional<StoredUser> user = findUser(data, login);
        if (!user) {
            throw Refusal(utils::EErrorCode::NotFound,
                          utils::filled(utils::text("service", "用户%1不存在"), quoted(login)));
        }
        users = {*user};
    } else {
        // The hundred system types are only listed if somebody has a right to them.
        for (const NamedRight& right : namedRights()) {
            if (!isOfCategories(right.id)) {
                holders.try_emplace(right.id);
            }
        }
    }
    for (const StoredUser& user : users) {
        for (const int right : user.rights) {
            holders[right].append(Cell(user.login));
        }
    }
    Table table({{"id", QCoreApplication::translate("service", "编号")},
                 {"key", QCoreApplication::translate("service", "代码")},
                 {"name", QCoreApplication::translate("service", "名称")},
                 {"users", QCoreApplication::translate("service", "用户")}});
    for (const auto& [id, logins] : holders) {
        const NamedRight* const right = findRight(std::to_string(id));
        table.add({id, right ? Cell(right->key) : Cell(), nameOfRight(id), logins});
    }
    return report(call, table);
}

int grantRights(Invocation& call)
{
    const Administrator administrator = administratorOf(call);
    const std::set<int> rights = requireRights(call.arguments().mid(1));
    return changeUser(administrator, loginOf(call), [&rights](const ServerData&, StoredUser& user) {
        user.rights.insert(rights.begin(), rights.end());
    });
}

int revokeRights(Invocation& call)
{
    const Administrator administrator = administratorOf(call);
    const std::set<int> rights = requireRights(call.arguments().mid(1));
    return changeUser(administrator, loginOf(call), [&rights](const ServerData&, StoredUser& user) {
        for (const int right : rights) {
            user.rights.erase(right);
        }
    });
}

} // namespace

std::set<int> requireRights(const QStringList& texts)
{
    std::set<int> rights;
    for (const QString& text : texts) {
        if (text == QLatin1String("all")) {
            for (const NamedRight& right : namedRights()) {
                rights.insert(right.id);
            }
            continue;
        }
        const NamedRight* const right = findRight(text.trimmed().toStdString());
        if (!right) {
            throw Refusal(utils::EErrorCode::InvalidValue,
                          utils::filled(utils::text("service", "没有权限%1"), quoted(text.toStdString())));
        }
        rights.insert(right->id);
    }
    return rights;
}

std::vector<Command> rightCommands()
{
    Command list("right list", QCoreApplication::translate("service", "列出权限的编号、名称和拥有者"), EStoreUse::Read,
                 listRights);
    list.options = {{"user", QCoreApplication::translate("service", "只列出该用户的权限"), "login"}};

    const Argument rights{
        "right", QCoreApplication::translate("service", "right list 中的编号、代码或名称；all 表示全部权限"), true};
    Command grant = userCommand("right grant", QCoreApplication::translate("service", "授予用户权限"), grantRights);
    grant.arguments.push_back(rights);
    grant.examples = QStringList{QCoreApplication::translate("service", "right grant li 10719 category-1 证券账号")};
    Command revoke =
        userCommand("right revoke", QCoreApplication::translate("service", "收回用户的权限"), revokeRights);
    revoke.arguments.push_back(rights);
    return {list, grant, revoke};
}

} // namespace service
