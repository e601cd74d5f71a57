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

/// CSV files (docs/data-service.md describes their columns); a file that is not there is not imported.
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
    std::string logIn = "import";                                   ///< in whose name the audit keeps the changes
    utils::ETextEncoding encoding = utils::ETextEncoding::Detected; ///< of all files
    bool dryRun = false; ///< checks and reports everything and stores nothing
    std::function<void(std::int64_t done, std::int64_t total)> progress = nullptr; ///< counts rows
};

/// In the order in which they are imported, and in which the report names them.
enum class EImportFile { Institutions, Categories, Securities, Accounts, Products, Groups };
enum class EImportOutcome { Added, Changed, Unchanged, Refused };

/// A value that a row changes. An account that enters a group or product has no value before, one that leaves it none
/// after.
struct ImportChange {
    QString column;
    std::string before;
    std::string after;
};

/// What happens to one row of a file, or to the whole file (line 0).
struct ImportRow {
    EImportFile file = EImportFile::Institutions;
    int line = 0; ///< counted from 1, as an editor shows it
    EImportOutcome outcome = EImportOutcome::Unchanged;
    std::string key;                   ///< what the row is about: account, name
    std::string reason;                ///< why it was refused, in Chinese
    std::vector<ImportChange> changes; ///< of a record that was there before
};

struct ImportReport {
    utils::NVError error;  ///< success exactly when no row was refused and the store could be used
    bool isStored = false; ///< false after a dry run and after any error: then nothing was stored
    std::vector<ImportRow> rows;
    QStringList notes; ///< columns that were ignored

    int count(EImportOutcome outcome) const;
};

/// Imports all files in one transaction: either every row is good and all are stored, or nothing is. Rows are checked
/// to the end, so that one run shows every reason. Existing records take the values of the file (an account by type,
/// account id and unit; a product or category by id; a group by name; a
/// security by market and code); nothing is deleted. Every change is audited.
ImportReport importData(Store& store, const ImportOptions& options, const ImportFiles& files);

} // namespace service
