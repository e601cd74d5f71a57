// SPDX-License-Identifier: Apache-2.0
#include <WQ/CStandardHpfTable.h>

#include "hpf/CHpfHeader.h"
#include "hpf/CHpfTableKit.h"
#include "hpf/CHpfTableView.h"
#include "hpf/HpfModelPrivate.h"

#include <WQ/CBaseTableColumnDelegate.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QCoreApplication>

#include <map>
#include <set>

namespace WQ
{

namespace
{

const QEvent::Type RequestEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

} // namespace

struct CStandardHpfTable::Private {
    Private(CStandardHpfTable& table, int id, int menuFlags)
        : q(table), view(new CHpfTableView(table)), kit(table, *view, id, menuFlags)
    {
    }

    IBaseHpfTableModel* model() const { return view->hpfModel(); }
    bool hasColumn(int column) const { return model() && column >= 0 && column < model()->columnCount(); }
    void request(bool repaint, bool fit);
    void carryOutRequests();
    void announceCurrentKey(const QString& key);

    CStandardHpfTable& q;
    CHpfTableView* const view;
    CHpfTableKit kit;
    std::set<int> filterable;
    std::map<int, CBaseTableColumnDelegate*> delegates;
    QString currentKey;

    bool requestPosted = false;
    bool repaintWanted = false;
    bool fitWanted = false;
    bool fitWhenShown = false;
};

void CStandardHpfTable::Private::request(bool repaint, bool fit)
{
    repaintWanted = repaintWanted || repaint;
    fitWanted = fitWanted || fit;
    if (!requestPosted) {
        requestPosted = true;
        // After the announcement of gathered rows, before anything else.
        QCoreApplication::postEvent(&q, new QEvent(RequestEvent), Qt::HighEventPriority - 1);
    }
}

void CStandardHpfTable::Private::carryOutRequests()
{
    requestPosted = false;
    view->sync();
    if (fitWanted) {
        // What will be on screen is known when the table is shown.
        fitWhenShown = !q.isVisible();
        kit.fitColumns();
    }
    if (repaintWanted) {
        view->viewport()->update();
    }
    fitWanted = repaintWanted = false;
}

void CStandardHpfTable::Private::announceCurrentKey(const QString& key)
{
    if (key != currentKey) {
        currentKey = key;
        emit q.sigCurrentKeyChanged(key);
    }
}

CStandardHpfTable::CStandardHpfTable(int tableId, QWidget* parent, int menuFlags)
    : QWidget(parent), m_d(std::make_unique<Private>(*this, tableId, menuFlags))
{
    CHpfTableView* const view = m_d->view;
    connect(view, &CHpfTableView::sigFilterRequested, this, [this](int column) { m_d->kit.openFilter(column); });
    connect(view, &CTableView::sigSelectionChanged, this, &CStandardHpfTable::sigSelectionChanged);
    connect(view, &CTableView::sigCurrentChanged, this, [this] { m_d->announceCurrentKey(currentKey()); });
    connect(view, &CTableView::sigActivated, this, [this](const QModelIndex& index) {
        if (const IBaseHpfTableDataPtr record = m_d->model()->getDataByRow(index.row())) {
            emit sigRowActivated(record->getKey());
        }
    });
    m_d->kit.setFlags(TableDefaultFlags);
}

CStandardHpfTable::~CStandardHpfTable()
{
    // The view asks the table for its columns; it goes while they are still there.
    delete m_d->view;
}

int CStandardHpfTable::tableId() const
{
    return m_d->kit.tableId();
}

int CStandardHpfTable::flags() const
{
    return m_d->view->flags();
}

void CStandardHpfTable::setFlags(int flags)
{
    m_d->kit.setFlags(flags);
}

int CStandardHpfTable::menuFlags() const
{
    return m_d->kit.menuFlags();
}

void CStandardHpfTable::setDataModel(IBaseHpfTableModel* model)
{
    if (model == m_d->model()) {
        return;
    }
    m_d->kit.closeFilter();
    const QPointer<IBaseHpfTableModel> old = m_d->model();
    for (auto& [column, delegate] : m_d->delegates) {
        delete delegate;
    }
    m_d->delegates.clear();
    m_d->filterable.clear();
    m_d->kit.columns().reset();
    if (model) {
        model->setParent(this);
    }
    m_d->view->setHpfModel(model);
    m_d->kit.nameView();
    delete old;
    m_d->currentKey.clear();
    m_d->kit.updateActions();
    if (!model) {
        return;
    }
    connect(model, &IBaseHpfTableModel::sigFilterChanged, this, [this] { m_d->kit.updateActions(); });
    connect(model, &IBaseHpfTableModel::sigSortChanged, this, [this] { m_d->kit.updateActions(); });
    connect(model, &IBaseHpfTableModel::sigCleared, this, [this] { m_d->announceCurrentKey({}); });
    adjustColumnWidth();
}

IBaseHpfTableModel* CStandardHpfTable::dataModel() const
{
    return m_d->model();
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
    delete columnDelegate(column);
    m_d->delegates.erase(column);
    auto& ofModel = HpfModelPrivate::of(*m_d->model()).delegates;
    ofModel.erase(column);
    if (delegate) {
        delegate->setParent(this);
        delegate->setTable(this);
        m_d->delegates[column] = delegate;
        ofModel[column] = delegate;
    }
    m_d->view->columnsChanged();
}

CBaseTableColumnDelegate* CStandardHpfTable::columnDelegate(int column) const
{
    const auto found = m_d->delegates.find(column);
    return found == m_d->delegates.end() ? nullptr : found->second;
}

void CStandardHpfTable::setColumnVisible(int column, bool visible)
{
    m_d->kit.columns().setVisible(column, visible);
}

bool CStandardHpfTable::isColumnVisible(int column) const
{
    return m_d->kit.columns().isVisible(column);
}

void CStandardHpfTable::setColumnWidth(int column, int width)
{
    m_d->kit.columns().setWidth(column, width);
}

int CStandardHpfTable::columnWidth(int column) const
{
    return m_d->kit.columns().width(column);
}

void CStandardHpfTable::removeColumn(int column)
{
    m_d->kit.columns().remove(column);
}

bool CStandardHpfTable::isColumnRemoved(int column) const
{
    return m_d->kit.columns().isRemoved(column);
}

void CStandardHpfTable::filterColumn(int column, const FilterPair& filter)
{
    if (m_d->model()) {
        m_d->model()->filterColumn(column, filter);
    }
}

void CStandardHpfTable::search(const QVector<int>& columns, const QString& text)
{
    if (m_d->model()) {
        m_d->model()->search(columns, text);
    }
}

void CStandardHpfTable::clearFilter()
{
    if (m_d->model()) {
        m_d->model()->clearFilter();
    }
}

void CStandardHpfTable::sortByColumn(int column, Qt::SortOrder order)
{
    m_d->kit.sort(column, order);
}

void CStandardHpfTable::clearSort()
{
    m_d->kit.sort(-1, Qt::AscendingOrder);
}

void CStandardHpfTable::updateTable()
{
    m_d->request(true, false);
}

void CStandardHpfTable::adjustColumnWidth()
{
    m_d->request(false, true);
}

QString CStandardHpfTable::saveConfigStr() const
{
    return m_d->kit.saveConfig();
}

bool CStandardHpfTable::loadConfigStr(const QString& config)
{
    return m_d->kit.loadConfig(config);
}

bool CStandardHpfTable::exportCsv(const QString& fileName, QString* error) const
{
    return m_d->kit.exportCsv(fileName, error);
}

QString CStandardHpfTable::selectedText(bool withHeader) const
{
    return m_d->kit.selectedText(withHeader);
}

QString CStandardHpfTable::currentKey() const
{
    const QModelIndex current = m_d->view->currentIndex();
    const IBaseHpfTableDataPtr record =
        m_d->model() ? m_d->model()->getDataByRow(current.row()) : IBaseHpfTableDataPtr();
    return record ? record->getKey() : QString();
}

bool CStandardHpfTable::setCurrentKey(const QString& key)
{
    if (!m_d->model()) {
        return false;
    }
    m_d->model()->announce();
    const int row = m_d->model()->getRowByDataIndex(m_d->model()->getDataIndexByKey(key));
    const std::vector<int> columns = m_d->kit.columns().visible();
    if (row < 0 || columns.empty()) {
        return false;
    }
    m_d->view->setCurrentIndex(m_d->model()->index(row, columns.front()));
    return true;
}

QStringList CStandardHpfTable::selectedKeys() const
{
    QStringList keys;
    for (const int row : m_d->view->selectedRowNumbers()) {
        keys.append(m_d->model()->getDataByRow(row)->getKey());
    }
    return keys;
}

bool CStandardHpfTable::event(QEvent* event)
{
    if (event->type() == RequestEvent) {
        m_d->carryOutRequests();
        return true;
    }
    const bool isLate = event->type() == QEvent::Show && m_d->fitWhenShown;
    if (isLate || event->type() == QEvent::FontChange) {
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
