// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/import/CsvTable.h"
#include "service/import/Importer.h"
#include "service/store/Groups.h"
#include "service/store/Journal.h"
#include "service/store/MasterData.h"
#include "service/store/Users.h"

#include <exception>
#include <functional>
#include <set>
#include <unordered_map>

namespace service
{

/// Thrown for a row that cannot be imported.
class RowError : public std::exception
{
public:
    explicit RowError(std::string reason) : m_reason(std::move(reason)) {}
    const char* what() const noexcept override { return m_reason.c_str(); }

private:
    std::string m_reason;
};

/// The values that a row changes, by column.
class Changes
{
public:
    /// Stores the two values unless they are equal.
    void add(EColumn column, const std::string& before, const std::string& after);
    const std::vector<ImportChange>& all() const { return m_all; }
    /// What a row does to its record.
    EImportOutcome outcome(bool isNew) const
    {
        return isNew ? EImportOutcome::Added : m_all.empty() ? EImportOutcome::Unchanged : EImportOutcome::Changed;
    }

private:
    std::vector<ImportChange> m_all;
};

/// Remembers the line where each key first occurred.
class SeenKeys
{
public:
    /// Throws `RowError` for a repeated key.
    void add(const std::string& key, int line);

private:
    std::unordered_map<std::string, int> m_lines;
};

/// The data that the importers of all files share: the server, its records and the report.
class ImportContext : public ServerData
{
public:
    /// `rows` is the total for the progress.
    ImportContext(const ServerData& data, const ImportOptions& options, std::int64_t rows, ImportReport& report);

    /// Reads the file and calls `importRow` for every complete row. If that throws a `RowError`, the row is refused
    /// with its text.
    void forEachRow(EImportFile file, const QByteArray& bytes, const std::vector<EColumn>& required,
                    const std::function<void(const TableRow&)>& importRow);

    void report(EImportFile file, int line, EImportOutcome outcome, const std::string& key, const Changes& changes);
    void refuse(EImportFile file, int line, const std::string& key, const std::string& reason);

    /// Adds to the number of finished rows.
    void advance(std::size_t rows);

    /// The institution of an account. Throws `RowError`.
    std::int32_t institutionOf(const TableRow& row) const;
    /// A text without control characters, at most 64 characters. Throws `RowError`.
    std::string textOf(const TableRow& row, EColumn column, bool mayBeEmpty = false) const;
    /// The same for a code. Refuses one that a spreadsheet has turned into 4.57E+11.
    std::string codeOf(const TableRow& row, EColumn column) const;
    /// An integer above 0. Throws `RowError`.
    std::int32_t numberOf(const TableRow& row, EColumn column) const;
    /// An integer; 0 if the field is empty. Throws `RowError`.
    std::int32_t countOf(const TableRow& row, EColumn column) const;
    bool flagOf(const TableRow& row, EColumn column) const;
    /// Type, account id and unit of the row. Throws `RowError`.
    nvservice::CAccountInfo accountKeyOf(const TableRow& row) const;
    /// The account that the row names. Throws `RowError` if there is none.
    const StoredAccount& accountOf(const TableRow& row) const;

    void audit(bool isNew, std::int32_t dataType, const std::string& key, const bson::BSONObj& before,
               const bson::BSONObj& after);

    std::int64_t now;
    std::string login;
    bool isNewServer; ///< it had no accounts before
    std::unordered_map<std::int64_t, std::string> institutions;
    std::unordered_map<std::string, StoredAccount> accounts; ///< by key

private:
    ImportReport& m_report;
    utils::ETextEncoding m_encoding;
    std::function<void(std::int64_t, std::int64_t)> m_progress;
    std::int64_t m_rows;
    std::int64_t m_rowsDone = 0;
};

void importInstitutions(ImportContext& context, const QByteArray& bytes);
void importCategories(ImportContext& context, const QByteArray& bytes);
void importSecurities(ImportContext& context, const QByteArray& bytes);
void importAccounts(ImportContext& context, const QByteArray& bytes);
void importProducts(ImportContext& context, const QByteArray& bytes);
void importGroups(ImportContext& context, const QByteArray& bytes);

} // namespace service
