// SPDX-License-Identifier: Apache-2.0
#include "CThemeStyle.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QStyleOption>
#include <QTabBar>

namespace WQ
{

namespace
{

constexpr int ComboArrowWidth = 20;

} // namespace

CThemeStyle::CThemeStyle() : QProxyStyle(QStringLiteral("Fusion"))
{
    reload();
}

void CThemeStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const
{
    switch (element) {
    case PE_PanelLineEdit:
    case PE_FrameLineEdit:
        if (const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
            frame && frame->lineWidth == 0) {
            return;
        }
        m_painter.drawEdit(*option, *painter);
        return;
    case PE_Frame: {
        // Filling is several times quicker than a pen, and every list and table has a frame.
        const QRect& rect = option->rect;
        painter->fillRect(rect.left(), rect.top(), rect.width(), 1, m_painter.colours().border);
        painter->fillRect(rect.left(), rect.bottom(), rect.width(), 1, m_painter.colours().border);
        painter->fillRect(rect.left(), rect.top(), 1, rect.height(), m_painter.colours().border);
        painter->fillRect(rect.right(), rect.top(), 1, rect.height(), m_painter.colours().border);
        return;
    }
    case PE_PanelItemViewRow:
        // Fusion mixes colours for every cell before it finds that there is nothing to draw.
        if (const auto* const row = qstyleoption_cast<const QStyleOptionViewItem*>(option);
            row && !(row->state & State_Selected) && !(row->features & QStyleOptionViewItem::Alternate)) {
            return;
        }
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    case PE_FrameTabWidget:
    case PE_FrameTabBarBase:
        painter->fillRect(QRect(option->rect.left(), option->rect.top(), option->rect.width(), 1),
                          m_painter.colours().border);
        return;
    case PE_FrameMenu:
        painter->save();
        painter->setPen(m_painter.colours().strongBorder);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        m_painter.drawCheck(*option, *painter);
        return;
    case PE_IndicatorRadioButton:
        m_painter.drawRadio(*option, *painter);
        return;
    case PE_IndicatorHeaderArrow:
        if (const auto* const header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
            if (header->sortIndicator != QStyleOptionHeader::None) {
                m_painter.drawArrow(*painter, option->rect,
                                    header->sortIndicator == QStyleOptionHeader::SortUp ? Qt::UpArrow : Qt::DownArrow,
                                    m_painter.colours().headerMark);
            }
        }
        return;
    case PE_IndicatorArrowDown:
        m_painter.drawArrow(*painter, option->rect, Qt::DownArrow, m_painter.colours().weak);
        return;
    case PE_IndicatorArrowUp:
        m_painter.drawArrow(*painter, option->rect, Qt::UpArrow, m_painter.colours().weak);
        return;
    case PE_FrameFocusRect:
        painter->save();
        painter->setPen(m_painter.colours().focus);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void CThemeStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    switch (element) {
    case CE_PushButtonBevel: {
        const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const bool flat = button && (button->features & QStyleOptionButton::Flat);
        unsigned states = ButtonRests;
        if (!(option->state & State_Enabled)) {
            states |= ButtonDisabled;
        } else if (option->state & (State_Sunken | State_On)) {
            states |= ButtonPressed;
        } else if (option->state & State_MouseOver) {
            states |= ButtonHovered;
        }
        if (option->state & State_HasFocus) {
            states |= ButtonFocused;
        }
        if (flat && states == ButtonRests) {
            return;
        }
        const bool primary = button && (button->features & QStyleOptionButton::DefaultButton);
        paintButtonFace(*painter, option->rect, primary ? PrimaryButton : NormalButton, states);
        return;
    }
    case CE_PushButtonLabel: {
        const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
        if (!button) {
            return;
        }
        QStyleOptionButton copy = *button;
        const bool primary = button->features & QStyleOptionButton::DefaultButton;
        copy.palette.setColor(QPalette::ButtonText,
                              buttonTextColour(primary ? PrimaryButton : NormalButton,
                                               option->state & State_Enabled ? ButtonRests : ButtonDisabled));
        QProxyStyle::drawControl(element, &copy, painter, widget);
        return;
    }
    case CE_MenuItem: {
        const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (!item) {
            return;
        }
        QStyleOptionMenuItem copy = *item;
        if (copy.checked) {
            copy.icon = QIcon(); // the check mark comes instead; a frame around the icon is easily overlooked
        }
        QProxyStyle::drawControl(element, &copy, painter, widget);
        return;
    }
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        m_painter.drawHeader(*option, *painter);
        return;
    case CE_HeaderLabel: {
        const auto* const header = qstyleoption_cast<const QStyleOptionHeader*>(option);
        if (!header) {
            return;
        }
        QStyleOptionHeader copy = *header;
        copy.palette.setColor(QPalette::ButtonText, m_painter.colours().headerText);
        QProxyStyle::drawControl(element, &copy, painter, widget);
        return;
    }
    case CE_TabBarTabShape:
        m_painter.drawTab(*option, *painter);
        return;
    case CE_TabBarTabLabel: {
        const auto* const tab = qstyleoption_cast<const QStyleOptionTab*>(option);
        if (!tab) {
            return;
        }
        QStyleOptionTab copy = *tab;
        copy.palette.setColor(QPalette::WindowText,
                              option->state & State_Selected ? m_painter.colours().text : m_painter.colours().weak);
        copy.state &= ~State_HasFocus;
        QProxyStyle::drawControl(element, &copy, painter, widget);
        return;
    }
    case CE_ComboBoxLabel: {
        const auto* const combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        if (!combo || combo->editable) {
            return;
        }
        const QRect room = subControlRect(CC_ComboBox, combo, SC_ComboBoxEditField, widget);
        drawItemText(painter, room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, combo->palette,
                     combo->state & State_Enabled,
                     combo->fontMetrics.elidedText(combo->currentText, Qt::ElideRight, room.width()), QPalette::Text);
        return;
    }
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void CThemeStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                     const QWidget* widget) const
{
    if (control == CC_ComboBox) {
        m_painter.drawCombo(*option, subControlRect(CC_ComboBox, option, SC_ComboBoxArrow, widget), *painter);
        return;
    }
    const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && bar) {
        m_painter.drawScrollBar(*bar, subControlRect(CC_ScrollBar, bar, SC_ScrollBarSlider, widget), *painter);
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
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

int CThemeStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return 10;
    case PM_ScrollBarSliderMin:
        return 28;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return 14;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
        return 6;
    case PM_DefaultFrameWidth:
        return qobject_cast<const QAbstractSpinBox*>(widget) ? 2 : 1;
    case PM_HeaderMarkSize:
        return 8;
    case PM_HeaderMargin:
        return 4;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarBaseOverlap:
        return 0;
    case PM_TabBarTabHSpace:
        return 24;
    case PM_TabBarTabVSpace:
        return 10;
    case PM_SmallIconSize:
    case PM_ButtonIconSize:
        return 16;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int CThemeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returnData) const
{
    switch (hint) {
    case SH_ComboBox_Popup:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_UnderlineShortcut:
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_ScrollBar_Transient:
    case SH_Widget_Animate:
    case SH_Widget_Animation_Duration:
        return 0;
    case SH_ToolTipLabel_Opacity:
        return 255;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

QSize CThemeStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                    const QWidget* widget) const
{
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_PushButton) {
        result.setHeight(qMax(28, size.height() + 8));
    } else if (type == CT_ComboBox || type == CT_LineEdit) {
        result.setHeight(qMax(24, size.height() + 4));
    }
    return result;
}

void CThemeStyle::polish(QWidget* widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
        qobject_cast<QScrollBar*>(widget) || qobject_cast<QTabBar*>(widget)) {
        widget->setAttribute(Qt::WA_Hover);
    }
}

} // namespace WQ
