// SPDX-License-Identifier: Apache-2.0
#include "CThemeStyle.h"

#include <QPainter>
#include <QStyleOption>

namespace WQ
{

namespace
{

constexpr qreal Radius = 3;
constexpr int ComboArrowWidth = 20;

void drawBox(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& border)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(QPen(border, 1));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), Radius, Radius);
}

} // namespace

void CThemeStyle::drawEdit(const QStyleOption& option, QPainter& painter) const
{
    const bool enabled = option.state & State_Enabled;
    QColor border = m_colours.border;
    if (enabled && option.state & State_HasFocus) {
        border = m_colours.focus;
    } else if (enabled && option.state & State_MouseOver) {
        border = m_colours.strongBorder;
    }
    painter.save();
    drawBox(painter, option.rect, enabled ? m_colours.edit : m_colours.editDisabled, border);
    painter.restore();
}

void CThemeStyle::drawCheck(const QStyleOption& option, QPainter& painter) const
{
    const bool enabled = option.state & State_Enabled;
    const bool set = option.state & (State_On | State_NoChange);
    const bool marked = option.state & (State_MouseOver | State_HasFocus);
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
    if (option.state & State_On) {
        const QPointF tick[] = {at(0.24, 0.52), at(0.43, 0.71), at(0.77, 0.32)};
        painter.drawPolyline(tick, 3);
    } else if (option.state & State_NoChange) {
        painter.drawLine(at(0.27, 0.5), at(0.73, 0.5));
    }
    painter.restore();
}

void CThemeStyle::drawRadio(const QStyleOption& option, QPainter& painter) const
{
    const bool enabled = option.state & State_Enabled;
    const bool on = option.state & State_On;
    const QRectF ring = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(!enabled                              ? m_colours.border
                        : option.state & State_HasFocus || on ? m_colours.accent
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

void CThemeStyle::drawArrow(QPainter& painter, const QRect& rect, Qt::ArrowType type, const QColor& colour) const
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

void CThemeStyle::drawHeader(const QStyleOption& option, QPainter& painter) const
{
    const QRect& rect = option.rect;
    const bool hovered = option.state & State_MouseOver && option.state & State_Enabled;
    painter.fillRect(rect, hovered ? m_colours.headerHover : m_colours.header);
    painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), m_colours.border);
    const auto* const header = qstyleoption_cast<const QStyleOptionHeader*>(&option);
    if (header && header->orientation == Qt::Horizontal) {
        painter.fillRect(QRect(rect.right(), rect.top() + 6, 1, rect.height() - 12), m_colours.border);
    }
}

void CThemeStyle::drawTab(const QStyleOption& option, QPainter& painter) const
{
    const QRect& rect = option.rect;
    if (option.state & State_Selected) {
        painter.fillRect(rect, m_colours.panel);
        painter.fillRect(QRect(rect.left(), rect.top(), rect.width(), 2), m_colours.accent);
    } else if (option.state & State_MouseOver) {
        painter.fillRect(rect, m_colours.headerHover);
    }
    if (option.state & State_HasFocus) {
        painter.save();
        painter.setPen(m_colours.focus);
        painter.drawRect(rect.adjusted(3, 4, -4, -4));
        painter.restore();
    }
}

void CThemeStyle::drawCombo(const QStyleOptionComplex& option, QPainter& painter) const
{
    drawEdit(option, painter);
    const QRect arrow = subControlRect(CC_ComboBox, &option, SC_ComboBoxArrow, nullptr);
    drawArrow(painter, arrow, Qt::DownArrow, option.state & State_Enabled ? m_colours.weak : m_colours.disabled);
}

QRect CThemeStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const
{
    const QRect& rect = option->rect;
    if (control == CC_ComboBox) {
        if (part == SC_ComboBoxArrow) {
            return visualRect(option->direction, rect,
                              QRect(rect.right() - ComboArrowWidth + 1, rect.top(), ComboArrowWidth, rect.height()));
        }
        if (part == SC_ComboBoxEditField) {
            return visualRect(option->direction, rect, rect.adjusted(6, 1, -ComboArrowWidth, -1));
        }
    }
    const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && bar) {
        const bool flat = bar->orientation == Qt::Horizontal;
        const int length = flat ? rect.width() : rect.height();
        const int range = bar->maximum - bar->minimum;
        int thumb = length;
        if (range > 0) {
            thumb = int(qint64(bar->pageStep) * length / (qint64(range) + bar->pageStep));
            thumb = qBound(qMin(length, pixelMetric(PM_ScrollBarSliderMin, option, widget)), thumb, length);
        }
        const int start =
            sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb, bar->upsideDown);
        const auto place = [&](int from, int extent) {
            const QRect found = flat ? QRect(rect.left() + from, rect.top(), extent, rect.height())
                                     : QRect(rect.left(), rect.top() + from, rect.width(), extent);
            return visualRect(option->direction, rect, found);
        };
        switch (part) {
        case SC_ScrollBarSlider:
            return place(start, thumb);
        case SC_ScrollBarGroove:
            return rect;
        case SC_ScrollBarSubPage:
            return place(0, start);
        case SC_ScrollBarAddPage:
            return place(start + thumb, length - start - thumb);
        default:
            return QRect();
        }
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

void CThemeStyle::drawScrollBar(const QStyleOptionComplex& option, QPainter& painter) const
{
    const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(&option);
    if (!bar) {
        return;
    }
    painter.save();
    painter.fillRect(option.rect, m_colours.window);
    if (bar->maximum > bar->minimum) {
        const bool active = option.state & (State_MouseOver | State_Sunken);
        const QRectF thumb = subControlRect(CC_ScrollBar, &option, SC_ScrollBarSlider, nullptr);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(active ? m_colours.thumbHover : m_colours.thumb);
        painter.drawRoundedRect(thumb.adjusted(2, 2, -2, -2), 3, 3);
    }
    painter.restore();
}

} // namespace WQ
