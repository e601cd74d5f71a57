// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CTableHeader.h"

namespace WQ
{

class CStandardHpfTable;

/// The header of a high-performance table: texts, sort mark, filter buttons.
class CHpfHeader : public CTableHeader
{
    Q_OBJECT

public:
    /// Pixels at both sides of a text, in the header and in the cells.
    static constexpr int TextMargin = 8;

    explicit CHpfHeader(CStandardHpfTable& table);

    bool hasFilterButton(int column) const;
    /// The rectangle of a column's filter button in viewport coordinates; null if it has none.
    QRect filterButtonRect(int column) const;
    /// The width that the header text and its marks need.
    int contentWidth(int column) const;
    QSize sizeHint() const override;

protected:
    void paintSection(QPainter* painter, const QRect& rect, int column) const override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    int filterButtonAt(const QPoint& position) const;
    void setHovered(int column, bool onFilterButton);

    CStandardHpfTable& m_table;
    int m_hovered = -1;
    bool m_hoveredFilterButton = false;
    int m_pressedFilterButton = -1;
};

} // namespace WQ
