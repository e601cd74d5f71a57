// SPDX-License-Identifier: Apache-2.0
// Columns and sorting of the simple table.
#include "SimpleTablePrivate.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int HeaderMargin = 12;
constexpr int WidgetMargin = 8;
/// A wider widget makes do with the column that the others leave.
constexpr int WidestCellWidget = 400;
/// Rows whose texts are asked from the first one on screen: more than it shows, so that the next page fits too.
constexpr int MeasuredRows = 200;

} // namespace

CStandardSimpleTable::Private::Private(CStandardSimpleTable& table, int id)
    : q(table), tableId(id), view(new CSimpleTableView(&table)),
      delegate(static_cast<CSimpleCellDelegate*>(view->itemDelegate())), columns(*view->horizontalHeader())
{
}

bool CStandardSimpleTable::Private::hasColumn(int column) const
{
    return column >= 0 && column < view->rows().columnCount();
}

bool CStandardSimpleTable::Private::hasCell(int rowId, int column) const
{
    return hasColumn(column) && view->rows().order().contains(rowId);
}

QHeaderView& CStandardSimpleTable::Private::header() const
{
    return *view->horizontalHeader();
}

void CStandardSimpleTable::Private::onUiResourceChanged()
{
    view->requestFit();
    view->viewport()->update();
    header().viewport()->update();
}

void CStandardSimpleTable::Private::requestRepaint(bool now)
{
    if (now) {
        view->viewport()->update();
    }
}

void CStandardSimpleTable::Private::applyFlags()
{
    view->setSelectionBehavior(flags & TableCellSelection ? QAbstractItemView::SelectItems
                                                          : QAbstractItemView::SelectRows);
    view->setSelectionMode(flags & TableToggleSelection ? QAbstractItemView::MultiSelection
                                                        : QAbstractItemView::ExtendedSelection);
    delegate->setGrid(flags & TableShowGrid);
    delegate->setAlternating(flags & TableAlternateRows);
    view->setRowHover(flags & TableRowHover);
    header().setVisible(flags & TableShowHeader);
    header().setSectionsClickable(flags & TableHeaderSort);
    header().setSectionsMovable(flags & TableMovableColumns);
    header().setSectionResizeMode(flags & TableResizableColumns ? QHeaderView::Interactive : QHeaderView::Fixed);
    view->setEmptyTextShown(flags & TableEmptyText);
    updateActions();
    view->viewport()->update();
}

void CStandardSimpleTable::Private::nameView()
{
    QString name = q.accessibleName();
    if (name.isEmpty()) {
        QStringList texts;
        for (const int column : columns.visible()) {
            texts << view->rows().column(column).header;
        }
        texts.removeAll(QString());
        name = QStringLiteral("表格 ") + texts.join(QStringLiteral("、"));
    }
    view->setAccessibleName(name.trimmed());
}

std::vector<int> CStandardSimpleTable::Private::listedColumns() const
{
    std::vector<int> listed = columns.visible();
    const auto holdsNoText = [this](int column) {
        if (!view->cells().isWidgetColumn(column)) {
            return false;
        }
        const std::vector<int> ids = view->rows().order().ids();
        return std::all_of(ids.begin(), ids.end(), [&](int id) { return view->rows().text(id, column).isEmpty(); });
    };
    listed.erase(std::remove_if(listed.begin(), listed.end(), holdsNoText), listed.end());
    return listed;
}

int CStandardSimpleTable::Private::wantedWidth(int column) const
{
    const CSimpleTableModel& rows = view->rows();
    int width = header().fontMetrics().horizontalAdvance(rows.column(column).header) + 2 * HeaderMargin;
    const int first = qMax(0, view->rowAt(0));
    const int last = view->rowAt(view->viewport()->height() - 1);
    const int shownEnd = last < 0 ? rows.rowCount() : last + 1;
    const int end = qMin(first + MeasuredRows, rows.rowCount());
    int longest = 0;
    for (int row = first; row < end; ++row) {
        const int rowId = rows.idOfRow(row);
        const QString text = rows.text(rowId, column);
        // Below the screen a text with no more characters than the longest so far is taken for no wider.
        if (row < shownEnd || text.size() > longest) {
            longest = qMax(longest, text.size());
            // A column never gets wider than the table; a longer text need not be measured.
            width = qMax(width, view->textWidth(text.left(500)) + 2 * CSimpleCellDelegate::TextMargin + 1);
        }
        if (row < shownEnd && view->cells().hasAny(rowId, column)) {
            width = qMax(width, qMin(view->cells().wish(rowId, column).width(), WidestCellWidget) + 2 * WidgetMargin);
        }
    }
    return qMax(NarrowestColumn, width);
}

void CStandardSimpleTable::Private::fitColumns()
{
    QVector<int> fitted;
    QVector<int> wanted;
    int room = view->viewport()->width();
    for (const int column : columns.visible()) {
        if (columns.hasChosenWidth(column)) {
            room -= columns.width(column);
            continue;
        }
        fitted << column;
        wanted << wantedWidth(column);
    }
    if (fitted.isEmpty()) {
        return;
    }
    int sum = 0;
    for (const int width : wanted) {
        sum += width;
    }
    if (sum <= room) {
        // The rest is shared evenly, the odd pixels by the first columns.
        const int rest = room - sum;
        for (int i = 0; i < wanted.size(); ++i) {
            wanted[i] += rest / wanted.size() + (i < rest % wanted.size() ? 1 : 0);
        }
    } else {
        // The widest columns give way until all fit, but none below what its header needs.
        QVector<int> sorted = wanted;
        std::sort(sorted.begin(), sorted.end());
        int left = qMax(0, room);
        int cap = 0;
        for (int i = 0; i < sorted.size(); ++i) {
            cap = left / (sorted.size() - i);
            if (sorted[i] > cap) {
                break;
            }
            left -= sorted[i];
        }
        for (int i = 0; i < wanted.size(); ++i) {
            const QString text = view->rows().column(fitted[i]).header;
            const int least = header().fontMetrics().horizontalAdvance(text) + 2 * HeaderMargin;
            wanted[i] = qMin(wanted[i], qMax(cap, qMax(NarrowestColumn, least)));
        }
    }
    for (int i = 0; i < fitted.size(); ++i) {
        columns.fit(fitted[i], wanted[i]);
    }
}

void CStandardSimpleTable::setColumnVisible(int column, bool visible)
{
    if (m_d->hasColumn(column)) {
        m_d->columns.setVisible(column, visible);
    }
}

bool CStandardSimpleTable::isColumnVisible(int column) const
{
    return m_d->hasColumn(column) && m_d->columns.isVisible(column);
}

void CStandardSimpleTable::setColumnWidth(int column, int width)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    m_d->columns.setWidth(column, width);
    m_d->view->requestFit();
}

int CStandardSimpleTable::columnWidth(int column) const
{
    if (!m_d->hasColumn(column)) {
        return 0;
    }
    m_d->view->sync();
    return m_d->columns.width(column);
}

void CStandardSimpleTable::sortByColumn(int column, Qt::SortOrder order)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    m_d->view->sync();
    m_d->view->rows().reorder(m_d->view->rows().sortedIds(column, order));
    m_d->sortColumn = column;
    m_d->sortOrder = order;
    m_d->view->requestFit();
}

void CStandardSimpleTable::clearSort()
{
    if (m_d->sortColumn < 0) {
        return;
    }
    m_d->view->sync();
    std::vector<int> ids = m_d->view->rows().order().ids();
    std::sort(ids.begin(), ids.end());
    m_d->view->rows().reorder(ids);
    m_d->endSorting();
}

void CStandardSimpleTable::Private::sortByHeader(int column)
{
    if (sortColumn != column) {
        q.sortByColumn(column, Qt::AscendingOrder);
    } else if (sortOrder == Qt::AscendingOrder) {
        q.sortByColumn(column, Qt::DescendingOrder);
    } else {
        q.clearSort();
    }
    showSorting();
}

void CStandardSimpleTable::Private::endSorting()
{
    if (sortColumn < 0) {
        return;
    }
    sortColumn = -1;
    view->requestFit();
}

void CStandardSimpleTable::Private::showSorting()
{
    header().setSortIndicatorShown(sortColumn >= 0);
    header().setSortIndicator(sortColumn, sortOrder);
    updateActions();
}

QString CStandardSimpleTable::saveConfigStr() const
{
    TableLayout layout;
    layout.tableId = m_d->tableId;
    m_d->columns.save(layout);
    layout.sortColumn = m_d->sortColumn;
    layout.sortOrder = m_d->sortOrder;
    return layout.toString();
}

bool CStandardSimpleTable::loadConfigStr(const QString& config)
{
    TableLayout layout;
    if (!TableLayout::fromString(config, layout) || layout.tableId != m_d->tableId || !m_d->columns.load(layout)) {
        return false;
    }
    if (layout.sortColumn >= 0) {
        sortByColumn(layout.sortColumn, layout.sortOrder);
    } else {
        clearSort();
    }
    return true;
}

} // namespace WQ
