// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tradelimit/CTradeLimitBook.h"

#include <functional>
#include <vector>

namespace QAV
{

/// The outcome of one imported row.
struct TradeLimitImportRow {
    int line = 0;
    QString code;
    QString name;
    bool accepted = false;
    QString result; ///< for the user
};

struct TradeLimitImport {
    QString problem; ///< why the text cannot be read; there are no rows then
    std::vector<TradeLimitImportRow> rows;
    std::vector<nvservice::CTradeLimitEntry> entries; ///< of the accepted rows
    std::size_t refusedCount() const { return rows.size() - entries.size(); }
};

/// Values for columns that a row does not have.
struct TradeLimitImportDefaults {
    nvservice::CTradeLimitEntry entry; ///< its list and its direction
    /// The name of a security; empty if it is unknown.
    std::function<QString(const QString& code)> nameOf;
    /// True if no security has the code.
    std::function<bool(const QString& code)> isUnknown;
};

/// Reads rows of code, name, list and direction, in that order or in the order of a header row with the table's
/// headers. Checks them against the book and against each other. Changes nothing.
TradeLimitImport readTradeLimits(const QString& text, QChar separator, const CTradeLimitBook& book,
                                 const TradeLimitImportDefaults& defaults);

/// Reads the text of a file. Returns the problem, for the user; empty if there is none.
QString readTextFile(const QString& fileName, QString& text);

} // namespace QAV
