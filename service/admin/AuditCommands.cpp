// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Table.h"
#include "service/admin/Times.h"
#include "service/store/Journal.h"

#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>
#include <nvservice/EZvDataOperation.h>
#include <nvservice/TypeManager.h>

#include <QJsonDocument>

#include <algorithm>
#include <array>

namespace service
{

using utils::EErrorCode;

namespace
{

namespace DataType = nvservice::DataType;

constexpr std::int64_t RowsUnlessAsked = 100;

struct OutcomeName {
    EErrorCode code;
    const char* key;
    const char* title;
};

constexpr std::array<OutcomeName, 16> OutcomeNames = {
    {{EErrorCode::Success, "ok", "成功"},
     {EErrorCode::Failed, "failed", "失败"},
     {EErrorCode::NotConnected, "not-connected", "未连接"},
     {EErrorCode::DeadlineExceeded, "deadline-exceeded", "超时"},
     {EErrorCode::Cancelled, "cancelled", "已取消"},
     {EErrorCode::Malformed, "malformed", "格式错误"},
     {EErrorCode::NotLoggedIn, "not-logged-in", "未登录"},
     {EErrorCode::PermissionDenied, "permission-denied", "无权限"},
     {EErrorCode::OutOfScope, "out-of-scope", "超出范围"},
     {EErrorCode::NotFound, "not-found", "不存在"},
     {EErrorCode::Conflict, "conflict", "冲突"},
     {EErrorCode::Duplicate, "duplicate", "重复"},
     {EErrorCode::InvalidValue, "invalid-value", "值无效"},
     {EErrorCode::StorageFailure, "storage-failure", "存储失败"},
     {EErrorCode::Unsupported, "unsupported", "不支持"},
     {EErrorCode::ResourceExhausted, "resource-exhausted", "超出限制"}}};

const OutcomeName& nameOf(EErrorCode code)
{
    const auto found = std::find_if(OutcomeNames.begin(), OutcomeNames.end(),
                                    [code](const OutcomeName& name) { return name.code == code; });
    return found == OutcomeNames.end() ? OutcomeNames[1] : *found;
}

QString nameOfDataType(const AuditRow& row)
{
    switch (row.dataType) {
    case DataType::AccountGroup:
        return QStringLiteral("账号组");
    case DataType::GroupRiskConfig:
        return QStringLiteral("风控配置");
    case DataType::EmailRule:
        return QStringLiteral("邮件规则");
    case DataType::Category:
        return QStringLiteral("证券分类");
    case DataType::Account:
        return QStringLiteral("账号");
    case DataType::Product:
        return QStringLiteral("产品");
    case DataType::Security:
        return QStringLiteral("证券");
    default:
        break;
    }
    const QString kind = QString::fromStdString(row.recordKey).section(QLatin1Char('|'), 0, 0);
    if (kind == QLatin1String("user")) {
        return QStringLiteral("用户");
    }
    if (kind == QLatin1String("institution")) {
        return QStringLiteral("机构");
    }
    if (kind == QLatin1String("server")) {
        return QStringLiteral("分系统");
    }
    if (kind == QLatin1String(PrunedAuditKey)) {
        return QStringLiteral("审计记录");
    }
    if (kind == QLatin1String(PrunedOperationsKey)) {
        return QStringLiteral("操作编号");
    }
    return kind == QLatin1String("database") ? QStringLiteral("数据库") : QString::number(row.dataType);
}

QString keyOfOperation(int operation)
{
    switch (static_cast<nvservice::EZvDataOperation>(operation)) {
    case nvservice::EZvDataOperation::Add:
        return QStringLiteral("add");
    case nvservice::EZvDataOperation::Modify:
        return QStringLiteral("modify");
    case nvservice::EZvDataOperation::Delete:
        return QStringLiteral("delete");
    }
    return QString::number(operation);
}

std::optional<std::int64_t> timeOf(const Invocation& call, const char* option, bool toEnd)
{
    if (!call.isSet(option)) {
        return std::nullopt;
    }
    return requireTime(call, option, toEnd);
}

void readOutcome(const Invocation& call, AuditFilter& filter)
{
    if (!call.isSet("outcome")) {
        return;
    }
    const QString wanted = call.value("outcome");
    if (wanted == QLatin1String("ok") || wanted == QLatin1String("refused")) {
        filter.isSuccess = wanted == QLatin1String("ok");
        return;
    }
    const auto found = std::find_if(OutcomeNames.begin(), OutcomeNames.end(), [&](const OutcomeName& name) {
        return wanted == QLatin1String(name.key) || wanted == QString::number(static_cast<int>(name.code));
    });
    if (found == OutcomeNames.end()) {
        throw UsageError(QStringLiteral("--outcome 应为 ok、refused 或结果代码：%1").arg(wanted));
    }
    filter.outcome = found->code;
}

AuditFilter filterOf(Invocation& call)
{
    AuditFilter filter;
    if (call.isSet("user")) {
        filter.login = call.value("user").toStdString();
    }
    filter.since = timeOf(call, "since", false);
    filter.until = timeOf(call, "until", true);
    readOutcome(call, filter);
    filter.limit = call.number("limit", RowsUnlessAsked);
    filter.withDocuments = call.isSet("details");
    if (call.isSet("id") || call.isSet("name")) {
        const SubSystem server = call.server();
        nvservice::CAccountGroup group;
        group.groupId = static_cast<std::int32_t>(requireGroupId(call));
        group.setSystemTag(server.systemTag);
        filter.recordKey = group.getKey();
        filter.dataTypes = {DataType::AccountGroup, DataType::GroupRiskConfig, DataType::EmailRule};
    }
    return filter;
}

QJsonObject jsonOf(const AuditRow& row, bool withDocuments)
{
    QJsonObject json{{"at", isoTime(row.at)},
                     {"login", QString::fromStdString(row.login)},
                     {"operation", keyOfOperation(row.operation)},
                     {"dataType", row.dataType},
                     {"key", QString::fromStdString(row.recordKey)},
                     {"operationId", QString::fromStdString(row.operationId)},
                     {"outcome", nameOf(row.outcome.code()).key},
                     {"message", QString::fromStdString(row.outcome.errorMsg())}};
    if (withDocuments) {
        json.insert(QStringLiteral("before"), row.before.isEmpty() ? QJsonValue() : documentJson(row.before));
        json.insert(QStringLiteral("after"), row.after.isEmpty() ? QJsonValue() : documentJson(row.after));
    }
    return json;
}

QString lineOf(const char* title, const bson::BSONObj& document)
{
    if (document.isEmpty()) {
        return {};
    }
    return QStringLiteral("    %1 %2\n").arg(QString::fromUtf8(title), shown(documentJson(document)));
}

int runAudit(Invocation& call)
{
    const AuditFilter filter = filterOf(call);
    QJsonArray json;
    Table table({{"at", "时间"},
                 {"login", "用户"},
                 {"operation", "操作"},
                 {"record", "对象"},
                 {"key", "标识"},
                 {"outcome", "结果"},
                 {"message", "说明"}});
    QString details;
    readAudit(call.data(), filter, [&](const AuditRow& row) {
        if (call.wantsJson()) {
            json.append(jsonOf(row, filter.withDocuments));
            return;
        }
        table.add({textOfTime(row.at), QString::fromStdString(row.login),
                   QString::fromStdString(
                       nvservice::TypeManager::getEnumItemName("nvservice::EZvDataOperation", row.operation, 0)),
                   nameOfDataType(row), QString::fromStdString(row.recordKey),
                   QString::fromUtf8(nameOf(row.outcome.code()).title),
                   QString::fromStdString(row.outcome.errorMsg())});
        if (filter.withDocuments) {
            details += QStringLiteral("%1 %2\n").arg(textOfTime(row.at), shown(QString::fromStdString(row.recordKey))) +
                       lineOf("变更前", row.before) + lineOf("变更后", row.after);
        }
    });
    if (call.wantsJson()) {
        printJson(json);
    } else {
        printText(table.toText() + (details.isEmpty() ? QString() : '\n' + details));
    }
    return Done;
}

} // namespace

std::vector<Command> auditCommands()
{
    Command command;
    command.name = QStringLiteral("audit");
    command.summary = QStringLiteral("Show who changed or tried to change what, the latest first.");
    command.details = QStringList{
        "Every change and every refused attempt is there, those of this tool as well. Times are those of this "
        "machine's "
        "time zone; --since and --until include what they name: a date its whole day, a second its whole second."};
    command.examples = QStringList{"audit --server SH01 --since 2026-01-05 --outcome refused",
                                   "audit --server SH01 --id 17 --details --json"};
    command.storeUse = EStoreUse::Read;
    command.hasServer = command.hasJson = true;
    command.options = {
        {"user", "Only what this log-in did.", "login"},
        {"id", "Only what concerns the group with this id, its risk configuration included.", "id"},
        {"name", "The same for the group with this name.", "name"},
        {"since", "Only from this time on: 2026-01-05, '2026-01-05 09:30', '2026-01-05 09:30:15'.", "time"},
        {"until", "Only up to this time.", "time"},
        {"outcome", "Only 'ok', 'refused', or one outcome such as 'conflict' or its number.", "outcome"},
        {"limit", "How many rows at most; 0 for all.", "rows", QString::number(RowsUnlessAsked)},
        {"details", "With the state before and after."}};
    command.run = runAudit;
    return {command};
}

} // namespace service
