#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace QAV
{

/// A row of text that came from a spreadsheet.
struct SeparatedRow {
    int line = 0; ///< where the row begins, counted from 1
    QStringList cells;
};

/// The text of a file: UTF-8 with or without byte order mark, otherwise GB18030. False when it is neither.
bool decodeSeparatedText(const QByteArray& bytes, QString& text);

/// Splits a text into rows. Cells may be quoted and then hold separators, line ends and doubled quotes; a quote that
/// does not end goes on to the end of the text. Cells lose blanks at both ends and what spreadsheets put around them to
/// keep them as they are: ="0123" and '0123 become 0123. Rows without anything in them are left out.
std::vector<SeparatedRow> splitSeparatedText(const QString& text, QChar separator);

} // namespace QAV
