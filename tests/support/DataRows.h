// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtTest>

namespace support
{

/// The columns of a data-driven test, and its rows. The compiler checks the types of the values.
///
///     const support::DataRows<QString, int> row("text", "code");
///     row("an empty text is refused", "", 2);
template <typename... Values>
class DataRows
{
public:
    template <typename... Names>
    explicit DataRows(Names... columns)
    {
        static_assert(sizeof...(Names) == sizeof...(Values), "every column has a name");
        (QTest::addColumn<Values>(columns), ...);
    }

    void operator()(const char* name, const Values&... values) const { (QTest::newRow(name) << ... << values); }
    void operator()(const QString& name, const Values&... values) const { operator()(qPrintable(name), values...); }
};

} // namespace support
