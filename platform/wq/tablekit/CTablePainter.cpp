// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CTablePainter.h"

#include "tablekit/CTableColumns.h"
#include "tablekit/CTableView.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseTable.h>
#include <WQ/ResourceKeys.h>

#include <QApplication>
#include <QHeaderView>

#include <algorithm>

namespace WQ
{

CTablePainter::CTablePainter(CTableView& view, const QRect& area)
    : m_view(view), m_area(area), m_painter(view.viewport()), m_option(view.viewOptions()),
      m_isFocused(view.hasFocus()), m_current(view.currentIndex())
{
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    const bool active = m_isFocused || view.isActiveWindow();
    m_plain = theme.colour(key::TableBackground);
    m_hover = theme.colour(key::TableHover);
    m_selection = theme.colour(active ? key::TableSelection : key::TableSelectionInactive);
    m_selectionText = theme.colour(key::TableSelectionText);
    m_text = theme.colour(view.isEnabled() ? key::Text : key::TextDisabled);
    m_gridLine = theme.colour(key::TableGrid);
    m_ring = theme.colour(key::FocusRing);
    m_match = theme.colour(key::TableFindMatch);
    m_painter.setFont(view.font());
}

void CTablePainter::paint()
{
    const int rows = m_view.model() ? m_view.model()->rowCount() : 0;
    if (rows == 0) {
        m_painter.fillRect(m_area, m_plain);
        paintEmptyText();
        if (m_isFocused) {
            // There is no current cell to show where the keyboard is.
            m_painter.setPen(m_ring);
            m_painter.drawRect(m_view.viewport()->rect().adjusted(0, 0, -1, -1));
        }
        return;
    }
    m_lastRow = std::min(rows - 1, m_view.rowAt(m_area.bottom()));
    // The area may lie below the last row.
    m_firstRow = std::clamp(m_view.rowAt(m_area.top()), 0, m_lastRow + 1);
    for (const int column : visibleColumns(*m_view.horizontalHeader())) {
        const int left = m_view.columnViewportPosition(column);
        const int width = m_view.columnWidth(column);
        if (left <= m_area.right() && left + width > m_area.left()) {
            m_columns.push_back({column, left, width, m_view.columnPainter(column)});
        }
    }
    markSelection();
    for (int row = m_firstRow; row <= m_lastRow; ++row) {
        paintRow(row);
    }
    const int bottom = m_view.rowTop(m_lastRow + 1);
    if (bottom <= m_area.bottom()) {
        m_painter.fillRect(QRect(m_area.left(), bottom, m_area.width(), m_area.bottom() - bottom + 1), m_plain);
    }
}

void CTablePainter::paintEmptyText()
{
    if (m_view.flags() & TableEmptyText) {
        m_painter.setPen(CUiResourceManager::instance()->colour(key::TableEmptyText));
        m_painter.drawText(m_view.viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_view.emptyText());
    }
}

void CTablePainter::markSelection()
{
    const std::size_t width = m_columns.size();
    m_selected.assign(static_cast<std::size_t>(m_lastRow - m_firstRow + 1) * width, 0);
    for (const QItemSelectionRange& range : m_view.selectionModel()->selection()) {
        const int last = std::min(range.bottom(), m_lastRow);
        for (int row = std::max(range.top(), m_firstRow); row <= last; ++row) {
            for (std::size_t place = 0; place < width; ++place) {
                const int column = m_columns[place].column;
                if (column >= range.left() && column <= range.right()) {
                    m_selected[static_cast<std::size_t>(row - m_firstRow) * width + place] = 1;
                }
            }
        }
    }
}

void CTablePainter::paintRow(int row)
{
    const int top = m_view.rowTop(row);
    const int height = m_view.rowHeight();
    const int width = m_view.viewport()->width();
    const bool wholeRow = m_view.selectionBehavior() == QAbstractItemView::SelectRows;
    const bool rowSelected = wholeRow && !m_columns.empty() && isSelected(row, 0);
    QColor background = m_plain;
    if (rowSelected) {
        background = m_selection;
    } else if (row == m_view.hoveredRow() && (m_view.flags() & TableRowHover)) {
        background = m_hover;
    } else if (m_view.flags() & TableAlternateRows) {
        background = m_view.rowBackground(row);
    }
    const bool grid = (m_view.flags() & TableShowGrid) != 0;
    m_painter.fillRect(0, top, width, height, background);
    for (std::size_t place = 0; place < m_columns.size(); ++place) {
        const Column& column = m_columns[place];
        const QRect rect(column.left, top, column.width, height);
        const QModelIndex index = m_view.model()->index(row, column.column);
        const bool selected = rowSelected || isSelected(row, place);
        if (selected && !rowSelected) {
            m_painter.fillRect(rect, m_selection);
        }
        const bool current = m_isFocused && index == m_current;
        if (column.painter) {
            m_option.rect = rect;
            m_option.state.setFlag(QStyle::State_HasFocus, current);
            m_option.state.setFlag(QStyle::State_Selected, selected);
            column.painter->paint(&m_painter, m_option, index);
        } else {
            paintCell(rect, index, selected);
        }
        if (grid) {
            m_painter.fillRect(rect.right(), top, 1, height, m_gridLine);
        }
        if (current && !column.painter) {
            m_painter.setPen(m_ring);
            m_painter.setBrush(Qt::NoBrush);
            m_painter.drawRect(rect.adjusted(0, 0, -2, -2));
        }
    }
    if (grid) {
        m_painter.fillRect(0, top + height - 1, width, 1, m_gridLine);
    }
}

void CTablePainter::paintCell(const QRect& rect, const QModelIndex& index, bool selected)
{
    QString text = index.data(Qt::DisplayRole).toString();
    QRect room = rect.adjusted(m_view.textMargin(), 0, -m_view.textMargin(), 0);
    const QVariant icon = index.data(Qt::DecorationRole);
    if (icon.isValid()) {
        const QRect place(room.left(), rect.top() + (rect.height() - IconExtent) / 2, IconExtent, IconExtent);
        m_painter.drawPixmap(place, icon.value<QPixmap>());
        room.setLeft(place.right() + 5);
    }
    if (text.isEmpty() || room.width() <= 0) {
        return;
    }
    if (m_view.isMatch(text)) {
        m_painter.fillRect(rect.adjusted(0, 0, -1, -1), m_match);
    }
    text.truncate(MostCharacters);
    const auto isControl = [](QChar c) { return c < QLatin1Char(' '); };
    if (std::any_of(text.cbegin(), text.cend(), isControl)) {
        std::replace_if(text.begin(), text.end(), isControl, QLatin1Char(' '));
    }
    const QFontMetrics& metrics = m_option.fontMetrics;
    int width = m_view.textWidth(text);
    if (width > room.width()) {
        text = metrics.elidedText(text, Qt::ElideRight, room.width());
        width = room.width();
    }
    QColor colour = m_text;
    if (selected) {
        colour = m_selectionText;
    } else if (m_view.isEnabled()) {
        const QVariant own = index.data(Qt::ForegroundRole);
        colour = own.isValid() ? own.value<QColor>() : m_text;
    }
    const Qt::Alignment alignment(index.data(Qt::TextAlignmentRole).toInt());
    const QRect place = QStyle::alignedRect(m_option.direction, alignment, QSize(width, metrics.height()), room);
    m_painter.setPen(colour);
    m_painter.drawText(QPoint(place.left(), place.top() + metrics.ascent()), text);
}

} // namespace WQ
