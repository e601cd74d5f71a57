// SPDX-License-Identifier: Apache-2.0
#include "simple/CSimpleTableView.h"

#include "tablekit/CTableHeader.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QAbstractButton>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>

namespace WQ
{

namespace
{

const QEvent::Type SyncEvent = QEvent::Type(QEvent::registerEventType());
/// The same as in the header, which the style paints.
constexpr int CellTextMargin = 4;

} // namespace

CSimpleTableView::CSimpleTableView(QWidget* owner)
    : CTableView(new CTableHeader, CellTextMargin, owner), m_cells(*this, m_model, owner)
{
    setModel(&m_model);
    setVerticalScrollMode(ScrollPerPixel);
    setFrameShape(QFrame::StyledPanel);
    connect(&m_model, &CSimpleTableModel::sigAboutToRearrange, this, &CSimpleTableView::keepRows);
    connect(&m_model, &CSimpleTableModel::sigRearranged, this, &CSimpleTableView::restoreRows);
}

void CSimpleTableView::setEmptyText(const QString& text)
{
    m_emptyText = text;
    viewport()->update();
}

void CSimpleTableView::requestSync()
{
    if (m_syncRequested) {
        return;
    }
    m_syncRequested = true;
    QCoreApplication::postEvent(this, new QEvent(SyncEvent), Qt::HighEventPriority);
}

void CSimpleTableView::requestFit()
{
    m_fitRequested = true;
    requestSync();
}

void CSimpleTableView::sync()
{
    if (m_syncing || (!m_model.isStale() && !m_fitRequested)) {
        return;
    }
    m_syncing = true;
    m_model.sync();
    if (m_fitRequested && isVisible()) {
        m_fitRequested = false;
        emit sigFitColumns();
        // The view would notice the new widths in the next turn only.
        updateGeometries();
    }
    executeDelayedItemsLayout();
    m_syncing = false;
    m_cells.place();
}

int CSimpleTableView::idOfNextCurrent(int row) const
{
    int id = -1;
    for (int next = row; row >= 0 && next < m_model.rowCount() && id < 0; ++next) {
        id = m_model.order().contains(idOfRow(next)) ? idOfRow(next) : -1;
    }
    for (int previous = row - 1; previous >= 0 && id < 0; --previous) {
        id = m_model.order().contains(idOfRow(previous)) ? idOfRow(previous) : -1;
    }
    return id;
}

QColor CSimpleTableView::rowBackground(int row) const
{
    return CUiResourceManager::instance()->colour(row % 2 == 1 ? key::TableBackground2 : key::TableBackground);
}

int CSimpleTableView::textWidth(const QString& text) const
{
    constexpr int MostKept = 4096;
    const auto found = m_textWidths.constFind(text);
    if (found != m_textWidths.constEnd()) {
        return *found;
    }
    if (m_textWidths.size() >= MostKept) {
        m_textWidths.clear();
    }
    return *m_textWidths.insert(text, CTableView::textWidth(text));
}

bool CSimpleTableView::event(QEvent* event)
{
    if (event->type() != SyncEvent) {
        return CTableView::event(event);
    }
    m_syncRequested = false;
    sync();
    return true;
}

bool CSimpleTableView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest) {
        m_cells.forgetSizes();
        m_cells.place();
    }
    return CTableView::viewportEvent(event);
}

void CSimpleTableView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_textWidths.clear();
        m_cells.forgetSizes();
    }
    CTableView::changeEvent(event);
}

void CSimpleTableView::scrollContentsBy(int dx, int dy)
{
    CTableView::scrollContentsBy(dx, dy);
    m_cells.place();
}

void CSimpleTableView::updateGeometries()
{
    CTableView::updateGeometries();
    // Fitting the columns moves the cells and places their widgets.
    if (!m_syncing && !m_fitRequested) {
        m_cells.place();
    }
}

void CSimpleTableView::resizeEvent(QResizeEvent* event)
{
    if (event->size() != event->oldSize()) {
        requestFit();
    }
    CTableView::resizeEvent(event);
}

void CSimpleTableView::showEvent(QShowEvent* event)
{
    CTableView::showEvent(event);
    requestFit();
    sync();
}

void CSimpleTableView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && !hasFocus() && isEditorOfCell(QApplication::focusWidget())) {
        setFocus(Qt::OtherFocusReason);
        return;
    }
    const bool clicks =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    const bool plain = !(event->modifiers() & ~Qt::KeypadModifier) && !event->isAutoRepeat();
    const bool opens = event->key() == Qt::Key_F2 || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool popsUp = event->key() == Qt::Key_Down && event->modifiers() == Qt::AltModifier;
    const bool isDone =
        (clicks && plain && clickCurrentButton()) || (((opens && plain) || popsUp) && enterCurrentEditor(popsUp));
    if (!isDone) {
        CTableView::keyPressEvent(event);
    }
}

bool CSimpleTableView::isEditorOfCell(const QWidget* widget) const
{
    int rowId = -1;
    int column = -1;
    return !qobject_cast<const QAbstractButton*>(widget) && m_cells.cellOf(widget, rowId, column);
}

bool CSimpleTableView::enterCurrentEditor(bool popUp)
{
    if (!currentIndex().isValid()) {
        return false;
    }
    QWidget* const editor = m_cells.widget(m_model.idOfRow(currentIndex().row()), currentIndex().column());
    if (!editor || !editor->isEnabled() || editor->focusPolicy() == Qt::NoFocus ||
        qobject_cast<QAbstractButton*>(editor)) {
        return false;
    }
    scrollTo(currentIndex());
    m_cells.place();
    editor->setFocus(Qt::ShortcutFocusReason);
    if (auto* const line = qobject_cast<QLineEdit*>(editor)) {
        line->selectAll();
    }
    if (popUp) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::AltModifier);
        QCoreApplication::sendEvent(editor, &down);
    }
    return true;
}

QWidget* CSimpleTableView::cellWidget(const QModelIndex& index) const
{
    return index.isValid() ? m_cells.existing(m_model.idOfRow(index.row()), index.column()) : nullptr;
}

TableActions CSimpleTableView::cellActions(const QModelIndex& index) const
{
    QWidget* const widget = index.isValid() ? m_cells.widget(m_model.idOfRow(index.row()), index.column()) : nullptr;
    auto* const button = qobject_cast<QAbstractButton*>(widget);
    if (!button || !button->isEnabled()) {
        return {};
    }
    const QString text = button->text().isEmpty() ? button->accessibleName() : button->text();
    return {{text, [alive = QPointer<QAbstractButton>(button)] {
                 if (alive) {
                     alive->click();
                 }
             }}};
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
    // Leave from the table itself: a cell widget has no place in the window's tab order.
    if (inCell) {
        setFocus(reason);
    }
    return CTableView::focusNextPrevChild(next);
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
    return CTableView::eventFilter(watched, event);
}

bool CSimpleTableView::cellKeyPress(QWidget* widget, QKeyEvent* event)
{
    // Buttons have no use for these keys; editors have.
    if (!qobject_cast<QAbstractButton*>(widget)) {
        if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !event->isAutoRepeat()) {
            // When the editor has taken its input in, the keyboard is in the cell again.
            QMetaObject::invokeMethod(
                this,
                [this, editor = QPointer<QWidget>(widget)] {
                    if (editor && editor->hasFocus() && isEditorOfCell(editor)) {
                        setFocus(Qt::OtherFocusReason);
                    }
                },
                Qt::QueuedConnection);
        }
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
            selectionModel()->setCurrentIndex(to.siblingAtColumn(column), QItemSelectionModel::NoUpdate);
            scrollTo(currentIndex());
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
