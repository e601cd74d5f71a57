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

CThemeStyle::CThemeStyle() : QProxyStyle(QStringLiteral("Fusion"))
{
    reload();
}

void CThemeStyle::reload()
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
        drawEdit(*option, *painter);
        return;
    case PE_Frame: {
        // Filling is several times quicker than a pen, and every list and table has a frame.
        const QRect& rect = option->rect;
        painter->fillRect(rect.left(), rect.top(), rect.width(), 1, m_colours.border);
        painter->fillRect(rect.left(), rect.bottom(), rect.width(), 1, m_colours.border);
        painter->fillRect(rect.left(), rect.top(), 1, rect.height(), m_colours.border);
        painter->fillRect(rect.right(), rect.top(), 1, rect.height(), m_colours.border);
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
        painter->fillRect(QRect(option->rect.left(), option->rect.top(), option->rect.width(), 1), m_colours.border);
        return;
    case PE_FrameMenu:
        painter->save();
        painter->setPen(m_colours.strongBorder);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        drawCheck(*option, *painter);
        return;
    case PE_IndicatorRadioButton:
        drawRadio(*option, *painter);
        return;
    case PE_IndicatorHeaderArrow:
        if (const auto* const header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
            if (header->sortIndicator != QStyleOptionHeader::None) {
                drawArrow(*painter, option->rect,
                          header->sortIndicator == QStyleOptionHeader::SortUp ? Qt::UpArrow : Qt::DownArrow,
                          m_colours.headerMark);
            }
        }
        return;
    case PE_IndicatorArrowDown:
        drawArrow(*painter, option->rect, Qt::DownArrow, m_colours.weak);
        return;
    case PE_IndicatorArrowUp:
        drawArrow(*painter, option->rect, Qt::UpArrow, m_colours.weak);
        return;
    case PE_FrameFocusRect:
        painter->save();
        painter->setPen(m_colours.focus);
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
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        drawHeader(*option, *painter);
        return;
    case CE_HeaderLabel: {
        const auto* const header = qstyleoption_cast<const QStyleOptionHeader*>(option);
        if (!header) {
            return;
        }
        QStyleOptionHeader copy = *header;
        copy.palette.setColor(QPalette::ButtonText, m_colours.headerText);
        QProxyStyle::drawControl(element, &copy, painter, widget);
        return;
    }
    case CE_TabBarTabShape:
        drawTab(*option, *painter);
        return;
    case CE_TabBarTabLabel: {
        const auto* const tab = qstyleoption_cast<const QStyleOptionTab*>(option);
        if (!tab) {
            return;
        }
        QStyleOptionTab copy = *tab;
        copy.palette.setColor(QPalette::WindowText, option->state & State_Selected ? m_colours.text : m_colours.weak);
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
        drawCombo(*option, *painter);
    } else if (control == CC_ScrollBar) {
        drawScrollBar(*option, *painter);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
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
