// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CTableHeader.h"

#include "tablekit/CTableColumns.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace WQ
{

CTableHeader::CTableHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {}

void CTableHeader::enter(int column)
{
    const std::vector<int> columns = visibleColumns(*this);
    if (columns.empty() || isHidden()) {
        return;
    }
    m_focused = std::find(columns.begin(), columns.end(), column) == columns.end() ? columns.front() : column;
    setFocus(Qt::OtherFocusReason);
    step(0);
}

void CTableHeader::step(int by)
{
    const std::vector<int> columns = visibleColumns(*this);
    const auto current = std::find(columns.begin(), columns.end(), m_focused);
    const auto place = current == columns.end() ? 0 : std::distance(columns.begin(), current) + by;
    if (columns.empty() || place < 0 || place >= static_cast<std::ptrdiff_t>(columns.size())) {
        return;
    }
    m_focused = columns[static_cast<std::size_t>(place)];
    // The view scrolls its columns; the header follows.
    if (auto* const view = qobject_cast<QAbstractScrollArea*>(parentWidget())) {
        const int left = sectionPosition(m_focused);
        const int right = left + sectionSize(m_focused);
        QScrollBar& bar = *view->horizontalScrollBar();
        if (left < offset()) {
            bar.setValue(left);
        } else if (right > offset() + viewport()->width()) {
            bar.setValue(right - viewport()->width());
        }
    }
    viewport()->update();
    announce();
}

void CTableHeader::announce()
{
    if (parentWidget() && m_focused >= 0) {
        QAccessibleEvent event(parentWidget(), QAccessible::Focus);
        event.setChild(m_focused + 1); // after the corner
        QAccessible::updateAccessibility(&event);
    }
}

QRect CTableHeader::focusedRect() const
{
    return m_focused < 0 ? QRect()
                         : QRect(sectionViewportPosition(m_focused), 0, sectionSize(m_focused), viewport()->height());
}

QVariant CTableHeader::inputMethodQuery(Qt::InputMethodQuery query) const
{
    // Where the menu key opens the menu.
    return query == Qt::ImCursorRectangle ? QVariant(focusedRect()) : QHeaderView::inputMethodQuery(query);
}

void CTableHeader::paintEvent(QPaintEvent* event)
{
    QHeaderView::paintEvent(event);
    if (hasFocus() && m_focused >= 0) {
        QPainter painter(viewport());
        painter.setPen(CUiResourceManager::instance()->colour(key::FocusRing));
        painter.drawRect(focusedRect().adjusted(0, 0, -2, -2));
    }
}

void CTableHeader::keyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    switch (event->key()) {
    case Qt::Key_Left:
        step(-1);
        break;
    case Qt::Key_Right:
        step(1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!event->isAutoRepeat()) {
            emit sigSortRequested(m_focused);
        }
        break;
    case Qt::Key_Down:
        if (modifiers == Qt::AltModifier) {
            emit sigFilterRequested(m_focused);
        } else {
            parentWidget()->setFocus(Qt::OtherFocusReason);
        }
        break;
    case Qt::Key_Escape:
        parentWidget()->setFocus(Qt::OtherFocusReason);
        break;
    default:
        event->ignore();
    }
}

void CTableHeader::focusInEvent(QFocusEvent* event)
{
    QHeaderView::focusInEvent(event);
    viewport()->update();
}

void CTableHeader::focusOutEvent(QFocusEvent* event)
{
    QHeaderView::focusOutEvent(event);
    viewport()->update();
}

} // namespace WQ
