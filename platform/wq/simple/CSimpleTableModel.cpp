// SPDX-License-Identifier: Apache-2.0
#include "CSimpleTableModel.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/Pinyin.h>

#include <algorithm>
#include <numeric>

namespace WQ
{

namespace
{

/// More gaps than this are cheaper to announce as a reset than one by one.
constexpr size_t MaximumRanges = 24;

quint64 cellKey(int id, int column)
{
    return quint64(quint32(id)) << 32 | quint32(column);
}

struct SortKey {
    bool isNumber = false;
    double number = 0;
    QByteArray text;

    bool operator<(const SortKey& other) const
    {
        if (isNumber != other.isNumber) {
            return isNumber;
        }
        if (isNumber && number != other.number) {
            return number < other.number;
        }
        return text < other.text;
    }
};

SortKey sortKey(const QString& text)
{
    SortKey key;
    key.number = text.toDouble(&key.isNumber);
    key.isNumber = key.isNumber && key.number == key.number;
    key.text = key.isNumber ? text.toUtf8() : pinyinSortKey(text);
    return key;
}

} // namespace

void CSimpleTableModel::setColumns(int count)
{
    beginResetModel();
    m_order.clear();
    m_rows.clear();
    m_colorKeys.clear();
    m_shown.clear();
    m_stale = m_removed = false;
    m_columns.resize(qMax(0, count));
    endResetModel();
}

void CSimpleTableModel::setHeader(int column, const QString& text)
{
    m_columns[column].header = text;
    emit headerDataChanged(Qt::Horizontal, column, column);
}

void CSimpleTableModel::setAlignment(int column, int alignment)
{
    m_columns[column].alignment = alignment;
    emit headerDataChanged(Qt::Horizontal, column, column);
}

void CSimpleTableModel::setHeaderAlignment(int column, int alignment)
{
    if (m_columns[column].headerAlignment == alignment) {
        return;
    }
    m_columns[column].headerAlignment = alignment;
    emit headerDataChanged(Qt::Horizontal, column, column);
}

int CSimpleTableModel::appendRow()
{
    m_stale = true;
    if (m_order.count() == 0) {
        m_rows.clear();
    }
    m_rows.push_back(Row{std::vector<QString>(size_t(m_columns.size()))});
    return m_order.append();
}

bool CSimpleTableModel::removeRowId(int id)
{
    const int firstId = m_order.firstId();
    if (!m_order.remove(id)) {
        return false;
    }
    m_stale = m_removed = true;
    if (m_order.count() == 0) {
        m_rows.clear();
        m_colorKeys.clear();
        return true;
    }
    m_rows[size_t(id - firstId)] = Row();
    if (!m_colorKeys.isEmpty()) {
        for (int column = 0; column < m_columns.size(); ++column) {
            m_colorKeys.remove(cellKey(id, column));
        }
    }
    return true;
}

void CSimpleTableModel::clear()
{
    if (m_order.count() == 0) {
        return;
    }
    m_order.clear();
    m_rows.clear();
    m_colorKeys.clear();
    m_stale = m_removed = true;
}

const CSimpleTableModel::Row* CSimpleTableModel::row(int id) const
{
    return m_order.contains(id) ? &m_rows[size_t(id - m_order.firstId())] : nullptr;
}

bool CSimpleTableModel::setText(int id, int column, const QString& text)
{
    const Row* const found = row(id);
    if (!found || column < 0 || column >= m_columns.size()) {
        return false;
    }
    QString& cell = m_rows[size_t(id - m_order.firstId())].texts[size_t(column)];
    if (cell == text) {
        return false;
    }
    cell = text;
    return true;
}

QString CSimpleTableModel::text(int id, int column) const
{
    const Row* const found = row(id);
    return found && column >= 0 && column < m_columns.size() ? found->texts[size_t(column)] : QString();
}

void CSimpleTableModel::setColorKey(int id, int column, const QString& key)
{
    if (!row(id) || column < 0 || column >= m_columns.size()) {
        return;
    }
    if (key.isEmpty()) {
        m_colorKeys.remove(cellKey(id, column));
    } else {
        m_colorKeys.insert(cellKey(id, column), key);
    }
}

std::vector<CSimpleTableModel::Range> CSimpleTableModel::removedRanges(size_t most) const
{
    std::vector<Range> ranges;
    for (int row = 0; row < int(m_shown.size()); ++row) {
        if (m_order.contains(m_shown[size_t(row)])) {
            continue;
        }
        if (!ranges.empty() && ranges.back().last == row - 1) {
            ranges.back().last = row;
        } else if (ranges.size() == most + 1) {
            break;
        } else {
            ranges.push_back({row, row});
        }
    }
    return ranges;
}

bool CSimpleTableModel::willReset() const
{
    if (!m_removed || m_shown.empty()) {
        return false;
    }
    const std::vector<Range> ranges = removedRanges(MaximumRanges);
    const bool nothingLeft = ranges.size() == 1 && ranges[0].last - ranges[0].first + 1 == int(m_shown.size());
    return nothingLeft || ranges.size() > MaximumRanges;
}

void CSimpleTableModel::sync()
{
    if (!m_stale) {
        return;
    }
    const bool reset = willReset();
    const std::vector<Range> ranges = m_removed && !reset ? removedRanges(MaximumRanges) : std::vector<Range>();
    m_stale = m_removed = false;
    if (reset) {
        beginResetModel();
        m_shown = m_order.ids();
        endResetModel();
        return;
    }
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        beginRemoveRows(QModelIndex(), range->first, range->last);
        m_shown.erase(m_shown.begin() + range->first, m_shown.begin() + range->last + 1);
        endRemoveRows();
    }
    const int before = int(m_shown.size());
    if (before < m_order.count()) {
        beginInsertRows(QModelIndex(), before, m_order.count() - 1);
        m_shown = m_order.ids();
        endInsertRows();
    }
}

void CSimpleTableModel::reorder(const std::vector<int>& ids)
{
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList from = persistentIndexList();
    std::vector<int> kept;
    kept.reserve(size_t(from.size()));
    for (const QModelIndex& index : from) {
        kept.push_back(idOfRow(index.row()));
    }
    m_order.reorder(ids);
    m_shown = ids;
    QModelIndexList to;
    to.reserve(from.size());
    for (int i = 0; i < from.size(); ++i) {
        to << index(m_order.indexOf(kept[size_t(i)]), from[i].column());
    }
    changePersistentIndexList(from, to);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

std::vector<int> CSimpleTableModel::sortedIds(int column, Qt::SortOrder order) const
{
    const std::vector<int> ids = m_order.ids();
    std::vector<SortKey> keys;
    keys.reserve(ids.size());
    for (const int id : ids) {
        keys.push_back(sortKey(text(id, column)));
    }
    std::vector<size_t> positions(ids.size());
    std::iota(positions.begin(), positions.end(), size_t(0));
    std::stable_sort(positions.begin(), positions.end(), [&keys, order](size_t left, size_t right) {
        return order == Qt::AscendingOrder ? keys[left] < keys[right] : keys[right] < keys[left];
    });
    std::vector<int> sorted;
    sorted.reserve(ids.size());
    for (const size_t position : positions) {
        sorted.push_back(ids[position]);
    }
    return sorted;
}

int CSimpleTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

int CSimpleTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns.size();
}

QVariant CSimpleTableModel::data(const QModelIndex& index, int role) const
{
    const int id = idOfRow(index.row());
    const Row* const found = row(id);
    if (!found || index.column() >= m_columns.size()) {
        return QVariant();
    }
    switch (role) {
    case Qt::DisplayRole:
        return found->texts[size_t(index.column())];
    case Qt::TextAlignmentRole:
        return m_columns[index.column()].alignment;
    case Qt::ForegroundRole: {
        if (m_colorKeys.isEmpty()) {
            return QVariant();
        }
        const QString key = m_colorKeys.value(cellKey(id, index.column()));
        return key.isEmpty() ? QVariant() : QVariant(CUiResourceManager::instance()->colour(key));
    }
    default:
        return QVariant();
    }
}

QVariant CSimpleTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size()) {
        return QVariant();
    }
    if (role == Qt::DisplayRole) {
        return m_columns[section].header;
    }
    if (role == Qt::TextAlignmentRole) {
        return m_columns[section].headerAlignment != 0 ? m_columns[section].headerAlignment
                                                       : m_columns[section].alignment;
    }
    return QVariant();
}

} // namespace WQ
