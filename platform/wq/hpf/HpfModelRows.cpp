// SPDX-License-Identifier: Apache-2.0
// Rows of the model: how they come in, are found, filtered and sorted.
#include "hpf/HpfModelPrivate.h"

#include <WQ/Pinyin.h>

#include <QCoreApplication>
#include <QEvent>
#include <QHash>

#include <algorithm>

namespace WQ
{

namespace
{

const QEvent::Type announceEvent = static_cast<QEvent::Type>(QEvent::registerEventType());
constexpr std::size_t rememberedRanks = 2;

} // namespace

HpfModelPrivate::HpfModelPrivate(IBaseHpfTableModel& model, bool gatherInsertions)
    : q(model), gather(gatherInsertions),
      keys([this](int row) { return records[static_cast<std::size_t>(row)]->getKey(); })
{
}

const CSortRanks& HpfModelPrivate::ranksOf(int column)
{
    const auto known = std::find_if(ranks.begin(), ranks.end(), [&](const CSortRanks& r) {
        return r.column == column && static_cast<int>(r.ranks.size()) == announced();
    });
    if (known != ranks.end()) {
        return *known;
    }
    ranks.erase(std::remove_if(ranks.begin(), ranks.end(), [&](const CSortRanks& r) { return r.column == column; }),
                ranks.end());
    if (ranks.size() >= rememberedRanks) {
        ranks.pop_front();
    }
    ranks.push_back(CSortRanks::of(q, column, announced()));
    return ranks.back();
}

void HpfModelPrivate::forgetValues()
{
    ranks.clear();
    filter.forgetTexts();
}

void HpfModelPrivate::sortRows()
{
    if (sortColumn < 0 || announced() == 0) {
        order.setSorted({});
    } else {
        order.setSorted(ranksOf(sortColumn).order(sortOrder == Qt::DescendingOrder));
    }
}

std::vector<char> HpfModelPrivate::admitted(int from, int except)
{
    return filter.admitted(records, from, except);
}

std::vector<char> HpfModelPrivate::containing(int column, const QString& text)
{
    return filter.containing(records, column, text);
}

void HpfModelPrivate::filterRows()
{
    if (filter.isEmpty()) {
        order.clearFilter();
    } else {
        order.setFilter(admitted(0));
    }
}

template <typename Change>
void HpfModelPrivate::reorder(Change change)
{
    emit q.sigAboutToRearrange();
    emit q.layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = q.persistentIndexList();
    std::vector<int> dataIndexes;
    for (const QModelIndex& index : before) {
        dataIndexes.push_back(order.dataIndex(index.row()));
    }
    change();
    QModelIndexList after;
    for (int i = 0; i < before.size(); ++i) {
        const int row = order.rowOf(dataIndexes[static_cast<std::size_t>(i)]);
        after.append(row < 0 ? QModelIndex() : q.index(row, before.at(i).column()));
    }
    q.changePersistentIndexList(before, after);
    emit q.layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    emit q.sigRearranged();
}

template <typename Change>
void HpfModelPrivate::rebuild(Change change)
{
    emit q.sigAboutToRearrange();
    q.beginResetModel();
    change();
    q.endResetModel();
    emit q.sigRearranged();
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
    if (!data) {
        return;
    }
    _addData(data);
    if (!m_d->gather) {
        announce();
    } else if (!m_d->announcePosted) {
        m_d->announcePosted = true;
        QCoreApplication::postEvent(this, new QEvent(announceEvent), Qt::HighEventPriority);
    }
}

void IBaseHpfTableModel::updateData(const IBaseHpfTableDataPtr& data)
{
    if (!data) {
        return;
    }
    const int dataIndex = getDataIndexByKey(data->getKey());
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
    if (m_d->sortColumn < 0 && m_d->filter.isEmpty()) {
        return;
    }
    m_d->stale = true;
    if (!m_d->gather) {
        announce();
    } else if (!m_d->announcePosted) {
        m_d->announcePosted = true;
        QCoreApplication::postEvent(this, new QEvent(announceEvent), Qt::HighEventPriority);
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
    HpfModelPrivate& d = *m_d;
    if (d.isCurrent()) {
        return;
    }
    const bool stale = d.stale;
    d.stale = false;
    const int count = static_cast<int>(d.records.size());
    if (d.announced() < count) {
        const std::vector<char> admitted = d.filter.isEmpty() ? std::vector<char>() : d.admitted(d.announced());
        const int shown = d.order.shownOf(count, admitted);
        const int first = rowCount();
        if (shown > 0) {
            beginInsertRows({}, first, first + shown - 1);
        }
        d.order.append(count, admitted);
        if (shown > 0) {
            endInsertRows();
        }
        if (d.sortColumn >= 0 && !stale) {
            d.reorder([&] { d.sortRows(); });
        }
    }
    if (stale) {
        d.rebuild([&] {
            d.filterRows();
            d.sortRows();
        });
    }
}

bool IBaseHpfTableModel::event(QEvent* event)
{
    if (event->type() != announceEvent) {
        return QAbstractTableModel::event(event);
    }
    m_d->announcePosted = false;
    announce();
    return true;
}

void IBaseHpfTableModel::clear()
{
    HpfModelPrivate& d = *m_d;
    const bool filtered = !d.filter.isEmpty();
    if (!d.records.empty() || filtered) {
        HpfRecords dropped; // released when nobody sees them any more
        beginResetModel();
        dropped.swap(d.records);
        d.keys.clear();
        d.hint = -1;
        d.order.clear();
        d.filter.clear();
        d.forgetValues();
        d.stale = false;
        endResetModel();
    }
    emit sigCleared();
    if (filtered) {
        emit sigFilterChanged();
    }
}

void IBaseHpfTableModel::filterColumn(int column, const FilterPair& filter)
{
    if (column < 0 || column >= getColumnCount()) {
        return;
    }
    if (filter.first == FilterNone) {
        clearColumnFilter(column);
        return;
    }
    if (filter.first != FilterContains && filter.first != FilterOneOf) {
        return;
    }
    announce();
    if (!m_d->filter.set(column, filter)) {
        return;
    }
    m_d->rebuild([this] { m_d->filterRows(); });
    emit sigFilterChanged();
}

void IBaseHpfTableModel::clearColumnFilter(int column)
{
    announce();
    if (!m_d->filter.remove(column)) {
        return;
    }
    m_d->rebuild([this] { m_d->filterRows(); });
    emit sigFilterChanged();
}

void IBaseHpfTableModel::clearFilter()
{
    announce();
    if (m_d->filter.isEmpty()) {
        return;
    }
    m_d->filter.clear();
    m_d->rebuild([this] { m_d->filterRows(); });
    emit sigFilterChanged();
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
    if (complete) {
        *complete = true;
    }
    if (column < 0 || column >= getColumnCount()) {
        return {};
    }
    const std::vector<char> admitted = m_d->admitted(0, column);
    QHash<QString, int> dataIndexes;
    for (std::size_t data = 0; data < m_d->records.size(); ++data) {
        if (!admitted[data]) {
            continue;
        }
        const QString text = m_d->records[data]->getFilterQString(column);
        if (dataIndexes.contains(text)) {
            continue;
        }
        if (dataIndexes.size() >= limit) {
            if (complete) {
                *complete = false;
            }
            break;
        }
        dataIndexes.insert(text, static_cast<int>(data));
    }
    struct Value {
        double number;
        QByteArray key;
        QString text;
    };
    const int kind = getValueKind(column);
    std::vector<Value> values;
    for (auto it = dataIndexes.constBegin(); it != dataIndexes.constEnd(); ++it) {
        const IBaseHpfTableData& record = *m_d->records[static_cast<std::size_t>(it.value())];
        const double number = kind == ValueInt      ? record.getIntValue(column)
                              : kind == ValueInt64  ? static_cast<double>(record.getInt64Value(column))
                              : kind == ValueDouble ? record.getDoubleValue(column)
                                                    : 0;
        values.push_back({number, pinyinSortKey(it.key()), it.key()});
    }
    std::sort(values.begin(), values.end(), [](const Value& a, const Value& b) {
        return a.number != b.number ? a.number < b.number : a.key < b.key;
    });
    QStringList texts;
    for (const Value& value : values) {
        texts.append(value.text);
    }
    return texts;
}

void IBaseHpfTableModel::sort(int column, Qt::SortOrder order)
{
    if (column >= getColumnCount()) {
        return;
    }
    announce();
    column = std::max(column, -1);
    if (column == m_d->sortColumn && (column < 0 || order == m_d->sortOrder)) {
        return;
    }
    m_d->reorder([&] {
        m_d->sortColumn = column;
        m_d->sortOrder = order;
        m_d->sortRows();
    });
    emit sigSortChanged();
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

} // namespace WQ
