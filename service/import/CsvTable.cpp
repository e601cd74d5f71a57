// SPDX-License-Identifier: Apache-2.0
#include "service/import/CsvTable.h"

#include <utils/Translation.h>

namespace service
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

struct ColumnNames {
    EColumn column;
    QStringList names; ///< the Chinese one, and English ones
};

const std::vector<ColumnNames>& columns()
{
    static const std::vector<ColumnNames> known = {{EColumn::InstitutionId, {"机构编号", "institutionid"}},
                                                   {EColumn::InstitutionName, {"机构名称", "institutionname"}},
                                                   {EColumn::Institution, {"所属机构", "institution"}},
                                                   {EColumn::AccountType, {"账号类型", "accounttype", "brokertype"}},
                                                   {EColumn::AccountId, {"账号", "accountid", "account"}},
                                                   {EColumn::UnitId, {"账号单元", "unitid", "unit"}},
                                                   {EColumn::AccountName, {"账号名称", "accountname"}},
                                                   {EColumn::State, {"状态", "state", "statecode"}},
                                                   {EColumn::Excluded, {"排除", "excluded"}},
                                                   {EColumn::ProductId, {"产品编号", "productid"}},
                                                   {EColumn::ProductName, {"产品名称", "productname", "product"}},
                                                   {EColumn::GroupName, {"账号组名称", "groupname", "group"}},
                                                   {EColumn::CategoryId, {"分类编号", "categoryid"}},
                                                   {EColumn::CategoryName, {"分类名称", "categoryname"}},
                                                   {EColumn::CategoryType, {"分类类型", "categorytype"}},
                                                   {EColumn::SysType, {"系统类型", "systype"}},
                                                   {EColumn::ParentCategory, {"上级分类", "parentid"}},
                                                   {EColumn::Market, {"市场", "market"}},
                                                   {EColumn::SecurityCode, {"证券代码", "securitycode"}},
                                                   {EColumn::SecurityName, {"证券名称", "securityname"}},
                                                   {EColumn::TraderType, {"交易类型", "tradertype"}}};
    return known;
}

std::optional<EColumn> columnOf(const QString& title)
{
    const QString plain = title.toLower().remove(' ').remove('_').remove('-');
    for (const ColumnNames& column : columns()) {
        if (column.names.contains(plain)) {
            return column.column;
        }
    }
    return std::nullopt;
}

const QStringList& namesOf(EColumn column)
{
    return std::find_if(columns().begin(), columns().end(),
                        [column](const ColumnNames& names) { return names.column == column; })
        ->names;
}

bool isName(EColumn column)
{
    return column == EColumn::InstitutionName || column == EColumn::AccountName || column == EColumn::ProductName ||
           column == EColumn::GroupName || column == EColumn::CategoryName || column == EColumn::SecurityName;
}

} // namespace

NVError CsvTable::read(const QByteArray& bytes, utils::ETextEncoding encoding, const std::vector<EColumn>& required)
{
    QString text;
    const NVError unreadable = utils::decodeText(bytes, encoding, text);
    if (unreadable.code() == EErrorCode::Conflict) {
        return {EErrorCode::Conflict,
                utils::filled(utils::text("service", "%1，请用 --encoding 指定"), unreadable.errorMsg())};
    }
    if (!unreadable.isSuccess()) {
        return unreadable;
    }
    utils::CCsvReader reader(text);
    for (utils::CsvRow row; reader.next(row);) {
        m_rows.push_back(row);
    }
    if (!reader.error().isSuccess()) {
        return reader.error();
    }
    if (m_rows.empty()) {
        return {EErrorCode::InvalidValue, utils::text("service", "文件是空的")};
    }
    const QStringList header = m_rows.front().values;
    m_rows.erase(m_rows.begin());
    m_width = header.size();
    for (int index = 0; index < header.size(); ++index) {
        const std::optional<EColumn> column = columnOf(header[index]);
        if (!column) {
            m_ignored << header[index];
        } else if (!m_columns.emplace(*column, index).second) {
            return {EErrorCode::InvalidValue,
                    utils::filled(utils::text("service", "列“%1”重复"), header[index].toStdString())};
        }
    }
    for (const EColumn column : required) {
        if (!has(column)) {
            return {EErrorCode::InvalidValue, utils::filled(utils::text("service", "缺少列“%1”"), columnLabel(column))};
        }
    }
    return {};
}

QString TableRow::field(EColumn column) const
{
    const auto found = m_table.m_columns.find(column);
    const QString value = found == m_table.m_columns.end() ? QString() : m_row.values.value(found->second);
    return isName(column) ? value : value.trimmed();
}

QString columnName(EColumn column)
{
    return namesOf(column).front();
}

std::string columnLabel(EColumn column)
{
    return namesOf(column)[utils::language() == utils::ELanguage::English ? 1 : 0].toStdString();
}

} // namespace service
