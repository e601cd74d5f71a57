// SPDX-License-Identifier: Apache-2.0
#include "CSimpleCellDelegate.h"

#include "CSimpleTableView.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QPainter>

namespace WQ
{

CSimpleCellDelegate::CSimpleCellDelegate(CSimpleTableView& view) : QStyledItemDelegate(&view), m_view(view) {}

void CSimpleCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    const bool selected = option.state & QStyle::State_Selected;
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool active = m_view.hasFocus() || m_view.isAncestorOf(m_view.window()->focusWidget());
    const QString text = index.data().toString();

    QColor background =
        theme.colour(m_alternating && index.row() % 2 == 1 ? key::TableBackground2 : key::TableBackground);
    if (selected) {
        background = theme.colour(active ? key::TableSelection : key::TableSelectionInactive);
    } else if (m_view.isRowHoverOn() && index.row() == m_view.hoveredRow()) {
        background = theme.colour(key::TableHover);
    } else if (m_find && m_find->matches(text)) {
        background = theme.colour(key::TableFindMatch);
    }
    painter->fillRect(option.rect, background);
    if (m_grid) {
        const QColor line = theme.colour(key::TableGrid);
        painter->fillRect(option.rect.left(), option.rect.bottom(), option.rect.width(), 1, line);
        painter->fillRect(option.rect.right(), option.rect.top(), 1, option.rect.height(), line);
    }

    if (!text.isEmpty()) {
        const QVariant ownColour = index.data(Qt::ForegroundRole);
        QColor colour = theme.colour(key::Text);
        if (!enabled) {
            colour = theme.colour(key::TextDisabled);
        } else if (selected) {
            colour = theme.colour(key::TableSelectionText);
        } else if (ownColour.isValid()) {
            colour = ownColour.value<QColor>();
        }
        painter->setPen(colour);
        painter->setFont(option.font);
        const QRect room = option.rect.adjusted(TextMargin, 0, -TextMargin - 1, 0);
        // However long the text, only what can be seen is measured.
        QString line = text.left(2 * room.width() + 16);
        line.replace(QLatin1Char('\n'), QLatin1Char(' '));
        int width = m_view.textWidth(line);
        if (width > room.width()) {
            line = option.fontMetrics.elidedText(line, Qt::ElideRight, room.width());
            width = room.width();
        }
        const Qt::Alignment alignment(index.data(Qt::TextAlignmentRole).toInt());
        const QRect place =
            QStyle::alignedRect(option.direction, alignment, QSize(width, option.fontMetrics.height()), room);
        painter->drawText(QPoint(place.left(), place.top() + option.fontMetrics.ascent()), line);
    }
    if (index == m_view.currentIndex() && m_view.hasFocus()) {
        painter->setPen(theme.colour(key::FocusRing));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(0, 0, -2, -2));
    }
}

} // namespace WQ
