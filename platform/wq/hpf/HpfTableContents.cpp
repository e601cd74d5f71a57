// SPDX-License-Identifier: Apache-2.0
// What of a table is kept, handed out and pointed at: layout, texts, keys.
#include "hpf/CHpfTableView.h"
#include "hpf/HpfModelPrivate.h"
#include "hpf/HpfTablePrivate.h"
#include "tablekit/CContainsMatcher.h"

#include <algorithm>

namespace WQ
{

namespace
{

/// This many rows are looked at one by one; further away the whole column is searched at once.
constexpr int NearRows = 5000;

} // namespace

QString CStandardHpfTable::saveConfigStr() const
{
    TableLayout layout;
    layout.tableId = m_d->tableId;
    m_d->columns->save(layout);
    if (m_d->model) {
        layout.sortColumn = m_d->model->sortColumn();
        layout.sortOrder = m_d->model->sortOrder();
    }
    return layout.toString();
}

bool CStandardHpfTable::loadConfigStr(const QString& config)
{
    TableLayout layout;
    if (!m_d->model || !TableLayout::fromString(config, layout) || layout.tableId != m_d->tableId ||
        !m_d->columns->load(layout)) {
        return false;
    }
    m_d->model->sort(layout.sortColumn, layout.sortOrder);
    m_d->request(true, true);
    return true;
}

TableTexts CStandardHpfTable::Private::texts() const
{
    const IBaseHpfTableModel& rows = *model;
    return {rows, listedColumns(), [&rows](int column, const QString&) {
                const int kind = rows.getValueKind(column);
                return kind != ValueText && kind != ValueNone;
            }};
}

bool CStandardHpfTable::exportCsv(const QString& fileName, QString* error) const
{
    if (!m_d->model) {
        return false;
    }
    m_d->model->announce();
    return WQ::exportCsv(m_d->texts(), fileName, error);
}

QString CStandardHpfTable::selectedText(bool withHeader) const
{
    if (!m_d->model) {
        return {};
    }
    return tabSeparated(m_d->texts(), m_d->view->selectionModel()->selection(), withHeader);
}

QString CStandardHpfTable::currentKey() const
{
    const QModelIndex current = m_d->view->currentIndex();
    const IBaseHpfTableDataPtr record = m_d->model ? m_d->model->getDataByRow(current.row()) : IBaseHpfTableDataPtr();
    return record ? record->getKey() : QString();
}

bool CStandardHpfTable::setCurrentKey(const QString& key)
{
    if (!m_d->model) {
        return false;
    }
    m_d->model->announce();
    const int row = m_d->model->getRowByDataIndex(m_d->model->getDataIndexByKey(key));
    const std::vector<int> columns = m_d->columns->visible();
    if (row < 0 || columns.empty()) {
        return false;
    }
    m_d->view->setCurrentIndex(m_d->model->index(row, columns.front()));
    return true;
}

QStringList CStandardHpfTable::selectedKeys() const
{
    QStringList keys;
    if (!m_d->model) {
        return keys;
    }
    std::set<int> rows;
    const QItemSelection selection = m_d->view->selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.insert(row);
        }
    }
    for (int row : rows) {
        keys.append(m_d->model->getDataByRow(row)->getKey());
    }
    return keys;
}

bool CStandardHpfTable::Private::goTo(const QString& text, bool forward, bool stay)
{
    const std::vector<int> listed = model ? listedColumns() : std::vector<int>();
    const int rows = model ? model->rowCount() : 0;
    const int width = static_cast<int>(listed.size());
    if (rows == 0 || width == 0) {
        return false;
    }
    const QModelIndex current = view->currentIndex();
    const auto at = std::find(listed.begin(), listed.end(), current.column());
    int row = std::max(current.row(), 0);
    int place = at == listed.end() ? 0 : static_cast<int>(at - listed.begin());
    bool step = !stay && current.isValid();

    const CContainsMatcher matcher(text);
    std::map<int, std::vector<char>> whole;
    const std::int64_t cells = static_cast<std::int64_t>(rows) * width;
    for (std::int64_t looked = 0; looked < cells; ++looked) {
        if (step) {
            place += forward ? 1 : -1;
            if (place < 0 || place >= width) {
                place = forward ? 0 : width - 1;
                row += forward ? 1 : -1;
                row = row < 0 ? rows - 1 : row >= rows ? 0 : row;
            }
        }
        step = true;
        const int column = listed[static_cast<std::size_t>(place)];
        bool matches = false;
        if (looked < static_cast<std::int64_t>(NearRows) * width) {
            matches = matcher.matches(model->index(row, column).data().toString());
        } else {
            std::vector<char>& hits = whole[column];
            if (hits.empty()) {
                hits = HpfModelPrivate::of(*model).containing(column, text);
            }
            matches = hits[static_cast<std::size_t>(model->getDataIndexByRow(row))] != 0;
        }
        if (!matches) {
            continue;
        }
        view->setCurrentIndex(model->index(row, column));
        return true;
    }
    return false;
}

} // namespace WQ
