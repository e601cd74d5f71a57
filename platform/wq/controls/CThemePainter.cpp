// SPDX-License-Identifier: Apache-2.0
#include "CThemePainter.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QPainter>
#include <QStyleOption>

namespace WQ
{

namespace
{

constexpr qreal Radius = 3;

void drawBox(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& border)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(QPen(border, 1));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), Radius, Radius);
}

} // namespace

void CThemePainter::reload()
{
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    m_colours = {theme.colour(key::Text),
                 theme.colour(key::TextWeak),
                 theme.colour(key::TextDisabled),
                 theme.colour(key::Border),
                 theme.colour(key::BorderStrong),
                 theme.colour(key::Accent),
                 theme.colour(key::FocusRing),
                 theme.colour(key::EditBackground),
                 theme.colour(key::EditDisabled),
                 theme.colour(key::PanelBackground),
                 theme.colour(key::TableHeader),
                 theme.colour(key::TableHeaderHover),
                 theme.colour(key::TableHeaderText),
                 theme.colour(key::TableHeaderMark),
                 theme.colour(key::TableGrid),
                 theme.colour(key::ScrollThumb),
                 theme.colour(key::ScrollThumbHover),
                 theme.colour(key::Window),
                 theme.colour(key::SelectionBackground),
                 theme.colour(key::SelectionText)};
}

void CThemePainter::drawEdit(const QStyleOption& option, QPainter& painter) const
{
    const bool enabled = option.state & QStyle::State_Enabled;
    QColor border = m_colours.border;
    if (enabled && option.state & QStyle::State_HasFocus) {
        border = m_colours.focus;
    } else if (enabled && option.state & QStyle::State_MouseOver) {
        border = m_colours.strongBorder;
    }
    painter.save();
    drawBox(painter, option.rect, enabled ? m_colours.edit : m_colours.editDisabled, border);
    painter.restore();
}

void CThemePainter::drawCheck(const QStyleOption& option, QPainter& painter) const
{
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool set = option.state & (QStyle::State_On | QStyle::State_NoChange);
    const bool marked = option.state & (QStyle::State_MouseOver | QStyle::State_HasFocus);
    const int side = qMin(14, qMin(option.rect.width(), option.rect.height()));
    QRect box(0, 0, side, side);
    box.moveCenter(option.rect.center());
    painter.save();
    const QColor fill = !enabled ? m_colours.editDisabled : set ? m_colours.accent : m_colours.edit;
    drawBox(painter, box, fill, enabled && marked ? m_colours.focus : set ? fill : m_colours.strongBorder);
    painter.setPen(
        QPen(enabled ? m_colours.selectionText : m_colours.disabled, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QRectF inside(box);
    const auto at = [&inside](qreal x, qreal y) {
        return QPointF(inside.left() + inside.width() * x, inside.top() + inside.height() * y);
    };
    if (enabled && set && (option.state & QStyle::State_HasFocus)) {
        // The colour of the ring is too much like that of the box.
        painter.save();
        painter.setBrush(Qt::NoBrush);
        painter.setPen(m_colours.selectionText);
        painter.drawRect(QRectF(box).adjusted(2.5, 2.5, -2.5, -2.5)); // inside of the rectangle of the style
        painter.restore();
    }
    if (option.state & QStyle::State_On) {
        const QPointF tick[] = {at(0.24, 0.52), at(0.43, 0.71), at(0.77, 0.32)};
        painter.drawPolyline(tick, 3);
    } else if (option.state & QStyle::State_NoChange) {
        painter.drawLine(at(0.27, 0.5), at(0.73, 0.5));
    }
    painter.restore();
}

void CThemePainter::drawRadio(const QStyleOption& option, QPainter& painter) const
{
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool on = option.state & QStyle::State_On;
    const QRectF ring = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(!enabled                                      ? m_colours.border
                        : option.state & QStyle::State_HasFocus || on ? m_colours.accent
                                                                      : m_colours.strongBorder,
                        1));
    painter.setBrush(enabled ? m_colours.edit : m_colours.editDisabled);
    painter.drawEllipse(ring);
    if (on) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(enabled ? m_colours.accent : m_colours.disabled);
        painter.drawEllipse(ring.adjusted(3.5, 3.5, -3.5, -3.5));
    }
    painter.restore();
}

void CThemePainter::drawArrow(QPainter& painter, const QRect& rect, Qt::ArrowType type, const QColor& colour) const
{
    const QPointF middle = QRectF(rect).center();
    const qreal up = type == Qt::UpArrow ? -1 : 1;
    const QPointF arrow[] = {middle + QPointF(-3.5, -1.75 * up), middle + QPointF(0, 1.75 * up),
                             middle + QPointF(3.5, -1.75 * up)};
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(arrow, 3);
    painter.restore();
}

void CThemePainter::drawHeader(const QStyleOption& option, QPainter& painter) const
{
    const QRect& rect = option.rect;
    const auto* const header = qstyleoption_cast<const QStyleOptionHeader*>(&option);
    // Behind the last section there is nothing to click on.
    const bool hovered = header && option.state & QStyle::State_MouseOver && option.state & QStyle::State_Enabled;
    painter.fillRect(rect, hovered ? m_colours.headerHover : m_colours.header);
    painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), m_colours.border);
    if (header && header->orientation == Qt::Horizontal) {
        painter.fillRect(QRect(rect.right(), rect.top() + 6, 1, rect.height() - 12), m_colours.border);
    }
}

void CThemePainter::drawTab(const QStyleOption& option, QPainter& painter) const
{
    const QRect& rect = option.rect;
    if (option.state & QStyle::State_Selected) {
        painter.fillRect(rect, m_colours.panel);
        painter.fillRect(QRect(rect.left(), rect.top(), rect.width(), 2), m_colours.accent);
    } else if (option.state & QStyle::State_MouseOver) {
        painter.fillRect(rect, m_colours.headerHover);
    }
    if (option.state & QStyle::State_HasFocus) {
        painter.save();
        painter.setPen(m_colours.focus);
        painter.drawRect(rect.adjusted(3, 4, -4, -4));
        painter.restore();
    }
}

void CThemePainter::drawCombo(const QStyleOption& option, const QRect& arrow, QPainter& painter) const
{
    drawEdit(option, painter);
    drawArrow(painter, arrow, Qt::DownArrow,
              option.state & QStyle::State_Enabled ? m_colours.weak : m_colours.disabled);
}

void CThemePainter::drawScrollBar(const QStyleOptionSlider& option, const QRectF& thumb, QPainter& painter) const
{
    painter.save();
    painter.fillRect(option.rect, m_colours.window);
    if (option.maximum > option.minimum) {
        const bool active = option.state & (QStyle::State_MouseOver | QStyle::State_Sunken);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(active ? m_colours.thumbHover : m_colours.thumb);
        painter.drawRoundedRect(thumb.adjusted(2, 2, -2, -2), 3, 3);
    }
    painter.restore();
}

} // namespace WQ
