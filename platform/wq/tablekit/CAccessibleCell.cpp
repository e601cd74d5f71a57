// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CAccessibleCell.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QHeaderView>
#include <QItemSelectionModel>

#include <algorithm>

namespace WQ
{

bool CAccessibleCell::isValid() const
{
    return m_view && m_view->model() && m_row < m_view->model()->rowCount() &&
           m_column < m_view->model()->columnCount();
}

QModelIndex CAccessibleCell::index() const
{
    return isValid() && isCell() ? m_view->model()->index(m_row, m_column) : QModelIndex();
}

QWidget* CAccessibleCell::widget() const
{
    return isValid() && isCell() ? m_view->cellWidget(index()) : nullptr;
}

QWindow* CAccessibleCell::window() const
{
    return m_view ? m_view->window()->windowHandle() : nullptr;
}

QAccessibleInterface* CAccessibleCell::parent() const
{
    return QAccessible::queryAccessibleInterface(m_view.data());
}

QAccessibleInterface* CAccessibleCell::child(int index) const
{
    return index == 0 ? QAccessible::queryAccessibleInterface(widget()) : nullptr;
}

int CAccessibleCell::childCount() const
{
    return widget() ? 1 : 0;
}

int CAccessibleCell::indexOfChild(const QAccessibleInterface* iface) const
{
    return iface && iface->object() && iface->object() == widget() ? 0 : -1;
}

QAccessibleInterface* CAccessibleCell::childAt(int x, int y) const
{
    QAccessibleInterface* const inside = child(0);
    return inside && inside->rect().contains(x, y) ? inside : nullptr;
}

QString CAccessibleCell::text(QAccessible::Text kind) const
{
    if (!isValid() || (kind != QAccessible::Name && kind != QAccessible::Description)) {
        return {};
    }
    if (isColumnHeader()) {
        return kind == QAccessible::Name ? m_view->model()->headerData(m_column, Qt::Horizontal).toString()
                                         : m_view->columnState(m_column);
    }
    if (!isCell()) {
        return kind == QAccessible::Name && m_row >= 0 ? QCoreApplication::translate("WQ", "第%1行").arg(m_row + 1)
                                                       : QString();
    }
    if (kind == QAccessible::Description) {
        QStringList names = actionNames();
        return names.isEmpty() ? QString()
                               : QCoreApplication::translate("WQ", "按钮：%1")
                                     .arg(names.join(QCoreApplication::translate("WQ", "、")));
    }
    const QString spoken = index().data(Qt::AccessibleTextRole).toString();
    if (!spoken.isEmpty()) {
        return spoken;
    }
    const QWidget* const inside = widget();
    return inside ? inside->accessibleName() : index().data().toString();
}

QRect CAccessibleCell::rect() const
{
    if (!isValid()) {
        return {};
    }
    QRect place;
    const QWidget* viewport = m_view->viewport();
    if (isCell()) {
        place = m_view->visualRect(index());
    } else if (isColumnHeader()) {
        const QHeaderView& header = *m_view->horizontalHeader();
        viewport = header.viewport();
        place = {header.sectionViewportPosition(m_column), 0, header.sectionSize(m_column), header.height()};
    }
    return place.isNull() ? QRect() : QRect(viewport->mapToGlobal(place.topLeft()), place.size());
}

QAccessible::Role CAccessibleCell::role() const
{
    if (isCell()) {
        const auto* const button = qobject_cast<const QAbstractButton*>(widget());
        return button && button->isCheckable() ? QAccessible::CheckBox : QAccessible::Cell;
    }
    return isColumnHeader() ? QAccessible::ColumnHeader : m_row >= 0 ? QAccessible::RowHeader : QAccessible::Pane;
}

QAccessible::State CAccessibleCell::state() const
{
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    state.disabled = !m_view->isEnabled();
    state.invisible = rect().isEmpty();
    if (!isCell()) {
        return state;
    }
    state.selectable = state.focusable = true;
    state.selected = isSelected();
    state.focused = m_view->hasFocus() && m_view->currentIndex() == index();
    if (const auto* const button = qobject_cast<const QAbstractButton*>(widget())) {
        state.checkable = button->isCheckable();
        state.checked = button->isChecked();
    }
    return state;
}

void* CAccessibleCell::interface_cast(QAccessible::InterfaceType type)
{
    switch (type) {
    case QAccessible::TableCellInterface:
        return static_cast<QAccessibleTableCellInterface*>(this);
    case QAccessible::ActionInterface:
        return static_cast<QAccessibleActionInterface*>(this);
    default:
        return nullptr;
    }
}

bool CAccessibleCell::isSelected() const
{
    return isValid() && isCell() && m_view->selectionModel()->isSelected(index());
}

QList<QAccessibleInterface*> CAccessibleCell::columnHeaderCells() const
{
    QAccessibleInterface* const all = isCell() ? parent() : nullptr;
    return all ? QList<QAccessibleInterface*>{all->child(m_column + 1)} : QList<QAccessibleInterface*>();
}

TableActions CAccessibleCell::actions() const
{
    if (!isValid() || !m_view->isEnabled()) {
        return {};
    }
    return isCell()           ? m_view->cellActions(index())
           : isColumnHeader() ? m_view->columnActions(m_column)
                              : TableActions();
}

QStringList CAccessibleCell::actionNames() const
{
    QStringList names;
    for (const TableAction& action : actions()) {
        names << action.text;
    }
    return names;
}

void CAccessibleCell::doAction(const QString& name)
{
    const TableActions all = actions();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const TableAction& action) { return action.text == name; });
    if (found != all.end()) {
        found->run();
    }
}

} // namespace WQ
