// SPDX-License-Identifier: Apache-2.0
// What the keyboard does in a simple table and in its cell widgets.
#include "CSimpleTableView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>

namespace WQ
{

void CSimpleTableView::keyPressEvent(QKeyEvent* event)
{
    // Copying is an action of the table; Qt's own would copy the current cell even where the table offers none.
    if (event->matches(QKeySequence::Copy)) {
        event->ignore();
        return;
    }
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if ((enter || event->key() == Qt::Key_Space) && !(event->modifiers() & ~Qt::KeypadModifier) &&
        !event->isAutoRepeat()) {
        if (clickCurrentButton()) {
            return;
        }
        if (enter && currentIndex().isValid()) {
            emit sigActivated(m_model.idOfRow(currentIndex().row()));
            return;
        }
    }
    QTableView::keyPressEvent(event);
}

bool CSimpleTableView::clickCurrentButton()
{
    if (!currentIndex().isValid()) {
        return false;
    }
    const int id = m_model.idOfRow(currentIndex().row());
    auto* const button = qobject_cast<QAbstractButton*>(m_cells.widget(id, currentIndex().column()));
    if (!button || !button->isEnabled()) {
        return false;
    }
    scrollTo(currentIndex());
    button->click();
    return true;
}

bool CSimpleTableView::focusNextPrevChild(bool next)
{
    sync();
    int rowId = -1;
    int column = -1;
    QWidget* const focus = QApplication::focusWidget();
    const bool inCell = m_cells.cellOf(focus, rowId, column);
    if (!inCell && currentIndex().isValid()) {
        rowId = m_model.idOfRow(currentIndex().row());
    }
    if (!inCell && next && rowId >= 0) {
        scrollTo(currentIndex());
    }
    const QVector<QWidget*> widgets = rowId < 0 ? QVector<QWidget*>() : m_cells.focusable(rowId);
    int position = -1;
    for (int i = 0; inCell && i < widgets.size(); ++i) {
        if (widgets[i] == focus || widgets[i]->isAncestorOf(focus)) {
            position = i;
        }
    }
    const Qt::FocusReason reason = next ? Qt::TabFocusReason : Qt::BacktabFocusReason;
    const bool fromView = !inCell && focus == this;
    if (next && (inCell || fromView) && position + 1 < widgets.size()) {
        widgets[position + 1]->setFocus(reason);
        return true;
    }
    if (inCell && !next) {
        if (position > 0) {
            widgets[position - 1]->setFocus(reason);
        } else {
            setFocus(reason);
        }
        return true;
    }
    // The way out begins at the table itself: a cell widget has no place of its own in the window's chain.
    if (inCell) {
        setFocus(reason);
    }
    return QTableView::focusNextPrevChild(next);
}

bool CSimpleTableView::eventFilter(QObject* watched, QEvent* event)
{
    auto* const widget = qobject_cast<QWidget*>(watched);
    int rowId = -1;
    int column = -1;
    if (widget && widget->parentWidget() == viewport()) {
        switch (event->type()) {
        case QEvent::Enter:
            if (m_cells.cellOf(widget, rowId, column)) {
                setHoveredRow(m_model.rowOfId(rowId));
            }
            break;
        case QEvent::FocusIn:
            sync();
            if (m_cells.cellOf(widget, rowId, column) && m_model.rowOfId(rowId) >= 0) {
                // Under a pressed mouse nothing may move, or the click would end beside the button.
                setAutoScroll(static_cast<QFocusEvent*>(event)->reason() != Qt::MouseFocusReason);
                selectionModel()->setCurrentIndex(m_model.index(m_model.rowOfId(rowId), column),
                                                  QItemSelectionModel::NoUpdate);
                setAutoScroll(true);
            }
            break;
        case QEvent::KeyPress:
            if (cellKeyPress(widget, static_cast<QKeyEvent*>(event))) {
                return true;
            }
            break;
        default:
            break;
        }
    }
    return QTableView::eventFilter(watched, event);
}

bool CSimpleTableView::cellKeyPress(QWidget* widget, QKeyEvent* event)
{
    // Buttons have no use for these keys; editors have.
    if (!qobject_cast<QAbstractButton*>(widget)) {
        return false;
    }
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        const int column = currentIndex().column();
        setFocus(Qt::OtherFocusReason);
        const QModelIndex to = moveCursor(event->key() == Qt::Key_Up       ? MoveUp
                                          : event->key() == Qt::Key_Down   ? MoveDown
                                          : event->key() == Qt::Key_PageUp ? MovePageUp
                                                                           : MovePageDown,
                                          event->modifiers());
        if (to.isValid()) {
            goTo(m_model.idOfRow(to.row()), column);
        }
        QWidget* const there = m_cells.existing(m_model.idOfRow(currentIndex().row()), column);
        if (there && there->isVisible() && there->isEnabled()) {
            there->setFocus(Qt::OtherFocusReason);
        }
        return true;
    }
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
        setFocus(Qt::OtherFocusReason);
        keyPressEvent(event);
        return true;
    default:
        return false;
    }
}

} // namespace WQ
