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
    /// Adds a row with one value per column.
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

/// Writes the number, because a name may be the number of another institution.
std::string textOfInstitution(std::int32_t id)
{
    return id == NoInstitutionId ? std::string() : std::to_string(id);
}

ExportedFile exportInstitutions(const ServerData& data, const CsvFormat& format)
{
    Rows rows(format, {EColumn::InstitutionId, EColumn::InstitutionName});
    for (const auto& institution : loadInstitutions(data, std::nullopt)) {
        rows.add({std::to_string(institution->institutionId), institution->name});
    }
    return rows.file();
}

ExportedFile exportCategories(const ServerData& data, const CsvFormat& format)
{
    Rows rows(format, {EColumn::CategoryId, EColumn::CategoryName, EColumn::CategoryType, EColumn::SysType,
                       EColumn::ParentCategory});
    for (const auto& category : loadCategories(data)) {
        rows.add({std::to_string(category->categoryId), category->categoryName, std::to_string(category->categoryType),
                  std::to_string(category->sysType),
                  category->parentId == -1 ? std::string() : std::to_string(category->parentId)});
    }
    return rows.file();
}

ExportedFile exportSecurities(const ServerData& data, const CsvFormat& format)
{
    Rows rows(format,
              {EColumn::Market, EColumn::SecurityCode, EColumn::SecurityName, EColumn::SysType, EColumn::TraderType});
    for (const auto& security : loadSecurities(data, std::nullopt)) {
        rows.add({security->market, security->securityCode, security->securityName, std::to_string(security->sysType),
                  textOfTraderType(security->traderType)});
    }
    return rows.file();
}

ExportedFile exportAccounts(const ServerData& data, const CsvFormat& format)
{
    Rows rows(format, {EColumn::AccountType, EColumn::AccountId, EColumn::UnitId, EColumn::AccountName,
                       EColumn::Institution, EColumn::State, EColumn::Excluded});
    for (const StoredAccount& account : loadAccounts(data, std::nullopt)) {
        rows.add({wordOfAccountType(account.info->brokerType), account.info->accountId, account.info->unitId,
                  account.info->accountName, textOfInstitution(account.info->institutionId),
                  textOfState(account.stateCode), textOfFlag(account.excluded)});
    }
    return rows.file();
}

ExportedFile exportProducts(const ServerData& data, const CsvFormat& format)
{
    const auto institutions = loadProductInstitutions(data);
    Rows rows(format, {EColumn::ProductId, EColumn::ProductName, EColumn::Institution, EColumn::Excluded,
                       EColumn::AccountType, EColumn::AccountId, EColumn::UnitId});
    const AccountsByRow accounts = accountsByRow(loadAccounts(data, std::nullopt));
    for (const auto& product : loadProducts(data, std::nullopt, accounts)) {
        const auto institution = institutions.find(product->productId);
        const std::vector<std::string> head = {std::to_string(product->productId), product->productName,
                                               institution == institutions.end() ? ""
                                                                                 : std::to_string(institution->second),
                                               textOfFlag(product->excluded)};
        std::vector<std::string> row = head;
        if (product->accounts.empty()) {
            row.insert(row.end(), {"", "", ""});
            rows.add(row);
        }
        for (const auto& account : product->accounts) {
            row = head;
            row.insert(row.end(), {wordOfAccountType(account->brokerType), account->accountId, account->unitId});
            rows.add(row);
        }
    }
    return rows.file();
}

ExportedFile exportGroups(const ServerData& data, const CsvFormat& format)
{
    Rows rows(format,
              {EColumn::GroupName, EColumn::Institution, EColumn::AccountType, EColumn::AccountId, EColumn::UnitId});
    const AccountsByRow accounts = accountsByRow(loadAccounts(data, std::nullopt));
    for (const GroupPtr& group : loadGroups(data, std::nullopt, accounts)) {
        for (const auto& account : group->accounts) {
            rows.add({group->groupName, textOfInstitution(group->institutionId), wordOfAccountType(account->brokerType),
                      account->accountId, account->unitId});
        }
    }
    return rows.file();
}

} // namespace

ExportedFile exportData(const ServerData& data, EImportFile file, const CsvFormat& format)
{
    switch (file) {
    case EImportFile::Institutions:
        return exportInstitutions(data, format);
    case EImportFile::Categories:
        return exportCategories(data, format);
    case EImportFile::Securities:
        return exportSecurities(data, format);
    case EImportFile::Accounts:
        return exportAccounts(data, format);
    case EImportFile::Products:
        return exportProducts(data, format);
    case EImportFile::Groups:
        return exportGroups(data, format);
    }
    return {};
}

} // namespace service
