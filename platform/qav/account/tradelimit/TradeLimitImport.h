#pragma once

#include "account/tradelimit/CTradeLimitBook.h"

#include <utils/CCsvReader.h>

#include <functional>
#include <vector>

namespace QAV
{

/// What becomes of one row of a text that is taken in.
struct TradeLimitImportRow {
    int line = 0;
    QString code;
    QString name;
    bool accepted = false;
    QString result; ///< for the user
};

struct TradeLimitImport {
    std::vector<TradeLimitImportRow> rows;
    std::vector<nvservice::CTradeLimitEntry> entries; ///< of the rows that are accepted
    std::size_t refusedCount() const { return rows.size() - entries.size(); }
};

/// What a row means that does not say it itself.
struct TradeLimitImportDefaults {
    nvservice::EZVRCListKind listKind = nvservice::EZVRCListKind::Black;
    nvservice::EZVRCDirection direction = nvservice::EZVRCDirection::Both;
    /// The name of a security, empty when it is not known.
    std::function<QString(const QString& code)> nameOf;
    /// Whether no security has the code.
    std::function<bool(const QString& code)> isUnknown;
};

/// Reads rows of code, name, list and direction: in that order, or as a first row with the table's headers says. Checks
/// them against the book and against each other, and changes nothing.
TradeLimitImport readTradeLimits(const std::vector<utils::CsvRow>& rows, const CTradeLimitBook& book,
                                 const TradeLimitImportDefaults& defaults);

} // namespace QAV
