// SPDX-License-Identifier: Apache-2.0
#include "simple/CSimpleTableKit.h"

#include "simple/ColumnWidths.h"

#include <QHeaderView>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int HeaderMargin = 12;
constexpr int WidgetMargin = 8;
/// A column does not grow for widgets wider than this.
constexpr int WidestCellWidget = 400;
/// A column never gets wider than the table; a longer text need not be measured.
constexpr int LongestMeasured = 500;
/// The texts of this many rows from the first one on screen are measured, so that the next page fits, too.
constexpr int MeasuredRows = 200;

} // namespace

CSimpleTableKit::CSimpleTableKit(QWidget& table, CSimpleTableView& view, int tableId)
    : CTableKit(table, view, tableId, MenuAll), m_view(view), m_rows(view.rows())
{
}

int CSimpleTableKit::headerWidth(int column) const
{
    const QHeaderView& header = *m_view.horizontalHeader();
    return header.fontMetrics().horizontalAdvance(m_rows.column(column).header) + 2 * HeaderMargin;
}

int CSimpleTableKit::wantedWidth(int column) const
{
    int width = headerWidth(column);
    const int first = std::max(0, m_view.firstVisibleRow());
    const int shownEnd = m_view.lastVisibleRow() + 1;
    const int end = std::min(first + MeasuredRows, m_rows.rowCount());
    int longest = 0;
    for (int row = first; row < end; ++row) {
        const int rowId = m_rows.idOfRow(row);
        const QString text = m_rows.text(rowId, column);
        // Below the screen only texts with more characters than the longest so far are measured.
        if (row < shownEnd || text.size() > longest) {
            longest = std::max(longest, text.size());
            width = std::max(width, m_view.textWidth(text.left(LongestMeasured)) + 2 * m_view.textMargin() + 1);
        }
        if (row < shownEnd && m_view.cells().hasAny(rowId, column)) {
            const int wish = m_view.cells().wish(rowId, column).width();
            width = std::max(width, std::min(wish, WidestCellWidget) + 2 * WidgetMargin);
        }
    }
    return std::max(NarrowestColumn, width);
}

void CSimpleTableKit::fitColumns()
{
    std::vector<int> fitted;
    std::vector<WantedWidth> wanted;
    int room = m_view.viewport()->width();
    for (const int column : columns().visible()) {
        if (columns().hasChosenWidth(column)) {
            room -= columns().width(column);
        } else {
            fitted.push_back(column);
            wanted.push_back({wantedWidth(column), std::max(NarrowestColumn, headerWidth(column))});
        }
    }
    const std::vector<int> widths = sharedWidths(wanted, room);
    for (std::size_t i = 0; i < widths.size(); ++i) {
        columns().fit(fitted[i], widths[i]);
    }
    nameView();
}

void CSimpleTableKit::sort(int column, Qt::SortOrder order)
{
    if (column >= m_rows.columnCount() || (column < 0 && m_sortColumn < 0)) {
        return;
    }
    m_view.sync();
    std::vector<int> ids = m_rows.order().ids();
    if (column >= 0) {
        ids = m_rows.sortedIds(column, order);
    } else {
        std::sort(ids.begin(), ids.end());
    }
    m_rows.reorder(ids);
    m_sortColumn = std::max(column, -1);
    m_sortOrder = order;
    showSorting();
    requestFit();
}

void CSimpleTableKit::endSorting()
{
    if (m_sortColumn >= 0) {
        m_sortColumn = -1;
        showSorting();
    }
}

void CSimpleTableKit::showSorting()
{
    QHeaderView& header = *m_view.horizontalHeader();
    header.setSortIndicatorShown(m_sortColumn >= 0);
    header.setSortIndicator(m_sortColumn, m_sortOrder);
    updateActions();
}

bool CSimpleTableKit::isListed(int column) const
{
    if (!m_view.cells().isWidgetColumn(column)) {
        return true;
    }
    // A column of widgets only has nothing to copy.
    const std::vector<int> ids = m_rows.order().ids();
    return std::any_of(ids.begin(), ids.end(), [&](int id) { return !m_rows.text(id, column).isEmpty(); });
}

bool CSimpleTableKit::isNumber(int, const QString& text) const
{
    bool isNumber = false;
    text.toDouble(&isNumber);
    return isNumber;
}

std::vector<char> CSimpleTableKit::matches(int column, const QString& text) const
{
    const CContainsMatcher matcher(text);
    std::vector<char> byRow;
    for (const int id : m_rows.order().ids()) {
        byRow.push_back(matcher.matches(m_rows.text(id, column)));
    }
    return byRow;
}

} // namespace WQ
