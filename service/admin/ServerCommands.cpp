// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/Institutions.h"
#include "service/admin/Table.h"
#include "service/engine/Servers.h"

#include <QDateTime>

namespace service
{

namespace
{

int listServers(Invocation& call)
{
    Connection& connection = call.store().connection();
    Query query(connection, QStringLiteral("SELECT s.name, s.system_tag,"
                                           " (SELECT count(*) FROM account_group g WHERE g.server_id = s.id),"
                                           " (SELECT count(*) FROM account a WHERE a.server_id = s.id),"
                                           " (SELECT count(*) FROM app_user u WHERE u.server_id = s.id)"
                                           " FROM sub_system s ORDER BY s.id"));
    Table table(
        {{"name", "分系统"}, {"tag", "系统标识"}, {"groups", "账号组"}, {"accounts", "账号"}, {"users", "用户"}});
    for (query.run(); query.next();) {
        table.add({QString::fromStdString(query.text(0)), QString::fromStdString(query.text(1)),
                   static_cast<qint64>(query.integer(2)), static_cast<qint64>(query.integer(3)),
                   static_cast<qint64>(query.integer(4))});
    }
    print(table, call.wantsJson());
    return Done;
}

int listInstitutions(Invocation& call)
{
    Table table({{"id", "机构编号"}, {"name", "机构名称"}});
    for (const auto& institution : loadInstitutions(call.data(), std::nullopt)) {
        table.add({institution->institutionId, QString::fromStdString(institution->name)});
    }
    print(table, call.wantsJson());
    return Done;
}

} // namespace

std::vector<Command> serverCommands()
{
    Command list;
    list.name = QStringLiteral("server list");
    list.summary = QStringLiteral("List the sub-systems of the database.");
    list.storeUse = EStoreUse::Read;
    list.hasJson = true;
    list.run = listServers;

    Command add;
    add.name = QStringLiteral("server add");
    add.summary = QStringLiteral("Create a sub-system, and the database when it is missing.");
    add.storeUse = EStoreUse::Create;
    add.arguments = {{"name", "What people call it.", false},
                     {"tag", "What its records carry; it can't be changed.", false}};
    add.examples = QStringList{"server add 上海分系统 SH01 --store qav.db"};
    add.run = [](Invocation& call) {
        Store& store = call.store();
        const std::lock_guard<std::mutex> turn(store.writeMutex());
        Transaction transaction(store.connection(), Transaction::EKind::Write);
        createServer(store.connection(), call.arguments()[0].toStdString(), call.arguments()[1].toStdString(),
                     call.administrator(), QDateTime::currentMSecsSinceEpoch());
        transaction.commit();
        printText(QStringLiteral("已保存\n"));
        return Done;
    };
    return {list, add};
}

std::vector<Command> institutionCommands()
{
    Command list;
    list.name = QStringLiteral("institution list");
    list.summary = QStringLiteral("List the institutions of a sub-system.");
    list.storeUse = EStoreUse::Read;
    list.hasServer = list.hasJson = true;
    list.run = listInstitutions;

    Command add;
    add.name = QStringLiteral("institution add");
    add.summary = QStringLiteral("Add an institution.");
    add.storeUse = EStoreUse::Write;
    add.hasServer = true;
    add.arguments = {{"id", "Its number.", false}, {"name", "Its name.", false}};
    Command rename = add;
    add.run = [](Invocation& call) {
        addInstitution(call.store(), call.server(), call.administrator(), call.arguments()[0].toStdString(),
                       call.arguments()[1].toStdString());
        printText(QStringLiteral("已保存\n"));
        return Done;
    };
    rename.name = QStringLiteral("institution rename");
    rename.summary = QStringLiteral("Give an institution another name.");
    rename.run = [](Invocation& call) {
        const bool isChanged = renameInstitution(call.store(), call.server(), call.administrator(),
                                                 call.arguments()[0].toStdString(), call.arguments()[1].toStdString());
        printText(isChanged ? QStringLiteral("已保存\n") : QStringLiteral("内容没有变化\n"));
        return Done;
    };
    return {list, add, rename};
}

} // namespace service
