// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Rights.h"
#include "service/admin/Table.h"
#include "service/engine/CategoryRights.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "service/engine/UserRights.h"

#include <map>

namespace service
{

namespace
{

/// Who has which right.
std::map<int, QJsonArray> holdersOf(const std::vector<StoredUser>& users)
{
    std::map<int, QJsonArray> holders;
    for (const StoredUser& user : users) {
        for (const int right : user.rights) {
            holders[right].append(QString::fromStdString(user.login));
        }
    }
    return holders;
}

bool isOfCategories(int right)
{
    return right >= FirstCategorySysTypeRight && right < FirstCategorySysTypeRight + CategorySysTypes;
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
            throw Refusal(utils::EErrorCode::InvalidValue, "没有权限" + quoted(text.toStdString()));
        }
        rights.insert(right->id);
    }
    return rights;
}

int listRights(Invocation& call)
{
    const ServerData data = call.data();
    const std::string login = call.value("user").toStdString();
    std::vector<StoredUser> users = loadUsers(data);
    if (call.isSet("user")) {
        const std::optional<StoredUser> user = findUser(data, login);
        if (!user) {
            throw Refusal(utils::EErrorCode::NotFound, "用户" + quoted(login) + "不存在");
        }
        users = {*user};
    }
    std::map<int, QJsonArray> holders = holdersOf(users);
    if (!call.isSet("user")) {
        // Most of the hundred system types are nobody's; they would hide the rest.
        for (const NamedRight& right : namedRights()) {
            if (!isOfCategories(right.id)) {
                holders.try_emplace(right.id);
            }
        }
    }
    Table table({{"id", "编号"}, {"key", "代码"}, {"name", "名称"}, {"users", "用户"}});
    for (const auto& [id, logins] : holders) {
        const NamedRight* const right = findRight(std::to_string(id));
        table.add({id, right ? QJsonValue(QString::fromStdString(right->key)) : QJsonValue(),
                   QString::fromStdString(nameOfRight(id)), logins});
    }
    print(table, call.wantsJson());
    return Done;
}

} // namespace service
