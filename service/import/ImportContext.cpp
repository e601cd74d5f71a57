// SPDX-License-Identifier: Apache-2.0
#include "service/import/ImportContext.h"
#include "service/engine/AccountRights.h"
#include "service/engine/MasterDataRules.h"
#include "service/import/CsvValues.h"

#include <nvservice/NoInstitutionId.h>
#include <utils/Translation.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QRegularExpression>

namespace service
{

namespace
{

nvservice::EZVBrokerType typeOf(const QString& text)
{
    const std::optional<nvservice::EZVBrokerType> type = readAccountType(text);
    if (!type) {
        throw RowError(utils::filled(utils::text("service", "账号类型“%1”无效"), text.toStdString()));
    }
    return *type;
}

} // namespace

void Changes::add(EColumn column, const std::string& before, const std::string& after)
{
    if (before != after) {
        m_all.push_back({columnName(column), before, after, QString::fromStdString(columnLabel(column))});
    }
}

void SeenKeys::add(const std::string& key, int line)
{
    const auto [first, isNew] = m_lines.emplace(key, line);
    if (!isNew) {
        throw RowError(utils::filled(utils::text("service", "与第%1行重复"), first->second));
    }
}

ImportContext::ImportContext(const ServerData& data, const ImportOptions& options, std::int64_t rows,
                             ImportReport& theReport)
    : ServerData(data), now(QDateTime::currentMSecsSinceEpoch()), login(options.logIn),
      institutions(loadInstitutionNames(data)), m_report(theReport), m_encoding(options.encoding),
      m_progress(options.progress), m_rows(rows)
{
    for (StoredAccount& account : loadAccounts(data, std::nullopt)) {
        const std::string key = account.info->getKey();
        accounts.emplace(key, std::move(account));
    }
    isNewServer = accounts.empty();
}

void ImportContext::forEachRow(EImportFile file, const QByteArray& bytes, const std::vector<EColumn>& required,
                               const std::function<void(const TableRow&)>& importRow)
{
    CsvTable table;
    const utils::NVError unusable = table.read(bytes, m_encoding, required);
    for (const QString& column : table.ignoredColumns()) {
        m_report.notes << QCoreApplication::translate("service", "列“%1”未使用").arg(column);
    }
    if (!unusable.isSuccess()) {
        return refuse(file, 0, {}, unusable.errorMsg());
    }
    for (const utils::CsvRow& each : table.rows()) {
        const TableRow row(table, each);
        try {
            if (!row.isComplete()) {
                throw RowError(utils::text("service", "列数与表头不符"));
            }
            importRow(row);
        } catch (const RowError& error) {
            refuse(file, row.line(), row.field(required.front()).toStdString(), error.what());
        }
        if (file != EImportFile::Groups) { // groups are stored after all rows are read
            advance(1);
        }
    }
}

void ImportContext::report(EImportFile file, int line, EImportOutcome outcome, const std::string& key,
                           const Changes& changes)
{
    m_report.rows.push_back({file, line, outcome, key, {}, changes.all()});
}

void ImportContext::refuse(EImportFile file, int line, const std::string& key, const std::string& reason)
{
    m_report.rows.push_back({file, line, EImportOutcome::Refused, key, reason, {}});
}

void ImportContext::advance(std::size_t rows)
{
    m_rowsDone += static_cast<std::int64_t>(rows);
    if (m_progress) {
        m_progress(m_rowsDone, m_rows);
    }
}

std::int32_t ImportContext::institutionOf(const TableRow& row) const
{
    const QString text = row.field(EColumn::Institution);
    if (text.isEmpty()) {
        return nvservice::NoInstitutionId;
    }
    const std::string wanted = text.toStdString();
    const std::optional<std::int32_t> number = masterDataNumber(text);
    if (number && institutions.count(*number) != 0) {
        return *number;
    }
    for (const auto& [id, name] : institutions) {
        if (name == wanted) {
            return static_cast<std::int32_t>(id);
        }
    }
    throw RowError(utils::filled(utils::text("service", "所属机构“%1”不存在"), wanted));
}

std::string ImportContext::textOf(const TableRow& row, EColumn column, bool mayBeEmpty) const
{
    const QString text = row.field(column);
    const std::string problem = textProblem(text, columnLabel(column), mayBeEmpty);
    if (!problem.empty()) {
        throw RowError(problem);
    }
    return text.toStdString();
}

std::string ImportContext::codeOf(const TableRow& row, EColumn column) const
{
    static const QRegularExpression scientific(QStringLiteral("^[0-9](\\.[0-9]+)?[eE]\\+[0-9]+$"));
    const std::string code = textOf(row, column);
    if (scientific.match(row.field(column)).hasMatch()) {
        throw RowError(
            utils::filled(utils::text("service", "%1已被电子表格改写为科学计数法：%2"), columnLabel(column), code));
    }
    return code;
}

std::int32_t ImportContext::numberOf(const TableRow& row, EColumn column) const
{
    const QString text = row.field(column);
    const std::optional<std::int32_t> number = masterDataNumber(text);
    if (!number) {
        throw RowError(
            utils::filled(utils::text("service", "“%1”不是有效的编号：%2"), columnLabel(column), text.toStdString()));
    }
    return *number;
}

std::int32_t ImportContext::countOf(const TableRow& row, EColumn column) const
{
    const QString text = row.field(column);
    bool isNumber = true;
    const int number = text.isEmpty() ? 0 : text.toInt(&isNumber);
    if (!isNumber || number < 0) {
        throw RowError(
            utils::filled(utils::text("service", "“%1”应为数字：%2"), columnLabel(column), text.toStdString()));
    }
    return number;
}

bool ImportContext::flagOf(const TableRow& row, EColumn column) const
{
    const QString text = row.field(column);
    const std::optional<bool> flag = readFlag(text);
    if (!flag) {
        throw RowError(
            utils::filled(utils::text("service", "“%1”应为“是”或“否”：%2"), columnLabel(column), text.toStdString()));
    }
    return *flag;
}

nvservice::CAccountInfo ImportContext::accountKeyOf(const TableRow& row) const
{
    nvservice::CAccountInfo account;
    account.brokerType = typeOf(row.field(EColumn::AccountType));
    account.accountId = codeOf(row, EColumn::AccountId);
    if (isStandInId(account.accountId)) {
        throw RowError(
            utils::filled(utils::text("service", "这样的账号是为无权查看的账号保留的：%1"), account.accountId));
    }
    account.unitId = textOf(row, EColumn::UnitId, true);
    account.setSystemTag(server.systemTag);
    return account;
}

const StoredAccount& ImportContext::accountOf(const TableRow& row) const
{
    const nvservice::CAccountInfo account = accountKeyOf(row);
    const auto found = accounts.find(account.getKey());
    if (found == accounts.end()) {
        throw RowError(utils::filled(utils::text("service", "账号“%1”不存在"),
                                     account.accountId + (account.unitId.empty() ? "" : "-" + account.unitId)));
    }
    return found->second;
}

void ImportContext::audit(bool isNew, std::int32_t dataType, const std::string& key, const bson::BSONObj& before,
                          const bson::BSONObj& after)
{
    AuditRow row;
    row.at = now;
    row.login = login;
    row.operation = static_cast<int>(isNew ? nvservice::EZvDataOperation::Add : nvservice::EZvDataOperation::Modify);
    row.dataType = dataType;
    row.recordKey = key;
    row.before = before;
    row.after = after;
    insertAudit(*this, row);
}

} // namespace service
