// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Table.h"
#include "service/admin/Times.h"
#include "service/engine/ErrorCodeNames.h"
#include "service/engine/GroupScope.h"
#include "service/engine/MasterDataRules.h"
#include "service/store/Journal.h"

#include <nvservice/DataType.h>
#include <nvservice/EZvDataOperation.h>
#include <nvservice/TypeManager.h>

#include <QJsonDocument>

namespace service
{

using utils::EErrorCode;

namespace
{

namespace DataType = nvservice::DataType;

constexpr std::int64_t RowsUnlessAsked = 100;

/// "ok", "not-logged-in"
QString keyOf(const ErrorCodeName& name)
{
    return name.code == EErrorCode::Success ? QStringLiteral("ok") : QString(name.key).replace('_', '-');
}

/// The subject of an audit row, found by its data type or by the first part of its key.
struct Subject {
    std::int32_t dataType;
    const char* key;
    const char* title;
};

constexpr Subject Subjects[] = {
    {DataType::AccountGroup, nullptr, "账号组"}, {DataType::GroupRiskConfig, nullptr, "风控配置"},
    {DataType::EmailRule, nullptr, "邮件规则"},  {DataType::Category, nullptr, "证券分类"},
    {DataType::Account, nullptr, "账号"},        {DataType::Product, nullptr, "产品"},
    {DataType::Security, nullptr, "证券"},       {NoDataType, "user", "用户"},
    {NoDataType, "institution", "机构"},         {NoDataType, "server", "分系统"},
    {NoDataType, PrunedAuditKey, "审计记录"},    {NoDataType, PrunedOperationsKey, "操作编号"},
    {NoDataType, "database", "数据库"}};

QString subjectOf(const AuditRow& row)
{
    const QString kind = QString::fromStdString(row.recordKey).section(QLatin1Char('|'), 0, 0);
    for (const Subject& subject : Subjects) {
        if (subject.key ? kind == QLatin1String(subject.key) : row.dataType == subject.dataType) {
            return subject.title;
        }
    }
    return QString::number(row.dataType);
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
    for (const ErrorCodeName& name : ErrorCodeNames) {
        if (wanted == keyOf(name) || wanted == QString::number(static_cast<int>(name.code))) {
            filter.outcome = name.code;
            return;
        }
    }
    throw UsageError(QStringLiteral("--outcome 应为 ok、refused 或结果代码：%1").arg(wanted));
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
        filter.recordKey = groupKey(call.server(), static_cast<std::int32_t>(requireGroupId(call)));
        filter.dataTypes = {DataType::AccountGroup, DataType::GroupRiskConfig, DataType::EmailRule};
    }
    return filter;
}

QJsonObject jsonOf(const AuditRow& row, bool withDocuments)
{
    QJsonObject json{{"at", isoTime(row.at)},
                     {"login", Cell(row.login)},
                     {"operation", keyOfOperation(row.operation)},
                     {"dataType", row.dataType},
                     {"key", Cell(row.recordKey)},
                     {"operationId", Cell(row.operationId)},
                     {"outcome", keyOf(nameOfErrorCode(row.outcome.code()))},
                     {"message", Cell(row.outcome.errorMsg())}};
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
        table.add({textOfTime(row.at), row.login,
                   nvservice::TypeManager::getEnumItemName("nvservice::EZvDataOperation", row.operation, 0),
                   subjectOf(row), row.recordKey, nameOfErrorCode(row.outcome.code()).title, row.outcome.errorMsg()});
        if (filter.withDocuments) {
            details += QStringLiteral("%1 %2\n").arg(textOfTime(row.at), shown(row.recordKey)) +
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
    Command command("audit", "Show who changed or tried to change what, the latest first.", EStoreUse::Read, runAudit);
    command.details = QStringList{"Every change and every refused attempt is there, those of this tool as well. Times "
                                  "are those of this machine's time zone; --since and --until include what they name: "
                                  "a date its whole day, a second its whole second."};
    command.examples = QStringList{"audit --server SH01 --since 2026-01-05 --outcome refused",
                                   "audit --server SH01 --id 17 --details --json"};
    command.options = {
        {"user", "Only what this log-in did.", "login"},
        {"id", "Only what concerns the group with this id, its risk configuration included.", "id"},
        {"name", "The same for the group with this name.", "name"},
        {"since", "Only from this time on: 2026-01-05, '2026-01-05 09:30', '2026-01-05 09:30:15'.", "time"},
        {"until", "Only up to this time.", "time"},
        {"outcome", "Only 'ok', 'refused', or one outcome such as 'conflict' or its number.", "outcome"},
        {"limit", "How many rows at most; 0 for all.", "rows", QString::number(RowsUnlessAsked)},
        {"details", "With the state before and after."}};
    return {command};
}

} // namespace service
