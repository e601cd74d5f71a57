// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSet>
#include <QString>
#include <QVector>

namespace WQ
{

/// The limits of a column's width in pixels.
constexpr int NarrowestColumn = 40;
constexpr int WidestColumn = 10000;

/// The contents of a layout string.
struct TableLayout {
    int tableId = 0;
    QVector<int> order;  ///< Model columns from left to right; all of them.
    QVector<int> widths; ///< By model column, pixels; 0 is an automatic width.
    QSet<int> hidden;    ///< Columns that the user has hidden.
    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;

    QString toString() const;
    /// Returns false and leaves `layout` unchanged unless `text` is a complete, undamaged layout string of this
    /// version.
    static bool fromString(const QString& text, TableLayout& layout);
};

} // namespace WQ
