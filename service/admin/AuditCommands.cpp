// SPDX-License-Identifier: Apache-2.0
#include "service/admin/BsonJson.h"
#include "service/admin/Commands.h"
#include "service/admin/GroupArgument.h"
#include "service/admin/Table.h"
#include "service/admin/Times.h"
#include "service/engine/ErrorCodeNames.h"
#include "service/engine/GroupScope.h"
#include "service/engine/MasterDataRules.h"
#include "service/store/AuditPages.h"
#include "service/store/Documents.h"

#include <nvservice/DataType.h>
#include <nvservice/EZvDataOperation.h>
#include <nvservice/TypeManager.h>
#include <utils/Translation.h>

#include <QCoreApplication>
#include <QJsonDocument>

#include <algorithm>
#include <limits>

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

constexpr Subject Subjects[] = {{DataType::AccountGroup, nullptr, QT_TRANSLATE_NOOP("service", "账号组")},
                                {DataType::GroupRiskConfig, nullptr, QT_TRANSLATE_NOOP("service", "风控配置")},
                                {DataType::EmailRule, nullptr, QT_TRANSLATE_NOOP("service", "邮件规则")},
                                {DataType::GroupRestore, nullptr, QT_TRANSLATE_NOOP("service", "账号组恢复")},
                                {DataType::Category, nullptr, QT_TRANSLATE_NOOP("service", "证券分类")},
                                {DataType::Account, nullptr, QT_TRANSLATE_NOOP("service", "账号")},
                                {DataType::Product, nullptr, QT_TRANSLATE_NOOP("service", "产品")},
                                {DataType::Security, nullptr, QT_TRANSLATE_NOOP("service", "证券")},
                                {NoDataType, "user", QT_TRANSLATE_NOOP("service", "用户")},
                                {NoDataType, "institution", QT_TRANSLATE_NOOP("service", "机构")},
                                {NoDataType, "server", QT_TRANSLATE_NOOP("service", "分系统")},
                                {NoDataType, PrunedAuditKey, QT_TRANSLATE_NOOP("service", "审计记录")},
                                {NoDataType, PrunedOperationsKey, QT_TRANSLATE_NOOP("service", "操作编号")},
                                {NoDataType, "database", QT_TRANSLATE_NOOP("service", "数据库")}};

QString subjectOf(const AuditRow& row)
{
    const QString kind = QString::fromStdString(row.recordKey).section(QLatin1Char('|'), 0, 0);
    for (const Subject& subject : Subjects) {
        if (subject.key ? kind == QLatin1String(subject.key) : row.dataType == subject.dataType) {
            return QCoreApplication::translate("service", subject.title);
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
    throw UsageError(QCoreApplication::translate("service", "--outcome 应为 ok、refused 或结果代码：%1").arg(wanted));
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
    if (call.isSet("id") || call.isSet("name")) {
        filter.recordKey = groupKey(call.server(), static_cast<std::int32_t>(requireGroupId(call)));
        filter.dataTypes = groupDataTypes();
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

QString lineOf(const QString& title, const bson::BSONObj& document)
{
    if (document.isEmpty()) {
        return {};
    }
    return QStringLiteral("    %1 %2\n").arg(title, shown(documentJson(document)));
}

/// Calls `found` with each row, the latest first.
template <typename Found>
void readAudit(const ServerData& data, const AuditFilter& filter, std::int64_t limit, bool withDocuments, Found found)
{
    constexpr std::int64_t RowsAtOnce = 1000;
    std::int64_t left = limit > 0 ? limit : std::numeric_limits<std::int64_t>::max();
    std::optional<AuditPosition> from;
    do {
        AuditPage page = readAuditPage(data, filter, from, static_cast<int>(std::min(left, RowsAtOnce)));
        for (AuditRow& row : page.rows) {
            if (withDocuments) {
                const AuditBodies bodies = loadAuditBodies(data, row.id);
                row.before = documentOf(bodies.before);
                row.after = documentOf(bodies.after);
            }
            found(row);
        }
        left -= static_cast<std::int64_t>(page.rows.size());
        from = page.next;
    } while (from && left > 0);
}

int runAudit(Invocation& call)
{
    const AuditFilter filter = filterOf(call);
    const bool withDocuments = call.isSet("details");
    const Transaction snapshot(call.data().connection, Transaction::EKind::Read);
    QJsonArray json;
    Table table({{"at", QCoreApplication::translate("service", "时间")},
                 {"login", QCoreApplication::translate("service", "用户")},
                 {"operation", QCoreApplication::translate("service", "操作")},
                 {"record", QCoreApplication::translate("service", "对象")},
                 {"key", QCoreApplication::translate("service", "标识")},
                 {"outcome", QCoreApplication::translate("service", "结果")},
                 {"message", QCoreApplication::translate("service", "说明")}});
    QString details;
    const std::int64_t limit = call.number("limit", RowsUnlessAsked);
    readAudit(call.data(), filter, limit, withDocuments, [&](const AuditRow& row) {
        if (call.wantsJson()) {
            json.append(jsonOf(row, withDocuments));
            return;
        }
        table.add({textOfTime(row.at), row.login,
                   nvservice::TypeManager::getEnumItemName("nvservice::EZvDataOperation", row.operation, 0),
                   subjectOf(row), row.recordKey, utils::text("service", nameOfErrorCode(row.outcome.code()).title),
                   row.outcome.errorMsg()});
        if (withDocuments) {
            details += QStringLiteral("%1 %2\n").arg(textOfTime(row.at), shown(row.recordKey)) +
                       lineOf(QCoreApplication::translate("service", "变更前"), row.before) +
                       lineOf(QCoreApplication::translate("service", "变更后"), row.after);
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
    Command command("audit", QCoreApplication::translate("service", "按时间倒序列出谁修改或试图修改了什么"),
                    EStoreUse::Read, runAudit);
    command.details = QStringList{
        QCoreApplication::translate("service", "包括每一次修改和每一次被拒绝的操作，也包括本工具的操作。时间按本机时区"
                                               "；--since 和 --until 包含所指定的时间：日期包含整天，秒包含整秒。")};
    command.examples = QStringList{"audit --server SH01 --since 2026-01-05 --outcome refused",
                                   "audit --server SH01 --id 17 --details --json"};
    command.options = {
        {"user", QCoreApplication::translate("service", "只列出该用户的操作"), "login"},
        {"id", QCoreApplication::translate("service", "只列出与该编号的账号组有关的操作，包括其风控配置"), "id"},
        {"name", QCoreApplication::translate("service", "同上，以名称指定账号组"), "name"},
        {"since",
         QCoreApplication::translate("service",
                                     "只列出该时间以后的操作：2026-01-05、'2026-01-05 09:30'、'2026-01-05 09:30:15'"),
         "time"},
        {"until", QCoreApplication::translate("service", "只列出该时间以前的操作"), "time"},
        {"outcome", QCoreApplication::translate("service", "只列出 ok、refused 或某一种结果，如 conflict 或其编号"),
         "outcome"},
        {"limit", QCoreApplication::translate("service", "最多列出的条数，0 表示全部"), "rows",
         QString::number(RowsUnlessAsked)},
        {"details", QCoreApplication::translate("service", "同时列出变更前后的内容")}};
    return {command};
}

} // namespace service
