// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/ConsistencyCheck.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"

namespace service
{

namespace
{

std::vector<SubSystem> serversOf(Invocation& call)
{
    if (call.isSet("server")) {
        return {call.server()};
    }
    utils::NVError error;
    std::vector<SubSystem> servers = call.store().subSystems(error);
    if (!error.isSuccess()) {
        throw StoreError(error.code(), error.errorMsg());
    }
    return servers;
}

int runCheck(Invocation& call)
{
    const std::vector<SubSystem> servers = serversOf(call);
    Connection& connection = call.store().connection();
    const utils::NVError integrity = call.store().checkIntegrity();
    Table table({{"server", "分系统"}, {"kind", "种类"}, {"groupId", "编号"}, {"group", "账号组"}, {"text", "说明"}});
    Transaction snapshot(connection, Transaction::EKind::Read);
    for (const SubSystem& server : servers) {
        Progress bar(QString::fromStdString(server.name));
        for (const Finding& finding : checkConsistency(
                 {connection, server}, [&bar](std::int64_t done, std::int64_t total) { bar.show(done, total); })) {
            table.add({QString::fromStdString(server.name), keyOf(finding.kind), static_cast<qint64>(finding.groupId),
                       QString::fromStdString(finding.groupName), QString::fromStdString(finding.text)});
        }
    }
    if (call.wantsJson()) {
        printJson(
            QJsonObject{{"integrity", QString::fromStdString(integrity.errorMsg())}, {"findings", table.toJson()}});
    } else {
        if (!integrity.isSuccess()) {
            printText(QString::fromStdString(integrity.errorMsg()) + '\n');
        }
        if (table.size() > 0) {
            printText(table.toText());
        }
        printText(table.size() == 0 && integrity.isSuccess()
                      ? QStringLiteral("没有发现问题\n")
                      : QStringLiteral("发现%1个问题\n").arg(table.size() + (integrity.isSuccess() ? 0 : 1)));
    }
    return table.size() == 0 && integrity.isSuccess() ? Done : Findings;
}

} // namespace

std::vector<Command> checkCommands()
{
    Command check;
    check.name = QStringLiteral("check");
    check.summary = QStringLiteral("Look for what contradicts the rules or itself.");
    check.details = QStringList{
        "Every page and reference of the database; accounts of a group that belong to another sub-system or "
        "institution, "
        "that are closed or excluded; groups without accounts, with and without rules; risk configurations and "
        "unknown fields that can't be read; two lists of one trade type; securities that are on the black and the "
        "white list of one group; categories that are gone or must "
        "not be exempt; limits and e-mail rules that could not be saved today; and groups that share an account and "
        "contradict each other, one having a security on its white list and the other on its black list for the same "
        "trade type and direction.",
        "Histories with missing revisions; groups and configurations that are not what their last change left; numbers "
        "that would be given out again.",
        "Nothing is changed. Without --server all sub-systems are looked at. The exit code is 4 when anything was "
        "found."};
    check.storeUse = EStoreUse::Read;
    check.hasServer = check.hasJson = true;
    check.run = runCheck;
    return {check};
}

} // namespace service
