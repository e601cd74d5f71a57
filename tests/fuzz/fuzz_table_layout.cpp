// SPDX-License-Identifier: Apache-2.0
// A layout string is whole or refused; one that is taken is written as it is understood.
#include "fuzz/Require.h"

#include "tablekit/TableLayout.h"

#include <cstdint>

namespace
{

void check(const QString& text)
{
    WQ::TableLayout layout;
    if (!WQ::TableLayout::fromString(text, layout)) {
        return;
    }
    REQUIRE(layout.widths.size() == layout.order.size());
    QSet<int> columns;
    for (int column : qAsConst(layout.order)) {
        REQUIRE(column >= 0 && column < layout.order.size());
        columns.insert(column);
    }
    REQUIRE(columns.size() == layout.order.size());
    REQUIRE(layout.sortColumn < layout.order.size());
    const QString written = layout.toString();
    REQUIRE(!written.contains(QLatin1Char(';')));
    WQ::TableLayout again;
    REQUIRE(WQ::TableLayout::fromString(written, again));
    REQUIRE(again.toString() == written);
}

/// What no fuzzer guesses: the checksum at the end.
QString withChecksum(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const quint16 checksum = qChecksum(bytes.constData(), static_cast<uint>(bytes.size()));
    return text + QStringLiteral("|%1").arg(checksum, 4, 16, QLatin1Char('0'));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    check(text);
    check(withChecksum(text));
    return 0;
}
