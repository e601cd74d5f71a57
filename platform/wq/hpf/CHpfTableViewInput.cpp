// SPDX-License-Identifier: Apache-2.0
// What the user does in the view: mouse, keyboard, selection.
#include "hpf/CHpfHeader.h"
#include "hpf/CHpfTableView.h"
#include "hpf/HpfModelPrivate.h"
#include "tablekit/CTableColumns.h"

#include <WQ/CBaseTableColumnDelegate.h>
#include <WQ/CStandardHpfTable.h>

#include <QAccessible>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

namespace WQ
{

namespace
{

/// Events for which what is on screen must be what the model holds.
bool looksAtRows(QEvent::Type type)
{
    switch (type) {
    case QEvent::Paint:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::ToolTip:
    case QEvent::ContextMenu:
        return true;
    default:
        return false;
    }
}

} // namespace

bool CHpfTableView::event(QEvent* event)
{
    if (m_model && looksAtRows(event->type())) {
        m_model->announce();
    }
    return QAbstractItemView::event(event);
}

bool CHpfTableView::viewportEvent(QEvent* event)
{
    if (m_model && looksAtRows(event->type())) {
        m_model->announce();
    }
    if (event->type() == QEvent::Leave) {
        setHover({}, false);
    }
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        if (!showTip(help->pos(), help->globalPos())) {
            QToolTip::hideText();
        }
        return true;
    }
    return QAbstractItemView::viewportEvent(event);
}

bool CHpfTableView::showTip(const QPoint& position, const QPoint& globalPosition)
{
    const QModelIndex index = indexAt(position);
    if (!index.isValid()) {
        return false;
    }
    const QRect cell = visualRect(index);
    QString tip;
    if (const CBaseTableColumnDelegate* delegate = m_table.columnDelegate(index.column())) {
        tip = delegate->toolTipAt(index, cell, position);
    } else {
        const IBaseHpfTableDataPtr record = m_model->getDataByRow(index.row());
        const bool overIcon = position.x() < cell.left() + 28 && !record->getItemIconKey(index.column()).isEmpty();
        tip = overIcon ? record->getItemIconTip(index.column()) : index.data(Qt::ToolTipRole).toString();
        const QString text = index.data().toString();
        if (tip.isEmpty() && fontMetrics().horizontalAdvance(text.left(1024)) > cell.width() - 16) {
            tip = text;
        }
    }
    if (tip.isEmpty()) {
        return false;
    }
    // Never taken for rich text, whatever a record holds.
    QToolTip::showText(globalPosition, tip.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>")),
                       viewport(), cell);
    return true;
}

void CHpfTableView::setHover(const QPoint& position, bool inside)
{
    const QModelIndex index = inside ? indexAt(position) : QModelIndex();
    const int row = index.row();
    if (row != m_hoverRow) {
        for (int changed : {row, m_hoverRow}) {
            if (changed >= 0) {
                viewport()->update(0, cellRect(changed, 0).top(), viewport()->width(), m_rowHeight);
            }
        }
        m_hoverRow = row;
    }
    CBaseTableColumnDelegate* delegate = index.isValid() ? m_table.columnDelegate(index.column()) : nullptr;
    if (m_hoverDelegate && m_hoverDelegate != delegate) {
        m_hoverDelegate->mouseLeft();
    }
    m_hoverDelegate = delegate;
}

bool CHpfTableView::sendToDelegate(QMouseEvent* event)
{
    const bool pressing = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (m_pressDelegate && !pressing) {
        const QPointer<CBaseTableColumnDelegate> delegate = m_pressDelegate;
        const QModelIndex index = m_pressIndex;
        if (event->type() == QEvent::MouseButtonRelease) {
            m_pressDelegate.clear();
            m_pressIndex = QModelIndex();
        }
        return delegate->mouseEvent(event, index, visualRect(index)) || !index.isValid();
    }
    const QModelIndex index = indexAt(event->pos());
    CBaseTableColumnDelegate* delegate = index.isValid() ? m_table.columnDelegate(index.column()) : nullptr;
    if (!delegate || (event->type() == QEvent::MouseMove && event->buttons() != Qt::NoButton)) {
        return false;
    }
    const bool taken = delegate->mouseEvent(event, index, visualRect(index));
    if (taken && pressing) {
        m_pressDelegate = delegate;
        m_pressIndex = index;
    }
    return taken;
}

void CHpfTableView::mousePressEvent(QMouseEvent* event)
{
    const bool taken = sendToDelegate(event);
    if (!taken) {
        QAbstractItemView::mousePressEvent(event);
        return;
    }
    // The row of the pressed button becomes current; a selection that the user gathers click by click stays.
    const bool gathers = selectionMode() == MultiSelection;
    selectionModel()->setCurrentIndex(m_pressIndex,
                                      gathers ? QItemSelectionModel::NoUpdate
                                              : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void CHpfTableView::mouseMoveEvent(QMouseEvent* event)
{
    setHover(event->pos(), viewport()->rect().contains(event->pos()));
    if (!sendToDelegate(event)) {
        QAbstractItemView::mouseMoveEvent(event);
    }
}

void CHpfTableView::mouseReleaseEvent(QMouseEvent* event)
{
    if (!sendToDelegate(event)) {
        QAbstractItemView::mouseReleaseEvent(event);
    }
}

void CHpfTableView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (sendToDelegate(event)) {
        return;
    }
    const QPersistentModelIndex index = indexAt(event->pos());
    QAbstractItemView::mouseDoubleClickEvent(event);
    if (index.isValid() && event->button() == Qt::LeftButton) {
        emit sigRowActivated(index);
    }
}

void CHpfTableView::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex current = currentIndex();
    if (current.isValid()) {
        CBaseTableColumnDelegate* delegate = m_table.columnDelegate(current.column());
        if (delegate && delegate->keyEvent(event, current)) {
            return;
        }
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            emit sigRowActivated(current);
            return;
        }
        if (event->key() == Qt::Key_Down && event->modifiers() == Qt::AltModifier) {
            emit sigFilterRequested(current.column());
            return;
        }
    }
    if (event->matches(QKeySequence::Copy)) {
        return; // what the table copies depends on its menu flags
    }
    QAbstractItemView::keyPressEvent(event);
}

void CHpfTableView::keyboardSearch(const QString&)
{
    // Finding is the find bar's; looking through every row at each key stroke is nobody's.
}

int CHpfTableView::nextColumn(int column, int step) const
{
    for (int visual = m_header->visualIndex(column) + step; visual >= 0 && visual < m_header->count(); visual += step) {
        const int next = m_header->logicalIndex(visual);
        if (!m_header->isSectionHidden(next)) {
            return next;
        }
    }
    return column;
}

QModelIndex CHpfTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const std::vector<int> columns = visibleColumns(*m_header);
    if (rowCount() == 0 || columns.empty()) {
        return {};
    }
    const QModelIndex current = currentIndex();
    if (!current.isValid()) {
        return m_model->index(0, columns.front());
    }
    int row = current.row();
    int column = current.column();
    const bool wholeTable = modifiers.testFlag(Qt::ControlModifier) || selectionBehavior() == SelectRows;
    switch (action) {
    case MoveUp:
        --row;
        break;
    case MoveDown:
        ++row;
        break;
    case MovePageUp:
        row -= fullRows();
        break;
    case MovePageDown:
        row += fullRows();
        break;
    case MoveLeft:
    case MovePrevious:
        column = nextColumn(column, -1);
        break;
    case MoveRight:
    case MoveNext:
        column = nextColumn(column, 1);
        break;
    case MoveHome:
        row = wholeTable ? 0 : row;
        column = columns.front();
        break;
    case MoveEnd:
        row = wholeTable ? rowCount() - 1 : row;
        column = columns.back();
        break;
    }
    return m_model->index(std::clamp(row, 0, rowCount() - 1), column);
}

void CHpfTableView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command)
{
    if (!m_model || rowCount() == 0) {
        return;
    }
    const int top = rowAt(rect.top());
    const int bottom = rowAt(rect.bottom());
    QItemSelection selection;
    if (bottom >= 0 && top < rowCount()) {
        const int first = std::max(top, 0);
        const int last = std::min(bottom, rowCount() - 1);
        for (int column : visibleColumns(*m_header)) {
            const int left = m_header->sectionViewportPosition(column);
            if (left <= rect.right() && left + m_header->sectionSize(column) > rect.left()) {
                selection.append({m_model->index(first, column), m_model->index(last, column)});
            }
            if (!selection.isEmpty() && command.testFlag(QItemSelectionModel::Rows)) {
                break;
            }
        }
    }
    selectionModel()->select(selection, command);
}

QRegion CHpfTableView::visualRegionForSelection(const QItemSelection& selection) const
{
    QRegion region;
    for (const QItemSelectionRange& range : selection) {
        const int first = std::max(range.top(), firstVisibleRow());
        const int last = std::min(range.bottom(), lastVisibleRow());
        if (first <= last) {
            region += QRect(0, cellRect(first, 0).top(), viewport()->width(), (last - first + 1) * m_rowHeight);
        }
    }
    return region;
}

void CHpfTableView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QAbstractItemView::currentChanged(current, previous);
    // With whole rows selected the frame of the current cell must follow as well.
    for (const QModelIndex& index : {current, previous}) {
        if (index.isValid()) {
            update(index);
        }
    }
    const int from = previous.isValid() ? m_header->visualIndex(previous.column()) : -1;
    const int to = current.isValid() ? m_header->visualIndex(current.column()) : -1;
    CBaseTableColumnDelegate* left = previous.isValid() ? m_table.columnDelegate(previous.column()) : nullptr;
    CBaseTableColumnDelegate* entered = current.isValid() ? m_table.columnDelegate(current.column()) : nullptr;
    if (left && left != entered) {
        left->currentChanged(false, false);
    }
    if (entered && (left != entered || current.row() != previous.row()) && !m_pressDelegate) {
        entered->currentChanged(true, to >= from);
    }
    if (!entered) {
        setAccessibleDescription({});
    }
    if (QAccessible::isActive() && current.isValid() && hasFocus()) {
        QAccessibleEvent focus(this, QAccessible::Focus);
        focus.setChild(current.row() * m_model->columnCount() + current.column());
        QAccessible::updateAccessibility(&focus);
    }
    emit sigCurrentChanged();
}

void CHpfTableView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QAbstractItemView::selectionChanged(selected, deselected);
    emit sigSelectionChanged();
}

} // namespace WQ
