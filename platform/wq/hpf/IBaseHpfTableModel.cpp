// SPDX-License-Identifier: Apache-2.0
#include <WQ/IBaseHpfTableModel.h>

#include "hpf/HpfModelPrivate.h"

#include <WQ/CBaseTableColumnDelegate.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QEvent>

#include <algorithm>
#include <iterator>

namespace WQ
{

IBaseHpfTableModel::IBaseHpfTableModel(bool gather, QObject* parent)
    : QAbstractTableModel(parent), m_d(std::make_unique<HpfModelPrivate>(*this, gather))
{
}

IBaseHpfTableModel::~IBaseHpfTableModel() = default;

QString IBaseHpfTableModel::getHeaderTip(int) const
{
    return {};
}

bool IBaseHpfTableModel::isColumnWidthFixed(int) const
{
    return false;
}

QString IBaseHpfTableModel::getRowBackgroundKey(int row) const
{
    return row % 2 != 0 ? key::TableBackground2 : key::TableBackground;
}

int IBaseHpfTableModel::getColumnFlags(int) const
{
    return 0;
}

double IBaseHpfTableModel::getCompareTick(int) const
{
    return 0;
}

HpfColumnEntry IBaseHpfTableModel::getColumnEntry(int) const
{
    return {};
}

QVariant IBaseHpfTableModel::getCellData(const IBaseHpfTableData& data, int row, int column, int role) const
{
    switch (role) {
    case Qt::DisplayRole: {
        const QString unit = data.getDisplayUnit(column);
        return unit.isEmpty() ? data.getDisplayQString(column)
                              : QString(data.getDisplayQString(column) + QLatin1Char(' ') + unit);
    }
    case Qt::ToolTipRole:
        return data.isShowUnderTip(column) ? QVariant(data.getUnderTipText(column)) : QVariant();
    case Qt::ForegroundRole:
        return data.getTextColor(column);
    case Qt::BackgroundRole:
        return CUiResourceManager::instance()->colour(getRowBackgroundKey(row));
    case Qt::DecorationRole: {
        const QString iconKey = data.getItemIconKey(column);
        return iconKey.isEmpty() ? QVariant() : QVariant(CUiResourceManager::instance()->image(iconKey));
    }
    case Qt::TextAlignmentRole: {
        if (getColumnFlags(column) & ColumnAlignCenter) {
            return int(Qt::AlignCenter);
        }
        const int kind = getValueKind(column);
        const bool number = kind == ValueInt || kind == ValueInt64 || kind == ValueDouble;
        return int((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    default:
        return {};
    }
}

void IBaseHpfTableModel::_addData(const IBaseHpfTableDataPtr& data)
{
    m_d->records.push_back(data);
}

void IBaseHpfTableModel::_updateData(int dataIndex, const IBaseHpfTableDataPtr& data)
{
    m_d->records[static_cast<std::size_t>(dataIndex)] = data;
}

void IBaseHpfTableModel::_updateDelegateData(int dataIndex)
{
    const int row = m_d->order.rowOf(dataIndex);
    if (row >= 0) {
        emit dataChanged(index(row, 0), index(row, columnCount() - 1));
    }
}

void IBaseHpfTableModel::addData(const IBaseHpfTableDataPtr& data)
{
    if (data) {
        _addData(data);
        m_d->announceSoon();
    }
}

void IBaseHpfTableModel::updateData(const IBaseHpfTableDataPtr& data)
{
    const int dataIndex = data ? getDataIndexByKey(data->getKey()) : -1;
    if (dataIndex < 0) {
        addData(data);
        return;
    }
    _updateData(dataIndex, data);
    m_d->forgetValues();
    if (dataIndex >= m_d->announced()) {
        return;
    }
    _updateDelegateData(dataIndex);
    if (m_d->sortColumn >= 0 || !m_d->filter.isEmpty()) {
        m_d->stale = true;
        m_d->announceSoon();
    }
}

void IBaseHpfTableModel::updateDelegateData(const QString& key)
{
    const int dataIndex = getDataIndexByKey(key);
    if (dataIndex >= 0) {
        _updateDelegateData(dataIndex);
    }
}

void IBaseHpfTableModel::announce()
{
    m_d->announce();
}

bool IBaseHpfTableModel::event(QEvent* event)
{
    if (event->type() != HpfModelPrivate::AnnounceEvent) {
        return QAbstractTableModel::event(event);
    }
    m_d->announcePosted = false;
    m_d->announce();
    return true;
}

void IBaseHpfTableModel::clear()
{
    m_d->clear();
}

void IBaseHpfTableModel::filterColumn(int column, const FilterPair& filter)
{
    if (filter.first == FilterNone) {
        clearColumnFilter(column);
    } else if (column >= 0 && column < getColumnCount() &&
               (filter.first == FilterContains || filter.first == FilterOneOf)) {
        announce();
        m_d->applyFilter(m_d->filter.set(column, filter));
    }
}

void IBaseHpfTableModel::clearColumnFilter(int column)
{
    announce();
    m_d->applyFilter(m_d->filter.remove(column));
}

void IBaseHpfTableModel::search(const QVector<int>& columns, const QString& text)
{
    QVector<int> known;
    std::copy_if(columns.begin(), columns.end(), std::back_inserter(known),
                 [this](int column) { return column >= 0 && column < getColumnCount(); });
    announce();
    m_d->applyFilter(m_d->filter.search(known, text));
}

void IBaseHpfTableModel::clearFilter()
{
    announce();
    m_d->applyFilter(m_d->filter.clear());
}

bool IBaseHpfTableModel::isFiltered() const
{
    return !m_d->filter.isEmpty();
}

FilterPair IBaseHpfTableModel::columnFilter(int column) const
{
    return m_d->filter.of(column);
}

QStringList IBaseHpfTableModel::filterValues(int column, int limit, bool* complete) const
{
    bool isComplete = true;
    const bool isKnown = column >= 0 && column < getColumnCount();
    const QStringList values = isKnown ? m_d->filterValues(column, limit, isComplete) : QStringList();
    if (complete) {
        *complete = isComplete;
    }
    return values;
}

void IBaseHpfTableModel::sort(int column, Qt::SortOrder order)
{
    if (column < getColumnCount()) {
        announce();
        m_d->sort(std::max(column, -1), order);
    }
}

void IBaseHpfTableModel::clearSort()
{
    sort(-1, Qt::AscendingOrder);
}

int IBaseHpfTableModel::sortColumn() const
{
    return m_d->sortColumn;
}

Qt::SortOrder IBaseHpfTableModel::sortOrder() const
{
    return m_d->sortOrder;
}

int IBaseHpfTableModel::getDataCount() const
{
    return static_cast<int>(m_d->records.size());
}

int IBaseHpfTableModel::getDataIndexByKey(const QString& key) const
{
    const int hint = m_d->hint;
    if (hint >= 0 && m_d->records[static_cast<std::size_t>(hint)]->getKey() == key) {
        return hint;
    }
    const int found = m_d->keys.find(key, getDataCount());
    if (found >= 0) {
        m_d->hint = found;
    }
    return found;
}

IBaseHpfTableDataPtr IBaseHpfTableModel::getDataByKey(const QString& key) const
{
    return getDataByIndex(getDataIndexByKey(key));
}

IBaseHpfTableDataPtr IBaseHpfTableModel::getDataByIndex(int dataIndex) const
{
    if (dataIndex < 0 || dataIndex >= getDataCount()) {
        return {};
    }
    return m_d->records[static_cast<std::size_t>(dataIndex)];
}

IBaseHpfTableDataPtr IBaseHpfTableModel::getDataByRow(int row) const
{
    const int dataIndex = getDataIndexByRow(row);
    if (dataIndex >= 0) {
        m_d->hint = dataIndex;
    }
    return getDataByIndex(dataIndex);
}

int IBaseHpfTableModel::getDataIndexByRow(int row) const
{
    return row < 0 || row >= rowCount() ? -1 : m_d->order.dataIndex(row);
}

int IBaseHpfTableModel::getRowByDataIndex(int dataIndex) const
{
    return m_d->order.rowOf(dataIndex);
}

int IBaseHpfTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_d->order.rowCount();
}

int IBaseHpfTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : getColumnCount();
}

QVariant IBaseHpfTableModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    if (role == Qt::AccessibleTextRole) {
        const auto delegate = m_d->delegates.find(index.column());
        if (delegate != m_d->delegates.end() && delegate->second) {
            return delegate->second->accessibleText(index);
        }
    }
    const int dataIndex = m_d->order.dataIndex(index.row());
    return getCellData(*m_d->records[static_cast<std::size_t>(dataIndex)], index.row(), index.column(), role);
}

QVariant IBaseHpfTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical) {
        return role == Qt::DisplayRole && section >= 0 && section < rowCount() ? QVariant(section + 1) : QVariant();
    }
    if (section < 0 || section >= getColumnCount()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return getHeaderText(section);
    case Qt::ToolTipRole:
        return getHeaderTip(section);
    case Qt::TextAlignmentRole:
        return int((getColumnFlags(section) & ColumnAlignCenter ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter);
    default:
        return {};
    }
}

Qt::ItemFlags IBaseHpfTableModel::flags(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
}

} // namespace WQ
