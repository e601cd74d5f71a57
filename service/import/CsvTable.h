#pragma once

#include "service/import/CsvReader.h"

#include <map>
#include <optional>
#include <string>

namespace service
{

/// The columns that the import knows; a file names them in its first row, in Chinese or English, in any order.
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

/// A CSV file with a header row.
class CsvTable
{
public:
    /// Reads the header. Errors: `Malformed`, `InvalidValue` for a missing or repeated column; texts name it.
    utils::NVError read(const QByteArray& bytes, const std::vector<EColumn>& required);

    const std::vector<CsvRecord>& rows() const { return m_rows; }
    /// Names in the header that no column has.
    const QStringList& ignoredColumns() const { return m_ignored; }

    /// Whether the row has as many fields as the header.
    bool isComplete(const CsvRecord& row) const { return row.fields.size() == m_width; }
    bool has(EColumn column) const { return m_columns.count(column) != 0; }
    /// Empty for a column that the file doesn't have. Only names keep blanks at their ends, where the file keeps them.
    QString field(const CsvRecord& row, EColumn column) const;

private:
    std::map<EColumn, int> m_columns;
    std::vector<CsvRecord> m_rows;
    QStringList m_ignored;
    int m_width = 0;
};

/// The column's Chinese name.
QString columnName(EColumn column);

} // namespace service
