// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace utils
{

// The protection of values from spreadsheets. The writer adds it and the reader removes it.

/// True if a spreadsheet may take the value for a formula.
bool looksLikeFormula(const QString& value);

/// True if the cell starts with an apostrophe that the reader removes.
bool hasGuard(const QString& cell);

/// The value between quotation marks, with those inside it doubled.
QString quotedCell(const QString& value);

QString exactCell(const QString& value);
/// True if the cell is the `exactCell` of a value, which is then stored in `value`.
bool readExactCell(const QString& cell, QString& value);

} // namespace utils
