// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPainter>
#include <QStyleOptionViewItem>

#include <vector>

namespace WQ
{

class CTableView;

/// Paints the part of a table that lies in an area of its viewport.
class CTablePainter
{
public:
    /// No cell is wide enough for more.
    static constexpr int MostCharacters = 1024;
    static constexpr int IconExtent = 16;

    CTablePainter(CTableView& view, const QRect& area);

    void paint();

private:
    struct Column {
        int column;
        int left;
        int width;
        const QAbstractItemDelegate* painter;
    };

    void paintEmptyText();
    void markSelection();
    bool isSelected(int row, std::size_t place) const
    {
        return m_selected[static_cast<std::size_t>(row - m_firstRow) * m_columns.size() + place] != 0;
    }
    void paintRow(int row);
    void paintCell(const QRect& rect, const QModelIndex& index, bool selected);

    CTableView& m_view;
    const QRect m_area;
    QPainter m_painter;
    QStyleOptionViewItem m_option;
    std::vector<Column> m_columns;
    std::vector<char> m_selected; ///< per cell on screen
    int m_firstRow = 0;
    int m_lastRow = -1;
    const bool m_isFocused;
    const QModelIndex m_current;
    QColor m_plain, m_hover, m_selection, m_selectionText, m_text, m_gridLine, m_ring, m_match;
};

} // namespace WQ
