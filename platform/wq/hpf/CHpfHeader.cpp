// SPDX-License-Identifier: Apache-2.0
#include "hpf/CHpfHeader.h"

#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseHpfTableModel.h>
#include <WQ/ResourceKeys.h>

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int MarkWidth = 14;
constexpr int ButtonWidth = 20;
constexpr int SmallestHeight = 28;

} // namespace

CHpfHeader::CHpfHeader(CStandardHpfTable& table) : m_table(table)
{
    setObjectName(QStringLiteral("tableHeader"));
    setDefaultSectionSize(100);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
}

QSize CHpfHeader::sizeHint() const
{
    return {100, std::max(SmallestHeight, fontMetrics().height() + 10)};
}

bool CHpfHeader::hasFilterButton(int column) const
{
    return (m_table.flags() & TableHeaderFilter) != 0 && m_table.isColumnFilterable(column);
}

QRect CHpfHeader::filterButtonRect(int column) const
{
    if (column < 0 || !hasFilterButton(column) || isSectionHidden(column)) {
        return {};
    }
    const int right = sectionViewportPosition(column) + sectionSize(column) - 3;
    return {right - ButtonWidth, 4, ButtonWidth, height() - 8};
}

int CHpfHeader::contentWidth(int column) const
{
    const QString text = model() ? model()->headerData(column, Qt::Horizontal).toString() : QString();
    return fontMetrics().horizontalAdvance(text) + 2 * TextMargin + MarkWidth +
           (hasFilterButton(column) ? ButtonWidth : 0);
}

void CHpfHeader::paintEvent(QPaintEvent* event)
{
    {
        const CUiResourceManager& theme = *CUiResourceManager::instance();
        QPainter painter(viewport());
        painter.fillRect(event->rect(), theme.colour(key::TableHeader));
        painter.fillRect(QRect(event->rect().left(), height() - 1, event->rect().width(), 1),
                         theme.colour(key::TableGrid));
    }
    CTableHeader::paintEvent(event);
}

void CHpfHeader::paintSection(QPainter* painter, const QRect& rect, int column) const
{
    if (!rect.isValid()) {
        return;
    }
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    painter->fillRect(rect, theme.colour(column == m_hovered ? key::TableHeaderHover : key::TableHeader));
    painter->fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), theme.colour(key::TableGrid));
    painter->fillRect(QRect(rect.right(), rect.top() + 5, 1, rect.height() - 10), theme.colour(key::TableGrid));

    const IBaseHpfTableModel* data = m_table.dataModel();
    int right = rect.right() - 3;
    painter->setRenderHint(QPainter::Antialiasing, true);
    if (hasFilterButton(column)) {
        const bool active = data && data->columnFilter(column).first != FilterNone;
        const QRectF button(right - ButtonWidth + 1, rect.top() + 4, ButtonWidth, rect.height() - 8);
        if (column == m_hovered && m_hoveredFilterButton) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(theme.colour(key::TableGrid));
            painter->drawRoundedRect(button, 3, 3);
        }
        // A funnel.
        const QPointF c = button.center();
        QPolygonF funnel;
        funnel << c + QPointF(-4.5, -4) << c + QPointF(4.5, -4) << c + QPointF(1.2, 0.2) << c + QPointF(1.2, 4.5)
               << c + QPointF(-1.2, 3.2) << c + QPointF(-1.2, 0.2);
        const QColor ink = theme.colour(active ? key::TableFilterActive : key::TableHeaderMark);
        painter->setPen(QPen(ink, 1));
        painter->setBrush(active ? QBrush(ink) : QBrush(Qt::NoBrush));
        painter->drawPolygon(funnel);
        right -= ButtonWidth;
    }
    if (data && data->sortColumn() == column) {
        const qreal up = data->sortOrder() == Qt::AscendingOrder ? 1 : -1;
        const QPointF c(right - MarkWidth / 2.0, rect.center().y() + 0.5);
        QPolygonF arrow;
        arrow << c + QPointF(-4, 2.2 * up) << c + QPointF(4, 2.2 * up) << c + QPointF(0, -2.8 * up);
        painter->setPen(Qt::NoPen);
        painter->setBrush(theme.colour(key::TableFilterActive));
        painter->drawPolygon(arrow);
        right -= MarkWidth;
    }
    painter->setRenderHint(QPainter::Antialiasing, false);

    const int alignment = model()->headerData(column, Qt::Horizontal, Qt::TextAlignmentRole).toInt();
    const QRect textRect(rect.left() + TextMargin, rect.top(), right - rect.left() - TextMargin, rect.height());
    const QString text = model()->headerData(column, Qt::Horizontal).toString();
    painter->setPen(theme.colour(key::TableHeaderText));
    painter->drawText(textRect, alignment | Qt::TextSingleLine,
                      fontMetrics().elidedText(text, Qt::ElideRight, textRect.width()));
}

int CHpfHeader::filterButtonAt(const QPoint& position) const
{
    const int column = logicalIndexAt(position);
    return column >= 0 && filterButtonRect(column).contains(position) ? column : -1;
}

void CHpfHeader::setHovered(int column, bool onFilterButton)
{
    if (column == m_hovered && onFilterButton == m_hoveredFilterButton) {
        return;
    }
    m_hovered = column;
    m_hoveredFilterButton = onFilterButton;
    viewport()->update();
}

void CHpfHeader::mousePressEvent(QMouseEvent* event)
{
    m_pressedFilterButton = event->button() == Qt::LeftButton ? filterButtonAt(event->pos()) : -1;
    if (m_pressedFilterButton < 0) {
        CTableHeader::mousePressEvent(event);
    }
}

void CHpfHeader::mouseMoveEvent(QMouseEvent* event)
{
    setHovered(logicalIndexAt(event->pos()), filterButtonAt(event->pos()) >= 0);
    if (m_pressedFilterButton < 0) {
        CTableHeader::mouseMoveEvent(event);
    }
}

void CHpfHeader::mouseReleaseEvent(QMouseEvent* event)
{
    const int pressed = m_pressedFilterButton;
    m_pressedFilterButton = -1;
    if (pressed < 0) {
        CTableHeader::mouseReleaseEvent(event);
    } else if (filterButtonAt(event->pos()) == pressed) {
        emit sigFilterRequested(pressed);
    }
}

void CHpfHeader::mouseDoubleClickEvent(QMouseEvent* event)
{
    // A quick second press on the filter button is a press like the first.
    m_pressedFilterButton = event->button() == Qt::LeftButton ? filterButtonAt(event->pos()) : -1;
    if (m_pressedFilterButton < 0) {
        CTableHeader::mouseDoubleClickEvent(event);
    }
}

void CHpfHeader::leaveEvent(QEvent* event)
{
    setHovered(-1, false);
    CTableHeader::leaveEvent(event);
}

} // namespace WQ
