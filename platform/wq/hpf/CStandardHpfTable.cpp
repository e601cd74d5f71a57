// SPDX-License-Identifier: Apache-2.0
#include <WQ/CStandardHpfTable.h>

#include "hpf/CHpfFilterPopup.h"
#include "hpf/CHpfHeader.h"
#include "hpf/CHpfTableView.h"
#include "hpf/HpfModelPrivate.h"
#include "hpf/HpfTablePrivate.h"
#include "tablekit/CTableFindBar.h"

#include <WQ/CBaseTableColumnDelegate.h>

#include <QCoreApplication>
#include <QVBoxLayout>

#include <algorithm>

namespace WQ
{

namespace
{

const QEvent::Type RequestEvent = static_cast<QEvent::Type>(QEvent::registerEventType());
constexpr int NarrowestFit = 64;
constexpr int WidestFit = 480;

} // namespace

IBaseTable::~IBaseTable() = default;

CStandardHpfTable::Private::Private(CStandardHpfTable& table, int id, int menu) : q(table), tableId(id), menuFlags(menu)
{
}

bool CStandardHpfTable::Private::hasColumn(int column) const
{
    return model && column >= 0 && column < model->columnCount();
}

void CStandardHpfTable::Private::request(bool repaint, bool fit)
{
    repaintWanted = repaintWanted || repaint;
    fitWanted = fitWanted || fit;
    if (requestPosted) {
        return;
    }
    requestPosted = true;
    // After the announcement of gathered rows, before anything else.
    QCoreApplication::postEvent(&q, new QEvent(RequestEvent), Qt::HighEventPriority - 1);
}

void CStandardHpfTable::Private::carryOutRequests()
{
    requestPosted = false;
    if (model) {
        model->announce();
    }
    if (fitWanted) {
        fitColumns();
    }
    if (repaintWanted) {
        view->viewport()->update();
    }
    fitWanted = repaintWanted = false;
}

void CStandardHpfTable::Private::fitColumns()
{
    // What will be on screen is known when the table is shown.
    fitWhenShown = !q.isVisible();
    for (int column : columns->visible()) {
        if (columns->hasChosenWidth(column) || model->isColumnWidthFixed(column)) {
            continue;
        }
        const int needed = std::max(view->header()->contentWidth(column), view->contentWidth(column));
        columns->fit(column, std::clamp(needed, NarrowestFit, WidestFit));
    }
}

std::vector<int> CStandardHpfTable::Private::listedColumns() const
{
    std::vector<int> listed = columns->visible();
    listed.erase(std::remove_if(listed.begin(), listed.end(),
                                [this](int c) { return model->getColumnEntry(c).kind == HpfColumnEntry::Empty; }),
                 listed.end());
    return listed;
}

CStandardHpfTable::CStandardHpfTable(int tableId, QWidget* parent, int menuFlags)
    : QWidget(parent), m_d(std::make_unique<Private>(*this, tableId, menuFlags))
{
    m_d->view = new CHpfTableView(*this);
    m_d->columns = std::make_unique<CTableColumns>(*m_d->view->header());
    m_d->findBar = new CTableFindBar(
        *m_d->view, {[this](const QString& text) { m_d->view->setFindText(text); },
                     [this](const QString& text, bool forward, bool stay) { return m_d->goTo(text, forward, stay); }});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_d->view, 1);
    layout->addWidget(m_d->findBar);
    setFocusProxy(m_d->view);
    m_d->createActions();

    CHpfHeader* header = m_d->view->header();
    connect(header, &CHpfHeader::sigSortRequested, this, [this](int column) { m_d->sortByHeader(column); });
    connect(m_d->columns.get(), &CTableColumns::sigVisibilityChanged, m_d->view, &CHpfTableView::columnsChanged);
    connect(m_d->columns.get(), &CTableColumns::sigShownByUser, this, &CStandardHpfTable::adjustColumnWidth);
    connect(header, &QHeaderView::sectionHandleDoubleClicked, this, [this](int column) {
        if (!(m_d->flags & TableResizableColumns)) {
            return;
        }
        m_d->columns->forgetWidth(column);
        adjustColumnWidth();
    });
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this, [this, header](const QPoint& position) {
        m_d->showMenu(header->viewport()->mapToGlobal(position), header->logicalIndexAt(position));
    });
    m_d->view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_d->view, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) {
        const QModelIndex index = m_d->view->indexAt(position);
        m_d->showMenu(m_d->view->viewport()->mapToGlobal(position),
                      index.isValid() ? index.column() : m_d->view->currentIndex().column());
    });
    connect(m_d->view, &CHpfTableView::sigFilterRequested, this, [this](int column) { m_d->openFilter(column); });
    connect(m_d->view, &CHpfTableView::sigSelectionChanged, this, &CStandardHpfTable::sigSelectionChanged);
    connect(m_d->view, &CHpfTableView::sigCurrentChanged, this, [this] {
        const QString key = currentKey();
        if (key == m_d->currentKey) {
            return;
        }
        m_d->currentKey = key;
        emit sigCurrentKeyChanged(key);
    });
    connect(m_d->view, &CHpfTableView::sigRowActivated, this, [this](const QModelIndex& index) {
        if (const IBaseHpfTableDataPtr record = m_d->model->getDataByRow(index.row())) {
            emit sigRowActivated(record->getKey());
        }
    });
    m_d->view->columnsChanged();
}

CStandardHpfTable::~CStandardHpfTable()
{
    // The view asks the table for its columns; it goes while they are still there.
    delete m_d->view;
}

int CStandardHpfTable::tableId() const
{
    return m_d->tableId;
}

int CStandardHpfTable::flags() const
{
    return m_d->flags;
}

void CStandardHpfTable::setFlags(int flags)
{
    m_d->flags = flags;
    m_d->view->columnsChanged();
    m_d->updateActions();
}

int CStandardHpfTable::menuFlags() const
{
    return m_d->menuFlags;
}

void CStandardHpfTable::setDataModel(IBaseHpfTableModel* model)
{
    if (model == m_d->model) {
        return;
    }
    delete m_d->popup;
    const QPointer<IBaseHpfTableModel> old = m_d->model;
    for (auto& [column, delegate] : m_d->delegates) {
        delete delegate;
    }
    m_d->delegates.clear();
    m_d->filterable.clear();
    m_d->columns->reset();
    m_d->model = model;
    if (model) {
        model->setParent(this);
    }
    m_d->view->setHpfModel(model);
    delete old;
    m_d->currentKey.clear();
    if (!model) {
        return;
    }
    connect(model, &IBaseHpfTableModel::sigFilterChanged, this, [this] { m_d->updateActions(); });
    connect(model, &IBaseHpfTableModel::sigSortChanged, this, [this] { m_d->updateActions(); });
    connect(model, &IBaseHpfTableModel::sigCleared, this, [this] {
        if (m_d->currentKey.isEmpty()) {
            return;
        }
        m_d->currentKey.clear();
        emit sigCurrentKeyChanged({});
    });
    m_d->updateActions();
    adjustColumnWidth();
}

IBaseHpfTableModel* CStandardHpfTable::dataModel() const
{
    return m_d->model;
}

void CStandardHpfTable::setColumnFilterable(int column, bool filterable)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    if (filterable) {
        m_d->filterable.insert(column);
    } else {
        m_d->filterable.erase(column);
    }
    m_d->view->columnsChanged();
}

bool CStandardHpfTable::isColumnFilterable(int column) const
{
    return m_d->filterable.count(column) != 0;
}

void CStandardHpfTable::setColumnDelegate(int column, CBaseTableColumnDelegate* delegate)
{
    if (!m_d->hasColumn(column) || columnDelegate(column) == delegate) {
        return;
    }
    CBaseTableColumnDelegate* old = columnDelegate(column);
    m_d->delegates.erase(column);
    HpfModelPrivate::of(*m_d->model).delegates.erase(column);
    if (delegate) {
        delegate->setParent(this);
        delegate->m_table = this;
        m_d->delegates[column] = delegate;
        HpfModelPrivate::of(*m_d->model).delegates[column] = delegate;
    }
    delete old;
    m_d->view->columnsChanged();
}

CBaseTableColumnDelegate* CStandardHpfTable::columnDelegate(int column) const
{
    const auto found = m_d->delegates.find(column);
    return found == m_d->delegates.end() ? nullptr : found->second;
}

void CStandardHpfTable::setColumnVisible(int column, bool visible)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    m_d->columns->setVisible(column, visible);
}

bool CStandardHpfTable::isColumnVisible(int column) const
{
    return m_d->hasColumn(column) && m_d->columns->isVisible(column);
}

void CStandardHpfTable::setColumnWidth(int column, int width)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    m_d->columns->setWidth(column, width);
}

int CStandardHpfTable::columnWidth(int column) const
{
    return m_d->hasColumn(column) ? m_d->columns->width(column) : 0;
}

void CStandardHpfTable::removeColumn(int column)
{
    if (!m_d->hasColumn(column)) {
        return;
    }
    m_d->columns->remove(column);
}

bool CStandardHpfTable::isColumnRemoved(int column) const
{
    return m_d->columns->isRemoved(column);
}

void CStandardHpfTable::filterColumn(int column, const FilterPair& filter)
{
    if (m_d->model) {
        m_d->model->filterColumn(column, filter);
    }
}

void CStandardHpfTable::clearFilter()
{
    if (m_d->model) {
        m_d->model->clearFilter();
    }
}

void CStandardHpfTable::sortByColumn(int column, Qt::SortOrder order)
{
    if (m_d->model) {
        m_d->model->sort(column, order);
    }
}

void CStandardHpfTable::clearSort()
{
    if (m_d->model) {
        m_d->model->clearSort();
    }
}

void CStandardHpfTable::updateTable()
{
    m_d->request(true, false);
}

void CStandardHpfTable::adjustColumnWidth()
{
    m_d->request(false, true);
}

bool CStandardHpfTable::event(QEvent* event)
{
    if (event->type() == RequestEvent) {
        m_d->carryOutRequests();
        return true;
    }
    if (event->type() == QEvent::Show && m_d->fitWhenShown) {
        adjustColumnWidth();
    }
    return QWidget::event(event);
}

QAbstractItemView* CStandardHpfTable::view() const
{
    return m_d->view;
}

QHeaderView* CStandardHpfTable::header() const
{
    return m_d->view->header();
}

} // namespace WQ
