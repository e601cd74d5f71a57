#pragma once

#include <QString>

namespace utils
{

// What protects a value in spreadsheets, for the reader, which removes it, and the writer, which adds it.

/// Whether a spreadsheet may take the value for a formula.
bool looksLikeFormula(const QString& value);

/// Whether the cell begins with an apostrophe that the reader removes.
bool hasGuard(const QString& cell);

QString exactCell(const QString& value);
/// Whether the cell is `exactCell` of some value, and then of which.
bool readExactCell(const QString& cell, QString& value);

} // namespace utils
