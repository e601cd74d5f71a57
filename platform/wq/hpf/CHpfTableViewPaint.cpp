// SPDX-License-Identifier: Apache-2.0
// How the view paints what is on screen.
#include "hpf/CHpfHeader.h"
#include "hpf/CHpfTableView.h"
#include "hpf/HpfModelPrivate.h"
#include "tablekit/CTableColumns.h"

#include <WQ/CBaseTableColumnDelegate.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int textMargin = 8;
constexpr int iconExtent = 16;
/// No cell is wide enough for more.
constexpr int mostCharacters = 1024;

QColor colour(const QString& key)
{
    return CUiResourceManager::instance()->colour(key);
}

} // namespace

struct CHpfTableView::PaintContext {
    struct Column {
        int column;
        int left;
        int width;
        CBaseTableColumnDelegate* delegate;
    };

    bool isSelected(int row, std::size_t place) const
    {
        return selected[static_cast<std::size_t>(row - firstRow) * columns.size() + place] != 0;
    }

    QPainter painter;
    QStyleOptionViewItem option;
    std::vector<Column> columns;
    std::vector<char> selected; ///< Per cell on screen.
    int firstRow = 0;
    int lastRow = -1;
    bool wholeRows = false;
    bool grid = false;
    bool alternate = false;
    bool focus = false;
    QModelIndex current;
    QColor plain, hover, selection, selectionText, gridLine, ring, match;
};

void CHpfTableView::markSelection(PaintContext& context) const
{
    const std::size_t width = context.columns.size();
    context.selected.assign(static_cast<std::size_t>(context.lastRow - context.firstRow + 1) * width, 0);
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        const int first = std::max(range.top(), context.firstRow);
        const int last = std::min(range.bottom(), context.lastRow);
        for (int row = first; row <= last; ++row) {
            for (std::size_t place = 0; place < width; ++place) {
                const int column = context.columns[place].column;
                if (column >= range.left() && column <= range.right()) {
                    context.selected[static_cast<std::size_t>(row - context.firstRow) * width + place] = 1;
                }
            }
        }
    }
}

void CHpfTableView::paintEvent(QPaintEvent* event)
{
    PaintContext context;
    QPainter& painter = context.painter;
    painter.begin(viewport());
    painter.setFont(font());
    const QRect area = event->rect();
    context.plain = colour(key::TableBackground);
    if (rowCount() == 0) {
        painter.fillRect(area, context.plain);
        if (m_table.flags() & TableEmptyText) {
            paintEmptyText(painter);
        }
        return;
    }
    const bool active = hasFocus() || isActiveWindow();
    context.hover = colour(key::TableHover);
    context.selection = colour(active ? key::TableSelection : key::TableSelectionInactive);
    context.selectionText = colour(key::TableSelectionText);
    context.gridLine = colour(key::TableGrid);
    context.ring = colour(key::FocusRing);
    context.match = colour(key::TableFindMatch);
    context.wholeRows = selectionBehavior() == SelectRows;
    context.grid = (m_table.flags() & TableShowGrid) != 0;
    context.alternate = (m_table.flags() & TableAlternateRows) != 0;
    context.focus = hasFocus();
    context.current = currentIndex();
    context.option = viewOptions();
    context.lastRow = std::min(rowCount() - 1, rowAt(area.bottom()));
    // What is to be painted may lie below the last row as a whole.
    context.firstRow = std::clamp(rowAt(area.top()), 0, context.lastRow + 1);
    for (int column : visibleColumns(*m_header)) {
        const int left = m_header->sectionViewportPosition(column);
        const int width = m_header->sectionSize(column);
        if (left <= area.right() && left + width > area.left()) {
            context.columns.push_back({column, left, width, m_table.columnDelegate(column)});
        }
    }
    markSelection(context);
    for (int row = context.firstRow; row <= context.lastRow; ++row) {
        paintRow(context, row);
    }
    const int bottom = (context.lastRow + 1 - topRow()) * m_rowHeight;
    if (bottom <= area.bottom()) {
        painter.fillRect(QRect(area.left(), bottom, area.width(), area.bottom() - bottom + 1), context.plain);
    }
}

void CHpfTableView::paintRow(PaintContext& context, int row)
{
    QPainter& painter = context.painter;
    const int top = (row - topRow()) * m_rowHeight;
    const bool rowSelected = context.wholeRows && !context.columns.empty() && context.isSelected(row, 0);
    QColor background = context.plain;
    if (rowSelected) {
        background = context.selection;
    } else if (row == m_hoverRow && (m_table.flags() & TableRowHover)) {
        background = context.hover;
    } else if (context.alternate) {
        background = colour(m_model->getRowBackgroundKey(row));
    }
    painter.fillRect(0, top, viewport()->width(), m_rowHeight, background);
    for (std::size_t place = 0; place < context.columns.size(); ++place) {
        const PaintContext::Column& column = context.columns[place];
        const QRect rect(column.left, top, column.width, m_rowHeight);
        const QModelIndex index = m_model->index(row, column.column);
        const bool selected = rowSelected || context.isSelected(row, place);
        if (selected && !rowSelected) {
            painter.fillRect(rect, context.selection);
        }
        const bool current = context.focus && index == context.current;
        if (column.delegate) {
            context.option.rect = rect;
            context.option.state.setFlag(QStyle::State_HasFocus, current);
            context.option.state.setFlag(QStyle::State_Selected, selected);
            column.delegate->paint(&painter, context.option, index);
        } else {
            paintCell(context, rect, index, selected);
        }
        if (context.grid) {
            painter.fillRect(rect.right(), top, 1, m_rowHeight, context.gridLine);
        }
        if (current && !column.delegate) {
            painter.setPen(context.ring);
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(rect.adjusted(0, 0, -2, -2));
        }
    }
    if (context.grid) {
        painter.fillRect(0, top + m_rowHeight - 1, viewport()->width(), 1, context.gridLine);
    }
}

void CHpfTableView::paintCell(PaintContext& context, const QRect& rect, const QModelIndex& index, bool selected)
{
    QPainter& painter = context.painter;
    QString text = index.data(Qt::DisplayRole).toString();
    const QString whole = m_find ? text : QString();
    QRect area = rect.adjusted(textMargin, 0, -textMargin, 0);
    const QVariant icon = index.data(Qt::DecorationRole);
    if (icon.isValid()) {
        const QRect place(area.left(), rect.top() + (rect.height() - iconExtent) / 2, iconExtent, iconExtent);
        painter.drawPixmap(place, icon.value<QPixmap>());
        area.setLeft(place.right() + 5);
    }
    if (text.isEmpty() || area.width() <= 0) {
        return;
    }
    if (m_find && m_find->matches(whole)) {
        painter.fillRect(rect.adjusted(0, 0, -1, -1), context.match);
    }
    if (text.size() > mostCharacters) {
        text.truncate(mostCharacters);
    }
    if (std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c < QLatin1Char(' '); })) {
        std::replace_if(text.begin(), text.end(), [](QChar c) { return c < QLatin1Char(' '); }, QLatin1Char(' '));
    }
    const QFontMetrics& metrics = context.option.fontMetrics;
    int width = metrics.horizontalAdvance(text);
    if (width > area.width()) {
        text = metrics.elidedText(text, Qt::ElideRight, area.width());
        width = area.width();
    }
    const int alignment = index.data(Qt::TextAlignmentRole).toInt();
    int x = area.left();
    if (alignment & Qt::AlignRight) {
        x = area.left() + area.width() - width;
    } else if (alignment & Qt::AlignHCenter) {
        x = area.left() + (area.width() - width) / 2;
    }
    const int y = rect.top() + (rect.height() - metrics.height()) / 2 + metrics.ascent();
    painter.setPen(selected ? context.selectionText : index.data(Qt::ForegroundRole).value<QColor>());
    painter.drawText(QPoint(x, y), text);
}

void CHpfTableView::paintEmptyText(QPainter& painter) const
{
    const bool hidden = m_model && m_model->isFiltered() && m_model->getDataCount() > 0;
    painter.setPen(colour(key::TableEmptyText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter,
                     hidden ? QStringLiteral("没有符合条件的记录") : QStringLiteral("暂无数据"));
}

int CHpfTableView::contentWidth(int column) const
{
    int width = 0;
    const CBaseTableColumnDelegate* delegate = m_table.columnDelegate(column);
    const int last = lastVisibleRow();
    for (int row = std::max(0, firstVisibleRow()); row <= last; ++row) {
        const QModelIndex index = m_model->index(row, column);
        if (delegate) {
            width = std::max(width, delegate->contentWidth(index));
            continue;
        }
        const QString text = index.data(Qt::DisplayRole).toString().left(mostCharacters);
        const int icon = index.data(Qt::DecorationRole).isValid() ? iconExtent + 4 : 0;
        width = std::max(width, fontMetrics().horizontalAdvance(text) + icon + 2 * textMargin + 2);
    }
    return width;
}

} // namespace WQ
