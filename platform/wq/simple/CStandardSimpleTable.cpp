// SPDX-License-Identifier: Apache-2.0
#include <WQ/CStandardSimpleTable.h>

#include "SimpleTablePrivate.h"
#include "tablekit/CTableFindBar.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QVBoxLayout>

namespace WQ
{

CStandardSimpleTable::CStandardSimpleTable(int tableId, QWidget* parent)
    : QWidget(parent), m_d(std::make_unique<Private>(*this, tableId))
{
    CSimpleTableView* const view = m_d->view;
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view, 1);
    setFocusProxy(view);
    view->setEmptyText(QStringLiteral("暂无数据"));
    view->setRowHeights(28);
    m_d->header().setFixedHeight(m_d->headerHeight);
    m_d->createActions();
    m_d->applyFlags();

    connect(view, &CSimpleTableView::sigFitColumns, this, [this] {
        m_d->fitColumns();
        m_d->showSorting();
        m_d->nameView();
    });
    connect(view, &CSimpleTableView::sigActivated, this, &CStandardSimpleTable::sigRowActivated);
    connect(view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &CStandardSimpleTable::sigSelectionChanged);
    connect(&m_d->header(), &QHeaderView::sectionClicked, this, [this](int column) { m_d->sortByHeader(column); });
    connect(&m_d->columns, &CTableColumns::sigVisibilityChanged, this, &CStandardSimpleTable::adjustTableSize);
    connect(&m_d->header(), &QHeaderView::sectionHandleDoubleClicked, this, [this](int column) {
        m_d->columns.forgetWidth(column);
        adjustTableSize();
    });
}

CStandardSimpleTable::~CStandardSimpleTable()
{
    disconnect(m_d->view->selectionModel(), nullptr, this, nullptr);
    // The find line, the view and the cell widgets go while what they refer to is still there.
    delete m_d->findBar;
    delete m_d->view;
}

int CStandardSimpleTable::tableId() const
{
    return m_d->tableId;
}

int CStandardSimpleTable::flags() const
{
    return m_d->flags;
}

void CStandardSimpleTable::setFlags(int flags)
{
    if (flags == m_d->flags) {
        return;
    }
    m_d->flags = flags;
    m_d->applyFlags();
}

void CStandardSimpleTable::setColumnCount(int count)
{
    if (count == columnCount() || count < 0) {
        return;
    }
    clear();
    m_d->view->rows().setColumns(count);
    m_d->columns.reset();
    m_d->view->requestFit();
}

int CStandardSimpleTable::columnCount() const
{
    return m_d->view->rows().columnCount();
}

void CStandardSimpleTable::setHeaderText(int column, const QString& text)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    m_d->view->rows().setHeader(column, text);
    m_d->view->requestFit();
}

QString CStandardSimpleTable::headerText(int column) const
{
    return m_d->hasColumn(column) ? m_d->view->rows().column(column).header : QString();
}

void CStandardSimpleTable::setHeaderHeight(int height)
{
    m_d->headerHeight = qMax(0, height);
    m_d->header().setFixedHeight(m_d->headerHeight);
}

void CStandardSimpleTable::setRowHeight(int height)
{
    m_d->view->setRowHeights(qMax(8, height));
}

int CStandardSimpleTable::headerHeight() const
{
    return m_d->headerHeight;
}

int CStandardSimpleTable::rowHeight() const
{
    return m_d->view->verticalHeader()->defaultSectionSize();
}

void CStandardSimpleTable::setColumnAlignment(int column, int alignment)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    m_d->view->rows().setAlignment(column, alignment);
    m_d->view->viewport()->update();
}

void CStandardSimpleTable::adjustTableSize()
{
    m_d->view->requestFit();
}

int CStandardSimpleTable::appendRow()
{
    m_d->endSorting();
    const int rowId = m_d->view->rows().appendRow();
    m_d->view->requestFit();
    return rowId;
}

void CStandardSimpleTable::removeRow(int rowId)
{
    // The widgets first: one that has the keyboard focus gives it to the table.
    if (!hasRow(rowId)) {
        return;
    }
    m_d->view->cells().removeRow(rowId);
    m_d->view->rows().removeRowId(rowId);
    m_d->view->requestSync();
}

void CStandardSimpleTable::clear()
{
    m_d->endSorting();
    m_d->view->cells().clear();
    m_d->view->rows().clear();
    m_d->view->requestSync();
}

int CStandardSimpleTable::rowCount() const
{
    return m_d->view->rows().order().count();
}

int CStandardSimpleTable::rowID(int index) const
{
    return m_d->view->rows().order().idAt(index);
}

int CStandardSimpleTable::rowIndex(int rowId) const
{
    return m_d->view->rows().order().indexOf(rowId);
}

void CStandardSimpleTable::setItemText(int rowId, int column, const QString& text, bool update)
{
    if (!m_d->view->rows().setText(rowId, column, text)) {
        return;
    }
    if (column == m_d->sortColumn) {
        m_d->endSorting();
    }
    m_d->requestRepaint(update);
}

QString CStandardSimpleTable::itemText(int rowId, int column) const
{
    return m_d->view->rows().text(rowId, column);
}

void CStandardSimpleTable::setItemColorKey(int rowId, int column, const QString& key)
{
    m_d->view->rows().setColorKey(rowId, column, key);
    m_d->requestRepaint(true);
}

void CStandardSimpleTable::setItemWidget(int rowId, int column, QWidget* widget, int alignment, bool update)
{
    if (!m_d->hasCell(rowId, column)) {
        // It was handed over; there is no cell that could own it.
        if (widget) {
            widget->deleteLater();
        }
        return;
    }
    m_d->view->cells().set(rowId, column, widget, WidgetFactory(), alignment);
    if (widget) {
        m_d->view->rows().setHeaderAlignment(column, alignment);
    }
    if (update) {
        m_d->view->requestFit();
    }
}

void CStandardSimpleTable::setItemWidget(int rowId, int column, WidgetFactory factory, int alignment, bool update)
{
    if (!m_d->hasCell(rowId, column)) {
        return;
    }
    m_d->view->cells().set(rowId, column, nullptr, std::move(factory), alignment);
    m_d->view->rows().setHeaderAlignment(column, alignment);
    if (update) {
        m_d->view->requestFit();
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
    std::set<int> rows;
    for (const QItemSelectionRange& range : m_d->view->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.insert(rows.end(), row);
        }
    }
    QVector<int> ids;
    ids.reserve(int(rows.size()));
    for (const int row : rows) {
        ids << m_d->view->rows().idOfRow(row);
    }
    return ids;
}

void CStandardSimpleTable::setRowSelected(int rowId, bool selected)
{
    m_d->view->sync();
    const CSimpleTableModel& rows = m_d->view->rows();
    const int row = rows.rowOfId(rowId);
    if (row < 0 || columnCount() == 0) {
        return;
    }
    m_d->view->selectionModel()->select(QItemSelection(rows.index(row, 0), rows.index(row, columnCount() - 1)),
                                        selected ? QItemSelectionModel::Select : QItemSelectionModel::Deselect);
}

void CStandardSimpleTable::clearSelection()
{
    m_d->view->sync();
    m_d->view->clearSelection();
}

int CStandardSimpleTable::currentRow() const
{
    m_d->view->sync();
    return m_d->view->rows().idOfRow(m_d->view->currentIndex().row());
}

void CStandardSimpleTable::setCurrentRow(int rowId, int column)
{
    m_d->view->sync();
    m_d->view->goTo(rowId, column);
}

void CStandardSimpleTable::setEmptyText(const QString& text)
{
    m_d->view->setEmptyText(text);
}

bool CStandardSimpleTable::exportCsv(const QString& fileName, QString* error) const
{
    m_d->view->sync();
    return WQ::exportCsv(m_d->texts(), fileName, error);
}

QString CStandardSimpleTable::selectedText(bool withHeader) const
{
    m_d->view->sync();
    return tabSeparated(m_d->texts(), m_d->view->selectionModel()->selection(), withHeader);
}

QAbstractItemView* CStandardSimpleTable::view() const
{
    m_d->view->sync();
    return m_d->view;
}

QHeaderView* CStandardSimpleTable::header() const
{
    return &m_d->header();
}

QSize CStandardSimpleTable::sizeHint() const
{
    return QSize(400, m_d->headerHeight + 8 * rowHeight());
}

} // namespace WQ
