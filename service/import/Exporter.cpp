// SPDX-License-Identifier: Apache-2.0
#include "service/import/Exporter.h"
#include "service/engine/AccountRights.h"
#include "service/import/CsvTable.h"
#include "service/import/CsvValues.h"
#include "service/store/Accounts.h"
#include "service/store/Groups.h"
#include "service/store/Securities.h"

#include <nvservice/NoInstitutionId.h>
#include <utils/CCsvWriter.h>

#include <QTextCodec>

namespace service
{

namespace
{

using nvservice::NoInstitutionId;

bool isCode(EColumn column)
{
    return column == EColumn::AccountId || column == EColumn::UnitId || column == EColumn::SecurityCode;
}

class Rows
{
public:
    Rows(const CsvFormat& format, std::vector<EColumn> columns) : m_format(format), m_columns(std::move(columns))
    {
        for (const EColumn column : m_columns) {
            m_writer.add(columnName(column));
        }
        m_writer.endRow();
    }
    /// One value for each column.
    void add(const std::vector<std::string>& row)
    {
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            m_writer.add(QString::fromStdString(row.at(i)), formOf(m_columns[i]));
        }
        m_writer.endRow();
        ++m_count;
    }
    ExportedFile file()
    {
        const QString text = m_writer.take();
        if (m_format.encoding == ECsvEncoding::Gb18030) {
            return {QTextCodec::codecForName("GB18030")->fromUnicode(text), m_count};
        }
        const QByteArray mark = m_format.encoding == ECsvEncoding::Utf8WithMark ? "\xEF\xBB\xBF" : "";
        return {mark + text.toUtf8(), m_count};
    }

private:
    utils::ECsvForm formOf(EColumn column) const
    {
        if (!m_format.forSpreadsheets) {
            return utils::ECsvForm::Plain;
        }
        return isCode(column) ? utils::ECsvForm::Exact : utils::ECsvForm::Guarded;
    }

    CsvFormat m_format;
    std::vector<EColumn> m_columns;
    utils::CCsvWriter m_writer;
    int m_count = 0;
};

/// Institutions are named by their numbers: a name may be another one's number.
std::string textOfInstitution(std::int32_t id)
{
    return id == NoInstitutionId ? std::string() : std::to_string(id);
}

ExportedFile exportInstitutions(Connection& connection, const SubSystem& server, const CsvFormat& format)
{
    Rows rows(format, {EColumn::InstitutionId, EColumn::InstitutionName});
    for (const auto& institution : loadInstitutions(connection, server, std::nullopt)) {
        rows.add({std::to_string(institution->institutionId), institution->name});
    }
    return rows.file();
}

ExportedFile exportCategories(Connection& connection, const SubSystem& server, const CsvFormat& format)
{
    Rows rows(format, {EColumn::CategoryId, EColumn::CategoryName, EColumn::CategoryType, EColumn::SysType,
                       EColumn::ParentCategory});
    for (const auto& category : loadCategories(connection, server)) {
        rows.add({std::to_string(category->categoryId), category->categoryName, std::to_string(category->categoryType),
                  std::to_string(category->sysType),
                  category->parentId == -1 ? std::string() : std::to_string(category->parentId)});
    }
    return rows.file();
}

ExportedFile exportSecurities(Connection& connection, const SubSystem& server, const CsvFormat& format)
{
    Rows rows(format,
              {EColumn::Market, EColumn::SecurityCode, EColumn::SecurityName, EColumn::SysType, EColumn::TraderType});
    for (const auto& security : loadSecurities(connection, server, std::nullopt)) {
        rows.add({security->market, security->securityCode, security->securityName, std::to_string(security->sysType),
                  textOfTraderType(security->traderType)});
    }
    return rows.file();
}

ExportedFile exportAccounts(Connection& connection, const SubSystem& server, const CsvFormat& format)
{
    Rows rows(format, {EColumn::AccountType, EColumn::AccountId, EColumn::UnitId, EColumn::AccountName,
                       EColumn::Institution, EColumn::State, EColumn::Excluded});
    for (const StoredAccount& account : loadAccounts(connection, server, std::nullopt)) {
        rows.add({nameOfAccountType(account.info->brokerType), account.info->accountId, account.info->unitId,
                  account.info->accountName, textOfInstitution(account.info->institutionId),
                  textOfState(account.stateCode), textOfFlag(account.excluded)});
    }
    return rows.file();
}

ExportedFile exportProducts(Connection& connection, const SubSystem& server, const CsvFormat& format)
{
    std::unordered_map<std::int64_t, std::string> institutions;
    {
        Query query(connection, QStringLiteral("SELECT product_id, institution_id FROM product"
                                               " WHERE server_id = ? AND institution_id IS NOT NULL"));
        query.bind(server.id);
        for (query.run(); query.next();) {
            institutions.emplace(query.integer(0), std::to_string(query.integer(1)));
        }
    }
    Rows rows(format, {EColumn::ProductId, EColumn::ProductName, EColumn::Institution, EColumn::Excluded,
                       EColumn::AccountType, EColumn::AccountId, EColumn::UnitId});
    const AccountsByRow accounts = accountsByRow(loadAccounts(connection, server, std::nullopt));
    for (const auto& product : loadProducts(connection, server, std::nullopt, accounts)) {
        const auto institution = institutions.find(product->productId);
        const std::vector<std::string> head = {std::to_string(product->productId), product->productName,
                                               institution == institutions.end() ? std::string() : institution->second,
                                               textOfFlag(product->excluded)};
        std::vector<std::string> row = head;
        if (product->accounts.empty()) {
            row.insert(row.end(), {"", "", ""});
            rows.add(row);
        }
        for (const auto& account : product->accounts) {
            row = head;
            row.insert(row.end(), {nameOfAccountType(account->brokerType), account->accountId, account->unitId});
            rows.add(row);
        }
    }
    return rows.file();
}

ExportedFile exportGroups(Connection& connection, const SubSystem& server, const CsvFormat& format)
{
    Rows rows(format,
              {EColumn::GroupName, EColumn::Institution, EColumn::AccountType, EColumn::AccountId, EColumn::UnitId});
    const AccountsByRow accounts = accountsByRow(loadAccounts(connection, server, std::nullopt));
    for (const GroupPtr& group : loadGroups(connection, server, std::nullopt, accounts)) {
        for (const auto& account : group->accounts) {
            rows.add({group->groupName, textOfInstitution(group->institutionId), nameOfAccountType(account->brokerType),
                      account->accountId, account->unitId});
        }
    }
    return rows.file();
}

} // namespace

ExportedFile exportData(Connection& connection, const SubSystem& server, EImportFile file, const CsvFormat& format)
{
    switch (file) {
    case EImportFile::Institutions:
        return exportInstitutions(connection, server, format);
    case EImportFile::Categories:
        return exportCategories(connection, server, format);
    case EImportFile::Securities:
        return exportSecurities(connection, server, format);
    case EImportFile::Accounts:
        return exportAccounts(connection, server, format);
    case EImportFile::Products:
        return exportProducts(connection, server, format);
    case EImportFile::Groups:
        return exportGroups(connection, server, format);
    }
    return {};
}

} // namespace service
