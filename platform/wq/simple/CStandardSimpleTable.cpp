// SPDX-License-Identifier: Apache-2.0
#include <WQ/CStandardSimpleTable.h>

#include "simple/CSimpleTableKit.h"

#include <QCoreApplication>
#include <QHeaderView>

namespace WQ
{

struct CStandardSimpleTable::Private {
    Private(CStandardSimpleTable& table, int id)
        : view(new CSimpleTableView(&table)), kit(table, *view, id), rows(view->rows())
    {
    }

    bool hasColumn(int column) const { return column >= 0 && column < rows.columnCount(); }
    bool hasCell(int rowId, int column) const { return hasColumn(column) && rows.order().contains(rowId); }
    void setWidget(int rowId, int column, QWidget* widget, WidgetFactory factory, int alignment, bool update);

    CSimpleTableView* const view;
    CSimpleTableKit kit;
    CSimpleTableModel& rows;
    int headerHeight = 28;
};

void CStandardSimpleTable::Private::setWidget(int rowId, int column, QWidget* widget, WidgetFactory factory,
                                              int alignment, bool update)
{
    if (widget || factory) {
        rows.setHeaderAlignment(column, alignment);
    }
    view->cells().set(rowId, column, widget, std::move(factory), alignment);
    if (update) {
        view->requestFit();
    }
}

CStandardSimpleTable::CStandardSimpleTable(int tableId, QWidget* parent)
    : QWidget(parent), m_d(std::make_unique<Private>(*this, tableId))
{
    CSimpleTableView* const view = m_d->view;
    header()->setFixedHeight(m_d->headerHeight);
    m_d->kit.setFlags(TableDefaultFlags);
    connect(view, &CSimpleTableView::sigFitColumns, this, [this] { m_d->kit.fitColumns(); });
    connect(view, &CTableView::sigActivated, this,
            [this](const QModelIndex& index) { emit sigRowActivated(m_d->rows.idOfRow(index.row())); });
    connect(view, &CTableView::sigSelectionChanged, this, &CStandardSimpleTable::sigSelectionChanged);
}

CStandardSimpleTable::~CStandardSimpleTable()
{
    // The view and the cell widgets go while what they refer to is still there, and report nothing.
    m_d->view->disconnect(this);
    delete m_d->view;
}

int CStandardSimpleTable::tableId() const
{
    return m_d->kit.tableId();
}

int CStandardSimpleTable::flags() const
{
    return m_d->view->flags();
}

void CStandardSimpleTable::setFlags(int flags)
{
    m_d->kit.setFlags(flags);
}

void CStandardSimpleTable::setColumnCount(int count)
{
    if (count == columnCount() || count < 0) {
        return;
    }
    clear();
    m_d->rows.setColumns(count);
    m_d->kit.columns().reset();
    m_d->view->columnsChanged();
    m_d->view->requestFit();
}

int CStandardSimpleTable::columnCount() const
{
    return m_d->rows.columnCount();
}

void CStandardSimpleTable::setHeaderText(int column, const QString& text)
{
    if (m_d->hasColumn(column)) {
        m_d->rows.setHeader(column, text);
        m_d->view->requestFit();
    }
}

QString CStandardSimpleTable::headerText(int column) const
{
    return m_d->hasColumn(column) ? m_d->rows.column(column).header : QString();
}

void CStandardSimpleTable::setHeaderHeight(int height)
{
    m_d->headerHeight = qMax(0, height);
    header()->setFixedHeight(m_d->headerHeight);
    m_d->view->columnsChanged();
}

void CStandardSimpleTable::setRowHeight(int height)
{
    m_d->view->setRowHeight(qMax(8, height));
}

int CStandardSimpleTable::headerHeight() const
{
    return m_d->headerHeight;
}

int CStandardSimpleTable::rowHeight() const
{
    return m_d->view->rowHeight();
}

void CStandardSimpleTable::setColumnVisible(int column, bool visible)
{
    m_d->kit.columns().setVisible(column, visible);
}

bool CStandardSimpleTable::isColumnVisible(int column) const
{
    return m_d->kit.columns().isVisible(column);
}

void CStandardSimpleTable::setColumnWidth(int column, int width)
{
    m_d->kit.columns().setWidth(column, width);
    m_d->view->requestFit();
}

int CStandardSimpleTable::columnWidth(int column) const
{
    m_d->view->sync();
    return m_d->kit.columns().width(column);
}

void CStandardSimpleTable::setColumnAlignment(int column, int alignment)
{
    if (m_d->hasColumn(column)) {
        m_d->rows.setAlignment(column, alignment);
        m_d->view->viewport()->update();
    }
}

void CStandardSimpleTable::adjustTableSize()
{
    m_d->view->requestFit();
}

int CStandardSimpleTable::appendRow()
{
    m_d->kit.endSorting();
    m_d->view->requestFit();
    return m_d->rows.appendRow();
}

void CStandardSimpleTable::removeRow(int rowId)
{
    if (!hasRow(rowId)) {
        return;
    }
    // The widgets first: one that has the keyboard focus gives it to the table.
    m_d->view->cells().removeRow(rowId);
    m_d->rows.removeRowId(rowId);
    m_d->view->requestSync();
}

void CStandardSimpleTable::clear()
{
    m_d->kit.endSorting();
    m_d->view->cells().clear();
    m_d->rows.clear();
    m_d->view->requestSync();
}

int CStandardSimpleTable::rowCount() const
{
    return m_d->rows.order().count();
}

int CStandardSimpleTable::rowID(int index) const
{
    return m_d->rows.order().idAt(index);
}

int CStandardSimpleTable::rowIndex(int rowId) const
{
    return m_d->rows.order().indexOf(rowId);
}

void CStandardSimpleTable::setItemText(int rowId, int column, const QString& text, bool update)
{
    if (!m_d->rows.setText(rowId, column, text)) {
        return;
    }
    if (column == m_d->kit.sortColumn()) {
        m_d->kit.endSorting();
    }
    if (update) {
        m_d->view->viewport()->update();
    }
}

QString CStandardSimpleTable::itemText(int rowId, int column) const
{
    return m_d->rows.text(rowId, column);
}

void CStandardSimpleTable::setItemColorKey(int rowId, int column, const QString& key)
{
    m_d->rows.setColorKey(rowId, column, key);
    m_d->view->viewport()->update();
}

void CStandardSimpleTable::setItemWidget(int rowId, int column, QWidget* widget, int alignment, bool update)
{
    if (m_d->hasCell(rowId, column)) {
        m_d->setWidget(rowId, column, widget, {}, alignment, update);
    } else if (widget) {
        widget->deleteLater(); // it was handed over; there is no cell that could own it
    }
}

void CStandardSimpleTable::setItemWidget(int rowId, int column, WidgetFactory factory, int alignment, bool update)
{
    if (m_d->hasCell(rowId, column)) {
        m_d->setWidget(rowId, column, nullptr, std::move(factory), alignment, update);
    }
}

QWidget* CStandardSimpleTable::itemWidget(int rowId, int column) const
{
    return m_d->hasCell(rowId, column) ? m_d->view->cells().widget(rowId, column) : nullptr;
}

void CStandardSimpleTable::updateTable()
{
    m_d->view->requestFit();
    m_d->view->viewport()->update();
}

QVector<int> CStandardSimpleTable::selectedRows() const
{
    m_d->view->sync();
    QVector<int> ids;
    for (const int row : m_d->view->selectedRowNumbers()) {
        ids << m_d->rows.idOfRow(row);
    }
    return ids;
}

void CStandardSimpleTable::setRowSelected(int rowId, bool selected)
{
    m_d->view->sync();
    const CSimpleTableModel& rows = m_d->rows;
    const int row = rows.rowOfId(rowId);
    if (row >= 0 && columnCount() > 0) {
        m_d->view->selectionModel()->select(QItemSelection(rows.index(row, 0), rows.index(row, columnCount() - 1)),
                                            selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
    }
}

void CStandardSimpleTable::clearSelection()
{
    m_d->view->sync();
    m_d->view->clearSelection();
}

int CStandardSimpleTable::currentRow() const
{
    m_d->view->sync();
    return m_d->rows.idOfRow(m_d->view->currentIndex().row());
}

void CStandardSimpleTable::setCurrentRow(int rowId, int column)
{
    m_d->view->sync();
    const int row = m_d->rows.rowOfId(rowId);
    if (row >= 0) {
        const QModelIndex index = m_d->rows.index(row, qBound(0, column, columnCount() - 1));
        m_d->view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        m_d->view->scrollTo(index);
    }
}

void CStandardSimpleTable::setEmptyText(const QString& text)
{
    m_d->view->setEmptyText(text);
}

void CStandardSimpleTable::sortByColumn(int column, Qt::SortOrder order)
{
    if (column >= 0) {
        m_d->kit.sort(column, order);
    }
}

void CStandardSimpleTable::clearSort()
{
    m_d->kit.sort(-1, Qt::AscendingOrder);
}

QString CStandardSimpleTable::saveConfigStr() const
{
    return m_d->kit.saveConfig();
}

bool CStandardSimpleTable::loadConfigStr(const QString& config)
{
    return m_d->kit.loadConfig(config);
}

bool CStandardSimpleTable::exportCsv(const QString& fileName, QString* error) const
{
    return m_d->kit.exportCsv(fileName, error);
}

QString CStandardSimpleTable::selectedText(bool withHeader) const
{
    return m_d->kit.selectedText(withHeader);
}

QAbstractItemView* CStandardSimpleTable::view() const
{
    m_d->view->sync();
    return m_d->view;
}

QHeaderView* CStandardSimpleTable::header() const
{
    return m_d->view->horizontalHeader();
}

QSize CStandardSimpleTable::sizeHint() const
{
    return QSize(400, m_d->headerHeight + 8 * rowHeight());
}

} // namespace WQ
