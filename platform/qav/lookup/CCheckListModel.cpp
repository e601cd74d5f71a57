// SPDX-License-Identifier: Apache-2.0
#include "lookup/CCheckListModel.h"

#include <QElapsedTimer>
#include <QTimerEvent>

#include <algorithm>

namespace QAV
{

namespace
{

/// The longest time for which one step blocks the user interface.
constexpr qint64 PreparationStepMs = 4;
constexpr int PreparationItems = 256;

} // namespace

CCheckListModel::CCheckListModel(QObject* parent) : QAbstractListModel(parent) {}

void CCheckListModel::clear()
{
    const bool hadChecked = m_checkedCount > 0;
    beginResetModel();
    m_items.clear();
    m_checkedCount = 0;
    dropSearch();
    endResetModel();
    if (hadChecked) {
        emit sigCheckedChanged();
    }
}

void CCheckListModel::addItems(const QMap<QString, QString>& items)
{
    beginResetModel();
    dropSearch();
    std::vector<Item> merged;
    merged.reserve(m_items.size() + static_cast<std::size_t>(items.size()));
    auto old = m_items.begin();
    for (auto item = items.cbegin(); item != items.cend(); ++item) {
        while (old != m_items.end() && old->key < item.key()) {
            merged.push_back(std::move(*old++));
        }
        const bool known = old != m_items.end() && old->key == item.key();
        merged.push_back({item.key(), item.value(), known && old->checked});
        if (known) {
            ++old;
        }
    }
    std::move(old, m_items.end(), std::back_inserter(merged));
    m_items = std::move(merged);
    endResetModel();
}

void CCheckListModel::setCheckedKeys(const QSet<QString>& keys)
{
    m_checkedCount = 0;
    for (Item& item : m_items) {
        item.checked = keys.contains(item.key);
        m_checkedCount += int(item.checked);
    }
    if (rowCount() > 0) {
        emit dataChanged(index(0), index(rowCount() - 1), {Qt::CheckStateRole});
    }
    emit sigCheckedChanged();
}

QSet<QString> CCheckListModel::checkedKeys() const
{
    QSet<QString> keys;
    keys.reserve(m_checkedCount);
    for (const Item& item : m_items) {
        if (item.checked) {
            keys.insert(item.key);
        }
    }
    return keys;
}

void CCheckListModel::dropSearch()
{
    m_preparation.stop();
    m_index.clear();
    m_words.clear();
    m_shown.clear();
    m_showsAll = true;
}

void CCheckListModel::prepareSearch()
{
    if (!isSearchPrepared()) {
        m_preparation.start(0, this);
    }
}

void CCheckListModel::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_preparation.timerId()) {
        QAbstractListModel::timerEvent(event);
        return;
    }
    QElapsedTimer timer;
    timer.start();
    while (!isSearchPrepared() && timer.elapsed() < PreparationStepMs) {
        indexItems(std::min(itemCount(), m_index.size() + PreparationItems));
    }
    if (isSearchPrepared()) {
        m_preparation.stop();
    }
}

void CCheckListModel::indexItems(int end)
{
    for (int item = m_index.size(); item < end; ++item) {
        m_index.append(m_items[static_cast<std::size_t>(item)].text);
    }
}

void CCheckListModel::search(const QString& input)
{
    const QVector<QByteArray> words = WQ::CSearchIndex::words(input);
    if (words == m_words) {
        return;
    }
    indexItems(itemCount());
    // If each old word is part of a new one, only the rows found before can match.
    const bool narrows = !m_showsAll && std::all_of(m_words.cbegin(), m_words.cend(), [&](const QByteArray& old) {
        return std::any_of(words.cbegin(), words.cend(), [&](const QByteArray& word) { return word.contains(old); });
    });
    beginResetModel();
    m_shown = words.isEmpty() ? std::vector<int>() : narrows ? m_index.find(words, m_shown) : m_index.find(words);
    m_showsAll = words.isEmpty();
    m_words = words;
    endResetModel();
}

void CCheckListModel::toggle(const QModelIndex& index)
{
    if (!index.isValid()) {
        return;
    }
    Item& item = m_items[static_cast<std::size_t>(itemOf(index.row()))];
    item.checked = !item.checked;
    m_checkedCount += item.checked ? 1 : -1;
    emit dataChanged(index, index, {Qt::CheckStateRole});
    emit sigCheckedChanged();
}

void CCheckListModel::checkShown(ECheck check)
{
    const int rows = rowCount();
    if (rows == 0) {
        return;
    }
    for (int row = 0; row < rows; ++row) {
        Item& item = m_items[static_cast<std::size_t>(itemOf(row))];
        const bool checked = check == ECheck::Invert ? !item.checked : check == ECheck::All;
        m_checkedCount += int(checked) - int(item.checked);
        item.checked = checked;
    }
    emit dataChanged(index(0), index(rows - 1), {Qt::CheckStateRole});
    emit sigCheckedChanged();
}

int CCheckListModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid()) {
        return 0;
    }
    return m_showsAll ? itemCount() : static_cast<int>(m_shown.size());
}

QVariant CCheckListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const Item& item = m_items[static_cast<std::size_t>(itemOf(index.row()))];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return item.text;
    case Qt::CheckStateRole:
        return item.checked ? Qt::Checked : Qt::Unchecked;
    default:
        return {};
    }
}

} // namespace QAV
