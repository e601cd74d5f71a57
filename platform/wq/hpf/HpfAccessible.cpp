// SPDX-License-Identifier: Apache-2.0
#include "hpf/HpfAccessible.h"

#include "hpf/CHpfTableView.h"

#include <WQ/IBaseHpfTableModel.h>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

namespace WQ
{

namespace
{

/// A cell by its place; made when it is asked for.
class CAccessibleCell : public QAccessibleInterface, public QAccessibleTableCellInterface
{
public:
    CAccessibleCell(CHpfTableView* view, int row, int column) : m_view(view), m_row(row), m_column(column) {}

    bool isValid() const override { return index().isValid(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return m_view ? m_view->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_view); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Cell; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override
    {
        if (kind != QAccessible::Name) {
            return {};
        }
        const QString text = index().data(Qt::AccessibleTextRole).toString();
        return text.isEmpty() ? index().data(Qt::DisplayRole).toString() : text;
    }

    QRect rect() const override
    {
        if (!isValid()) {
            return {};
        }
        const QRect cell = m_view->visualRect(index());
        return {m_view->viewport()->mapToGlobal(cell.topLeft()), cell.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid) {
            return state;
        }
        state.selectable = state.focusable = true;
        state.selected = isSelected();
        state.focused = m_view->hasFocus() && m_view->currentIndex() == index();
        const QRect cell = m_view->visualRect(index());
        state.invisible = cell.isEmpty();
        state.offscreen = !m_view->viewport()->rect().intersects(cell);
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableCellInterface ? static_cast<QAccessibleTableCellInterface*>(this) : nullptr;
    }

    bool isSelected() const override { return isValid() && m_view->selectionModel()->isSelected(index()); }
    QList<QAccessibleInterface*> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return m_column; }
    int rowIndex() const override { return m_row; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

private:
    QModelIndex index() const
    {
        return m_view && m_view->model() ? m_view->model()->index(m_row, m_column) : QModelIndex();
    }

    QPointer<CHpfTableView> m_view;
    const int m_row;
    const int m_column;
};

class CAccessibleTable : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit CAccessibleTable(CHpfTableView* view) : QAccessibleWidget(view, QAccessible::Table) {}
    ~CAccessibleTable() override { forgetCells(); }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    int childCount() const override { return rowCount() * columnCount(); }
    QAccessibleInterface* child(int number) const override
    {
        return columnCount() == 0 ? nullptr : cellAt(number / columnCount(), number % columnCount());
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        const auto* cell = dynamic_cast<const CAccessibleCell*>(child);
        return cell ? cell->rowIndex() * columnCount() + cell->columnIndex() : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        const QModelIndex index = view()->indexAt(view()->viewport()->mapFromGlobal({x, y}));
        return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        const QModelIndex current = view()->currentIndex();
        return current.isValid() ? cellAt(current.row(), current.column()) : nullptr;
    }

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    QAccessibleInterface* cellAt(int row, int column) const override
    {
        if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount()) {
            return nullptr;
        }
        QAccessible::Id& id = m_cells[row * columnCount() + column];
        if (id == 0) {
            id = QAccessible::registerAccessibleInterface(new CAccessibleCell(view(), row, column));
        }
        return QAccessible::accessibleInterface(id);
    }
    int selectedCellCount() const override { return view()->selectionModel()->selectedIndexes().size(); }
    QList<QAccessibleInterface*> selectedCells() const override
    {
        QList<QAccessibleInterface*> cells;
        const QModelIndexList selected = view()->selectionModel()->selectedIndexes();
        for (const QModelIndex& index : selected) {
            cells.append(cellAt(index.row(), index.column()));
        }
        return cells;
    }
    QString columnDescription(int column) const override
    {
        return view()->model() ? view()->model()->headerData(column, Qt::Horizontal).toString() : QString();
    }
    QString rowDescription(int row) const override { return QString::number(row + 1); }
    int selectedColumnCount() const override { return selectedColumns().size(); }
    int selectedRowCount() const override { return selectedRows().size(); }
    int columnCount() const override { return view()->model() ? view()->model()->columnCount() : 0; }
    int rowCount() const override { return view()->model() ? view()->model()->rowCount() : 0; }
    QList<int> selectedColumns() const override
    {
        QList<int> columns;
        for (int column = 0; column < columnCount(); ++column) {
            if (isColumnSelected(column)) {
                columns.append(column);
            }
        }
        return columns;
    }
    QList<int> selectedRows() const override
    {
        QList<int> rows;
        const QModelIndexList selected = view()->selectionModel()->selectedRows();
        for (const QModelIndex& index : selected) {
            rows.append(index.row());
        }
        return rows;
    }
    bool isColumnSelected(int column) const override { return view()->selectionModel()->isColumnSelected(column, {}); }
    bool isRowSelected(int row) const override { return view()->selectionModel()->isRowSelected(row, {}); }
    bool selectRow(int row) override { return select(row, QItemSelectionModel::ClearAndSelect); }
    bool unselectRow(int row) override { return select(row, QItemSelectionModel::Deselect); }
    bool selectColumn(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent*) override { forgetCells(); }

private:
    CHpfTableView* view() const { return static_cast<CHpfTableView*>(widget()); }

    bool select(int row, QItemSelectionModel::SelectionFlags how) const
    {
        if (!view()->isEnabled() || row < 0 || row >= rowCount()) {
            return false;
        }
        view()->selectionModel()->select(view()->model()->index(row, 0), how | QItemSelectionModel::Rows);
        return true;
    }

    void forgetCells()
    {
        for (QAccessible::Id id : qAsConst(m_cells)) {
            QAccessible::deleteAccessibleInterface(id);
        }
        m_cells.clear();
    }

    mutable QHash<int, QAccessible::Id> m_cells;
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    auto* view = className == QLatin1String("WQ::CHpfTableView") ? qobject_cast<CHpfTableView*>(object) : nullptr;
    return view ? new CAccessibleTable(view) : nullptr;
}

} // namespace

void installTableAccessibility()
{
    QAccessible::installFactory(makeInterface);
}

} // namespace WQ
