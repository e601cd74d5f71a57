// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CAccessibleTable.h"

#include "tablekit/CAccessibleCell.h"
#include "tablekit/CTableView.h"

#include <QHeaderView>
#include <QItemSelectionModel>

namespace WQ
{

namespace
{

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* const view = qobject_cast<CTableView*>(object);
    return view ? new CAccessibleTable(*view) : nullptr;
}

} // namespace

void CAccessibleTable::install()
{
    static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    Q_UNUSED(installed)
}

CAccessibleTable::CAccessibleTable(CTableView& view) : QAccessibleWidget(&view, QAccessible::Table), m_view(view) {}

CAccessibleTable::~CAccessibleTable()
{
    forgetChildren();
}

void CAccessibleTable::forgetChildren()
{
    for (const auto& [index, id] : m_children) {
        QAccessible::deleteAccessibleInterface(id);
    }
    m_children.clear();
}

int CAccessibleTable::rowCount() const
{
    return m_view.model() ? m_view.model()->rowCount() : 0;
}

int CAccessibleTable::columnCount() const
{
    return m_view.model() ? m_view.model()->columnCount() : 0;
}

int CAccessibleTable::childCount() const
{
    return m_view.model() ? (rowCount() + 1) * (columnCount() + 1) : 0;
}

QAccessibleInterface* CAccessibleTable::child(int index) const
{
    if (index < 0 || index >= childCount()) {
        return nullptr;
    }
    const auto known = m_children.find(index);
    if (known != m_children.end()) {
        return QAccessible::accessibleInterface(known->second);
    }
    const int width = columnCount() + 1;
    auto* const cell = new CAccessibleCell(m_view, index / width - 1, index % width - 1);
    m_children[index] = QAccessible::registerAccessibleInterface(cell);
    return cell;
}

QAccessibleInterface* CAccessibleTable::cellAt(int row, int column) const
{
    const bool exists = row >= 0 && row < rowCount() && column >= 0 && column < columnCount();
    return exists ? child((row + 1) * (columnCount() + 1) + column + 1) : nullptr;
}

QAccessibleInterface* CAccessibleTable::childAt(int x, int y) const
{
    const QHeaderView& header = *m_view.horizontalHeader();
    const QPoint inHeader = header.viewport()->mapFromGlobal(QPoint(x, y));
    if (header.isVisible() && header.viewport()->rect().contains(inHeader)) {
        const int column = header.logicalIndexAt(inHeader);
        return column < 0 ? nullptr : child(column + 1);
    }
    const QModelIndex index = m_view.indexAt(m_view.viewport()->mapFromGlobal(QPoint(x, y)));
    return cellAt(index.row(), index.column());
}

QAccessibleInterface* CAccessibleTable::focusChild() const
{
    const QModelIndex current = m_view.currentIndex();
    return cellAt(current.row(), current.column());
}

int CAccessibleTable::indexOfChild(const QAccessibleInterface* iface) const
{
    const auto* const cell = dynamic_cast<const CAccessibleCell*>(iface);
    return cell ? (cell->row() + 1) * (columnCount() + 1) + cell->column() + 1 : -1;
}

void* CAccessibleTable::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface*>(this)
                                               : QAccessibleWidget::interface_cast(type);
}

QString CAccessibleTable::columnDescription(int column) const
{
    return m_view.model() ? m_view.model()->headerData(column, Qt::Horizontal).toString() : QString();
}

QString CAccessibleTable::rowDescription(int row) const
{
    return QString::number(row + 1);
}

int CAccessibleTable::selectedCellCount() const
{
    return selectedCells().size();
}

QList<QAccessibleInterface*> CAccessibleTable::selectedCells() const
{
    QList<QAccessibleInterface*> cells;
    for (const int row : m_view.selectedRowNumbers()) {
        for (int column = 0; column < columnCount(); ++column) {
            if (m_view.selectionModel()->isSelected(m_view.model()->index(row, column))) {
                cells << cellAt(row, column);
            }
        }
    }
    return cells;
}

int CAccessibleTable::selectedRowCount() const
{
    return static_cast<int>(m_view.selectedRowNumbers().size());
}

QList<int> CAccessibleTable::selectedRows() const
{
    const std::set<int> rows = m_view.selectedRowNumbers();
    return {rows.begin(), rows.end()};
}

bool CAccessibleTable::isRowSelected(int row) const
{
    return m_view.selectedRowNumbers().count(row) > 0;
}

bool CAccessibleTable::selectRow(int row)
{
    if (row < 0 || row >= rowCount()) {
        return false;
    }
    m_view.goTo(m_view.model()->index(row, 0));
    m_view.selectionModel()->select(m_view.model()->index(row, 0),
                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
    return true;
}

bool CAccessibleTable::unselectRow(int row)
{
    if (row < 0 || row >= rowCount()) {
        return false;
    }
    m_view.selectionModel()->select(m_view.model()->index(row, 0),
                                    QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    return true;
}

void CAccessibleTable::modelChange(QAccessibleTableModelChangeEvent*)
{
    forgetChildren();
}

} // namespace WQ
