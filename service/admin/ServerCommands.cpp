// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/Table.h"
#include "service/engine/Servers.h"
#include "service/store/Query.h"

#include <QCoreApplication>
#include <QDateTime>

namespace service
{

namespace
{

int listServers(Invocation& call)
{
    Table table({{"name", QCoreApplication::translate("service", "分系统")},
                 {"tag", QCoreApplication::translate("service", "系统标识")},
                 {"groups", QCoreApplication::translate("service", "账号组")},
                 {"accounts", QCoreApplication::translate("service", "账号")},
                 {"users", QCoreApplication::translate("service", "用户")}});
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
    Command list("server list", QCoreApplication::translate("service", "列出数据库中的分系统"), EStoreUse::Read,
                 listServers);
    list.hasServer = false;

    Command add("server add", QCoreApplication::translate("service", "创建分系统，数据库不存在时一并创建"),
                EStoreUse::Create, addServer);
    add.arguments = {{"name", QCoreApplication::translate("service", "分系统的名称"), false},
                     {"tag", QCoreApplication::translate("service", "记录所带的标识，以后不能修改"), false}};
    add.examples = QStringList{QCoreApplication::translate("service", "server add 上海分系统 SH01 --store qav.db")};
    return {list, add};
}

} // namespace service
