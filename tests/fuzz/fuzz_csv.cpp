// SPDX-License-Identifier: Apache-2.0
// Any file is text or refused, and any text is rows or a malformed one. Rows that are written again, in any form and
// with any separator, are read as they were.
#include "fuzz/Require.h"

#include <utils/CCsvReader.h>
#include <utils/CCsvWriter.h>
#include <utils/TextEncoding.h>

#include <cstdint>
#include <vector>

namespace
{

/// False when a row is malformed.
bool readRows(const QString& text, QChar separator, std::vector<utils::CsvRow>& rows)
{
    utils::CCsvReader reader(text, separator);
    for (utils::CsvRow row; reader.next(row);) {
        rows.push_back(row);
    }
    REQUIRE(reader.error().isSuccess() == reader.error().errorMsg().empty());
    return reader.error().isSuccess();
}

void requireSameWhenWrittenAgain(const std::vector<utils::CsvRow>& rows, utils::ECsvForm form, QChar separator)
{
    utils::CCsvWriter writer(separator);
    for (const utils::CsvRow& row : rows) {
        for (const QString& value : row.values) {
            writer.add(value, form);
        }
        writer.endRow();
    }
    QString text;
    REQUIRE(utils::decodeText(writer.take().toUtf8(), utils::ETextEncoding::Utf8, text).isSuccess());
    std::vector<utils::CsvRow> again;
    REQUIRE(readRows(text, separator, again));
    REQUIRE(again.size() == rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        REQUIRE(again[i].values == rows[i].values);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QString text;
    for (const auto encoding :
         {utils::ETextEncoding::Utf8, utils::ETextEncoding::Gb18030, utils::ETextEncoding::Detected}) {
        const utils::NVError unreadable = utils::decodeText(bytes, encoding, text);
        REQUIRE(unreadable.isSuccess() == unreadable.errorMsg().empty());
        REQUIRE(unreadable.isSuccess() || text.isEmpty());
    }
    std::vector<utils::CsvRow> rows;
    if (!readRows(text, QLatin1Char(','), rows)) {
        return 0;
    }
    int line = 0;
    for (const utils::CsvRow& row : rows) {
        REQUIRE(row.line > line);
        REQUIRE(!row.values.isEmpty());
        line = row.line;
    }
    requireSameWhenWrittenAgain(rows, utils::ECsvForm::Plain, QLatin1Char(','));
    requireSameWhenWrittenAgain(rows, utils::ECsvForm::Guarded, QLatin1Char('\t'));
    requireSameWhenWrittenAgain(rows, utils::ECsvForm::Exact, QLatin1Char(';'));
    return 0;
}
