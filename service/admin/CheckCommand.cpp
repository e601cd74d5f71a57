// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/ConsistencyCheck.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"

namespace service
{

namespace
{

int runCheck(Invocation& call)
{
    const std::vector<SubSystem> servers = call.servers();
    Connection& connection = call.store().connection();
    const utils::NVError integrity = call.store().checkIntegrity();
    Table table({{"server", "分系统"}, {"kind", "种类"}, {"groupId", "编号"}, {"group", "账号组"}, {"text", "说明"}});
    const Transaction snapshot(connection, Transaction::EKind::Read);
    for (const SubSystem& server : servers) {
        Progress bar(QString::fromStdString(server.name));
        for (const Finding& finding : checkConsistency({connection, server}, bar.counter())) {
            table.add({server.name, keyOf(finding.kind), finding.groupId, finding.groupName, finding.text});
        }
    }
    const bool isSound = table.size() == 0 && integrity.isSuccess();
    QString text = integrity.isSuccess() ? QString() : QString::fromStdString(integrity.errorMsg()) + '\n';
    text += table.size() > 0 ? table.toText() : QString();
    text += isSound ? QStringLiteral("没有发现问题\n")
                    : QStringLiteral("发现%1个问题\n").arg(table.size() + (integrity.isSuccess() ? 0 : 1));
    report(call, {{"integrity", Cell(integrity.errorMsg())}, {"findings", table.toJson()}}, text);
    return isSound ? Done : Findings;
}

} // namespace

std::vector<Command> checkCommands()
{
    Command check("check", "Look for what contradicts the rules or itself.", EStoreUse::Read, runCheck);
    check.details = QStringList{
        "Every page and reference of the database; accounts of a group that belong to another sub-system or "
        "institution, that are closed or excluded; groups without accounts, with and without rules; risk "
        "configurations and unknown fields that can't be read; two lists of one trade type; securities that are on the "
        "black and the white list of one group; categories that are gone or must not be exempt; limits and e-mail "
        "rules that could not be saved today; and groups that share an account and contradict each other, one having a "
        "security on its white list and the other on its black list for the same trade type and direction.",
        "Histories with missing revisions; groups and configurations that are not what their last change left; numbers "
        "that would be given out again.",
        "Nothing is changed. Without --server all sub-systems are looked at. The exit code is 4 when anything was "
        "found."};
    return {check};
}

} // namespace service
