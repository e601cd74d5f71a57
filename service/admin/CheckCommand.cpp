// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/Table.h"
#include "service/admin/Terminal.h"
#include "service/engine/ConsistencyCheck.h"
#include "service/engine/UserRights.h"

#include <QCoreApplication>

namespace service
{

namespace
{

int runCheck(Invocation& call)
{
    const std::vector<SubSystem> servers = call.servers();
    Connection& connection = call.store().connection();
    const utils::NVError integrity = call.store().checkIntegrity();
    Table table({{"server", QCoreApplication::translate("service", "分系统")},
                 {"kind", QCoreApplication::translate("service", "种类")},
                 {"groupId", QCoreApplication::translate("service", "编号")},
                 {"group", QCoreApplication::translate("service", "账号组")},
                 {"text", QCoreApplication::translate("service", "说明")}});
    const Transaction snapshot(connection, Transaction::EKind::Read);
    for (const SubSystem& server : servers) {
        Progress bar(QString::fromStdString(server.name));
        const CheckOptions options{userWithEveryRight("qav-admin"), bar.counter()};
        for (const Finding& finding : checkConsistency({connection, server}, options)) {
            table.add({server.name, keyOf(finding.kind), finding.groupId, finding.groupName, finding.text});
        }
    }
    const int found = table.size() + (integrity.isSuccess() ? 0 : 1);
    const bool isSound = found == 0;
    QString text = integrity.isSuccess() ? QString() : QString::fromStdString(integrity.errorMsg()) + '\n';
    text += table.size() > 0 ? table.toText() : QString();
    text += isSound ? QCoreApplication::translate("service", "没有发现问题\n")
                    : QCoreApplication::translate("service", "发现%n个问题\n", nullptr, found);
    report(call, {{"integrity", Cell(integrity.errorMsg())}, {"findings", table.toJson()}}, text);
    return isSound ? Done : Findings;
}

} // namespace

std::vector<Command> checkCommands()
{
    Command check("check", QCoreApplication::translate("service", "检查违反规则或自相矛盾的数据"), EStoreUse::Read,
                  runCheck);
    check.details = QStringList{
        QCoreApplication::translate(
            "service", "数据库的每一页和每一处引用；账号组中属于其他分系统或机构、已销户或被排除的账号；没有账号的账号"
                       "组，无论有无规则；无法读取的风控配置和未知字段；同一交易类型的两份名单；同时在一个账号组黑名单"
                       "和白名单中的证券；已不存在或不能豁免的分类；今天已不能保存的限额和邮件规则；以及包含同一账号而"
                       "互相矛盾的账号组：对同一交易类型和方向，一组将证券列入白名单，另一组列入黑名单。"),
        QCoreApplication::translate("service",
                                    "缺少修订的历史；与最后一次修改不符的账号组和配置；会被重复使用的编号。"),
        QCoreApplication::translate("service",
                                    "不修改任何内容。没有 --server 时检查全部分系统。发现问题时退出码为 4。")};
    return {check};
}

} // namespace service
