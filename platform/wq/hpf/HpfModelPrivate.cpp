// SPDX-License-Identifier: Apache-2.0
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

constexpr std::size_t RememberedRanks = 2;

} // namespace

const QEvent::Type HpfModelPrivate::AnnounceEvent = static_cast<QEvent::Type>(QEvent::registerEventType());

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
    if (ranks.size() >= RememberedRanks) {
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

void HpfModelPrivate::filterRows()
{
    if (filter.isEmpty()) {
        order.clearFilter();
    } else {
        order.setFilter(filter.admitted(records, 0));
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

void HpfModelPrivate::announceSoon()
{
    if (!gather) {
        announce();
    } else if (!announcePosted) {
        announcePosted = true;
        QCoreApplication::postEvent(&q, new QEvent(AnnounceEvent), Qt::HighEventPriority);
    }
}

void HpfModelPrivate::announce()
{
    if (isCurrent()) {
        return;
    }
    const bool wasStale = stale;
    stale = false;
    const int count = static_cast<int>(records.size());
    if (announced() < count) {
        const std::vector<char> passing =
            filter.isEmpty() ? std::vector<char>() : filter.admitted(records, announced());
        const int shown = order.shownOf(count, passing);
        const int first = order.rowCount();
        if (shown > 0) {
            q.beginInsertRows({}, first, first + shown - 1);
        }
        order.append(count, passing);
        if (shown > 0) {
            q.endInsertRows();
        }
        if (sortColumn >= 0 && !wasStale) {
            reorder([this] { sortRows(); });
        }
    }
    if (wasStale) {
        rebuild([this] {
            filterRows();
            sortRows();
        });
    }
}

void HpfModelPrivate::clear()
{
    const bool wasFiltered = !filter.isEmpty();
    if (!records.empty() || wasFiltered) {
        HpfRecords dropped; // released when nobody sees them any more
        q.beginResetModel();
        dropped.swap(records);
        keys.clear();
        hint = -1;
        order.clear();
        filter.clear();
        forgetValues();
        stale = false;
        q.endResetModel();
    }
    emit q.sigCleared();
    if (wasFiltered) {
        emit q.sigFilterChanged();
    }
}

void HpfModelPrivate::applyFilter(bool isChanged)
{
    if (isChanged) {
        rebuild([this] { filterRows(); });
        emit q.sigFilterChanged();
    }
}

void HpfModelPrivate::sort(int column, Qt::SortOrder newOrder)
{
    if (column == sortColumn && (column < 0 || newOrder == sortOrder)) {
        return;
    }
    reorder([&] {
        sortColumn = column;
        sortOrder = newOrder;
        sortRows();
    });
    emit q.sigSortChanged();
}

QStringList HpfModelPrivate::filterValues(int column, int limit, bool& complete)
{
    complete = true;
    const std::vector<char> passing = filter.admitted(records, 0, column);
    QHash<QString, int> dataIndexes;
    for (std::size_t data = 0; data < records.size(); ++data) {
        if (!passing[data]) {
            continue;
        }
        const QString text = records[data]->getFilterQString(column);
        if (dataIndexes.contains(text)) {
            continue;
        }
        if (dataIndexes.size() >= limit) {
            complete = false;
            break;
        }
        dataIndexes.insert(text, static_cast<int>(data));
    }
    struct Value {
        double number;
        QByteArray key;
        QString text;
    };
    const int kind = q.getValueKind(column);
    std::vector<Value> values;
    for (auto it = dataIndexes.constBegin(); it != dataIndexes.constEnd(); ++it) {
        const IBaseHpfTableData& record = *records[static_cast<std::size_t>(it.value())];
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

} // namespace WQ
