#pragma once

#include <utils/NVError.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace service
{

struct CsvRecord {
    int line = 0; ///< where the record starts, counted from 1
    QStringList fields;
};

/// The text of a file: UTF-8 with or without byte order mark, otherwise GB18030. Malformed when it is neither.
utils::NVError decodeCsvText(const QByteArray& bytes, QString& text);

/// Splits a text into records: commas, quoted fields that may hold commas, quotes (doubled) and line ends, any line
/// end. Fields lose blanks at both ends. The form ="0123", by which spreadsheets take a value as it is, becomes 0123
/// with all its blanks. Empty lines are left out. Malformed, with the line, for a quote that doesn't end or ends before
/// its field does.
utils::NVError parseCsv(const QString& text, std::vector<CsvRecord>& records);

} // namespace service
