// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/CCsvReader.h>
#include <utils/TextEncoding.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace service
{

/// The columns that the import knows. The first row of a file names them, in Chinese or English, in any order.
enum class EColumn {
    InstitutionId,
    InstitutionName,
    Institution, ///< of an account, product or group: id or name
    AccountType, ///< code or name
    AccountId,
    UnitId,
    AccountName,
    State,
    Excluded,
    ProductId,
    ProductName,
    GroupName,
    CategoryId,
    CategoryName,
    CategoryType,
    SysType,
    ParentCategory,
    Market,
    SecurityCode,
    SecurityName,
    TraderType,
};

class TableRow;

/// A CSV file with a header row.
class CsvTable
{
public:
    /// Reads the header. Errors: those of `utils::decodeText` and `utils::CCsvReader`; `InvalidValue` for a missing or
    /// repeated column, which the text names.
    utils::NVError read(const QByteArray& bytes, utils::ETextEncoding encoding, const std::vector<EColumn>& required);

    const std::vector<utils::CsvRow>& rows() const { return m_rows; }
    /// Unknown names in the header.
    const QStringList& ignoredColumns() const { return m_ignored; }

    bool has(EColumn column) const { return m_columns.count(column) != 0; }

private:
    friend class TableRow;

    std::map<EColumn, int> m_columns;
    std::vector<utils::CsvRow> m_rows;
    QStringList m_ignored;
    int m_width = 0;
};

/// One row of a table.
class TableRow
{
public:
    TableRow(const CsvTable& table, const utils::CsvRow& row) : m_table(table), m_row(row) {}

    int line() const { return m_row.line; }
    /// True if the row has as many fields as the header.
    bool isComplete() const { return m_row.values.size() == m_table.m_width; }
    /// Empty for a column that the file does not have. Only names keep blanks at both ends.
    QString field(EColumn column) const;

private:
    const CsvTable& m_table;
    const utils::CsvRow& m_row;
};

/// The column's Chinese name, for files.
QString columnName(EColumn column);
/// Its name in the language of the thread, for texts.
std::string columnLabel(EColumn column);

} // namespace service
