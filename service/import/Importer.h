// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"

#include <utils/NVError.h>
#include <utils/TextEncoding.h>

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace service
{

/// The contents of the CSV files, whose columns docs/data-service.md describes. A missing file is not imported.
struct ImportFiles {
    std::optional<QByteArray> institutions;
    std::optional<QByteArray> accounts; ///< one row for each account or sub-account unit
    std::optional<QByteArray> products; ///< one row for each account of a product, or one without account
    std::optional<QByteArray> groups;   ///< one row for each account of a group
    std::optional<QByteArray> categories;
    std::optional<QByteArray> securities;
};

struct ImportOptions {
    std::string serverName;
    std::string newSystemTag;                                       ///< not empty: the server is created with this tag
    std::string logIn = "import";                                   ///< the user in the audit rows of the changes
    utils::ETextEncoding encoding = utils::ETextEncoding::Detected; ///< of all files
    bool dryRun = false; ///< true: checks and reports everything, stores nothing
    std::function<void(std::int64_t done, std::int64_t total)> progress = nullptr; ///< counts rows
};

/// In the order of import and of the report.
enum class EImportFile { Institutions, Categories, Securities, Accounts, Products, Groups };
enum class EImportOutcome { Added, Changed, Unchanged, Refused };

/// A value that a row changes. An account that is added to a group or product has an empty value before; one that is
/// removed has an empty value after.
struct ImportChange {
    QString column;
    std::string before;
    std::string after;
    QString label; ///< the name of the column, in the language of texts
};

/// The outcome of one row of a file, or of the whole file (line 0).
struct ImportRow {
    EImportFile file = EImportFile::Institutions;
    int line = 0; ///< counted from 1, as an editor shows it
    EImportOutcome outcome = EImportOutcome::Unchanged;
    std::string key;                   ///< the record that the row is about: account, name
    std::string reason;                ///< why the row was refused, in Chinese
    std::vector<ImportChange> changes; ///< of an existing record
};

struct ImportReport {
    utils::NVError error;  ///< success exactly if no row was refused and the store could be used
    bool isStored = false; ///< false after a dry run or an error: nothing was stored
    std::vector<ImportRow> rows;
    QStringList notes; ///< ignored columns

    int count(EImportOutcome outcome) const;
};

/// Imports all files in one transaction: if one row is bad, nothing is stored. All rows are checked anyway, so that one
/// run shows all mistakes. An existing record takes the values of the file; it is found by type, account id and unit
/// (accounts), id (products, categories), name (groups), or market and code (securities). Nothing is deleted. Every
/// change is audited.
ImportReport importData(Store& store, const ImportOptions& options, const ImportFiles& files);

} // namespace service
