// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/Table.h"
#include "service/engine/Servers.h"
#include "service/store/Query.h"

#include <QDateTime>

namespace service
{

namespace
{

int listServers(Invocation& call)
{
    Table table(
        {{"name", "分系统"}, {"tag", "系统标识"}, {"groups", "账号组"}, {"accounts", "账号"}, {"users", "用户"}});
    Query query(call.store().connection(),
                QStringLiteral("SELECT s.name, s.system_tag,"
                               " (SELECT count(*) FROM account_group g WHERE g.server_id = s.id),"
                               " (SELECT count(*) FROM account a WHERE a.server_id = s.id),"
                               " (SELECT count(*) FROM app_user u WHERE u.server_id = s.id)"
                               " FROM sub_system s ORDER BY s.id"));
    for (query.run(); query.next();) {
        table.add({query.text(0), query.text(1), query.integer(2), query.integer(3), query.integer(4)});
    }
    return report(call, table);
}

int addServer(Invocation& call)
{
    Store& store = call.store();
    const std::lock_guard<std::mutex> turn(store.writeMutex());
    Transaction transaction(store.connection(), Transaction::EKind::Write);
    createServer(store.connection(), call.arguments()[0].toStdString(), call.arguments()[1].toStdString(),
                 call.administrator(), QDateTime::currentMSecsSinceEpoch());
    transaction.commit();
    return reportSaved(true);
}

} // namespace

std::vector<Command> serverCommands()
{
    Command list("server list", "List the sub-systems of the database.", EStoreUse::Read, listServers);
    list.hasServer = false;

    Command add("server add", "Create a sub-system, and the database when it is missing.", EStoreUse::Create,
                addServer);
    add.arguments = {{"name", "What people call it.", false},
                     {"tag", "What its records carry; it can't be changed.", false}};
    add.examples = QStringList{"server add 上海分系统 SH01 --store qav.db"};
    return {list, add};
}

} // namespace service
