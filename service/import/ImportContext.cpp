#include "service/import/ImportContext.h"
#include "service/engine/TextRules.h"

#include <nvservice/NoInstitutionId.h>
#include <nvservice/TypeManager.h>

#include <QDateTime>
#include <QRegularExpression>

namespace service
{

namespace
{

using nvservice::EZVBrokerType;

constexpr int MaxTextLength = 64;

const std::vector<EZVBrokerType>& accountTypes()
{
    static const std::vector<EZVBrokerType> types = {EZVBrokerType::Future,           EZVBrokerType::Stock,
                                                     EZVBrokerType::Credit,           EZVBrokerType::Gold,
                                                     EZVBrokerType::FutureOption,     EZVBrokerType::StockOption,
                                                     EZVBrokerType::ShanghaiHongKong, EZVBrokerType::Neeq,
                                                     EZVBrokerType::ShenzhenHongKong, EZVBrokerType::AllBusiness,
                                                     EZVBrokerType::WealthManagement, EZVBrokerType::OverseasFuture,
                                                     EZVBrokerType::IbOverseas,       EZVBrokerType::Interbank};
    return types;
}

EZVBrokerType typeOf(const QString& text)
{
    for (const EZVBrokerType type : accountTypes()) {
        const int code = static_cast<int>(type);
        const std::string name = nvservice::TypeManager::getEnumItemName("nvservice::EZVBrokerType", code, 1);
        if (text == QString::number(code) || text == QString::fromStdString(name))
            return type;
    }
    throw RowError("账号类型“" + text.toStdString() + "”无效");
}

} // namespace

ImportContext::ImportContext(Connection& theConnection, const SubSystem& theServer, std::string theLogIn,
                             ImportReport& theReport)
    : connection(theConnection), server(theServer), writer(theConnection, theServer),
      now(QDateTime::currentMSecsSinceEpoch()), login(std::move(theLogIn)),
      institutions(loadInstitutionNames(theConnection, theServer)), m_report(theReport),
      m_audit(theConnection, theServer)
{
    for (StoredAccount& account : loadAccounts(connection, server, std::nullopt)) {
        const std::string key = account.info->getKey();
        accounts.emplace(key, std::move(account));
    }
}

bool ImportContext::readTable(EImportFile file, const QByteArray& bytes, const std::vector<EColumn>& required,
                              CsvTable& table)
{
    const utils::NVError error = table.read(bytes, required);
    if (!error.isSuccess())
        refuse(file, 0, {}, error.errorMsg());
    for (const QString& column : table.ignoredColumns())
        m_report.notes << QStringLiteral("列“%1”未使用").arg(column);
    return error.isSuccess();
}

void ImportContext::report(EImportFile file, int line, EImportOutcome outcome, const std::string& key)
{
    m_report.rows.push_back({file, line, outcome, key, {}});
}

void ImportContext::refuse(EImportFile file, int line, const std::string& key, const std::string& reason)
{
    m_report.rows.push_back({file, line, EImportOutcome::Refused, key, reason});
}

std::int32_t ImportContext::institutionOf(const CsvTable& table, const CsvRecord& row) const
{
    const QString text = table.field(row, EColumn::Institution);
    if (text.isEmpty())
        return nvservice::NoInstitutionId;
    const std::string wanted = text.toStdString();
    for (const auto& [id, name] : institutions) {
        if (name == wanted || std::to_string(id) == wanted)
            return static_cast<std::int32_t>(id);
    }
    throw RowError("所属机构“" + wanted + "”不存在");
}

std::string ImportContext::textOf(const CsvTable& table, const CsvRecord& row, EColumn column, bool mayBeEmpty) const
{
    const QString text = table.field(row, column);
    const std::string name = columnName(column).toStdString();
    if (text.isEmpty() && !mayBeEmpty)
        throw RowError("“" + name + "”不能为空");
    if (text.toUcs4().size() > MaxTextLength)
        throw RowError("“" + name + "”不能超过" + std::to_string(MaxTextLength) + "个字符");
    if (hasInvisibleCharacters(text))
        throw RowError("“" + name + "”不能包含控制字符或不可见字符");
    return text.toStdString();
}

std::int32_t ImportContext::numberOf(const CsvTable& table, const CsvRecord& row, EColumn column) const
{
    const QString text = table.field(row, column);
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber || number <= 0 || number == nvservice::NoInstitutionId)
        throw RowError("“" + columnName(column).toStdString() + "”不是有效的编号：" + text.toStdString());
    return number;
}

bool ImportContext::flagOf(const CsvTable& table, const CsvRecord& row, EColumn column) const
{
    const QString text = table.field(row, column);
    const std::optional<bool> flag = readFlag(text);
    if (!flag)
        throw RowError("“" + columnName(column).toStdString() + "”应为“是”或“否”：" + text.toStdString());
    return *flag;
}

nvservice::CAccountInfo ImportContext::accountKeyOf(const CsvTable& table, const CsvRecord& row) const
{
    static const QRegularExpression scientific(QStringLiteral("^[0-9](\\.[0-9]+)?[eE]\\+[0-9]+$"));
    nvservice::CAccountInfo account;
    account.brokerType = typeOf(table.field(row, EColumn::AccountType));
    account.accountId = textOf(table, row, EColumn::AccountId);
    account.unitId = textOf(table, row, EColumn::UnitId, true);
    account.setSystemTag(server.systemTag);
    if (scientific.match(table.field(row, EColumn::AccountId)).hasMatch())
        throw RowError("账号已被电子表格改写为科学计数法：" + account.accountId);
    return account;
}

const StoredAccount& ImportContext::accountOf(const CsvTable& table, const CsvRecord& row) const
{
    const nvservice::CAccountInfo account = accountKeyOf(table, row);
    const auto found = accounts.find(account.getKey());
    if (found == accounts.end())
        throw RowError("账号“" + account.accountId + (account.unitId.empty() ? "" : "-" + account.unitId) + "”不存在");
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
    m_audit.insert(row);
}

} // namespace service
