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
    m_rows.emplace_back(size_t(m_columns.size()));
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
    if (!found || !hasColumn(column)) {
        return false;
    }
    QString& cell = m_rows[size_t(id - m_order.firstId())][size_t(column)];
    if (cell == text) {
        return false;
    }
    cell = text;
    return true;
}

QString CSimpleTableModel::text(int id, int column) const
{
    const Row* const found = row(id);
    return found && hasColumn(column) ? (*found)[size_t(column)] : QString();
}

void CSimpleTableModel::setColorKey(int id, int column, const QString& key)
{
    if (!row(id) || !hasColumn(column)) {
        return;
    }
    if (key.isEmpty()) {
        m_colorKeys.remove(cellKey(id, column));
    } else {
        m_colorKeys.insert(cellKey(id, column), key);
    }
}

void CSimpleTableModel::rearrange()
{
    emit sigAboutToRearrange();
    beginResetModel();
    m_shown = m_order.ids();
    endResetModel();
    emit sigRearranged();
}

void CSimpleTableModel::sync()
{
    if (!m_stale) {
        return;
    }
    m_stale = false;
    if (m_removed) {
        m_removed = false;
        rearrange();
    } else {
        beginInsertRows(QModelIndex(), rowCount(), m_order.count() - 1);
        m_shown = m_order.ids();
        endInsertRows();
    }
}

void CSimpleTableModel::reorder(const std::vector<int>& ids)
{
    m_order.reorder(ids);
    rearrange();
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
        return (*found)[size_t(index.column())];
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
