// What of a table is kept, handed out and pointed at: layout, texts, keys.
#include "table/CHpfHeader.h"
#include "table/CHpfTableView.h"
#include "table/HpfModelPrivate.h"
#include "table/HpfTablePrivate.h"
#include "table/TableLayout.h"
#include "table/TableText.h"

#include <QSaveFile>

namespace WQ
{

QString CStandardHpfTable::saveConfigStr() const
{
    TableLayout layout;
    layout.tableId = m_d->tableId;
    for (int visual = 0; m_d->model && visual < m_d->model->columnCount(); ++visual) {
        layout.order.append(m_d->view->header()->logicalIndex(visual));
        const auto chosen = m_d->widths.find(visual);
        layout.widths.append(chosen == m_d->widths.end() ? 0 : chosen->second);
    }
    layout.hidden = QSet<int>(m_d->userHidden.begin(), m_d->userHidden.end());
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
        layout.order.size() != m_d->model->columnCount())
        return false;
    for (int width : qAsConst(layout.widths)) {
        if (width != 0 && width < narrowestColumn)
            return false;
    }
    CHpfHeader* header = m_d->view->header();
    m_d->userHidden = std::set<int>(layout.hidden.cbegin(), layout.hidden.cend());
    m_d->widths.clear();
    for (int place = 0; place < layout.order.size(); ++place) {
        header->moveSection(header->visualIndex(layout.order.at(place)), place);
        m_d->applyVisibility(place);
        if (layout.widths.at(place) == 0)
            continue;
        m_d->widths[place] = layout.widths.at(place);
        m_d->resize(place, layout.widths.at(place));
    }
    m_d->model->sort(layout.sortColumn, layout.sortOrder);
    m_d->request(true, true);
    return true;
}

bool CStandardHpfTable::exportCsv(const QString& fileName, QString* error) const
{
    QSaveFile file(fileName);
    bool written = file.open(QIODevice::WriteOnly);
    if (written && m_d->model) {
        m_d->model->announce();
        written = writeCsv(*m_d->model, m_d->listedColumns(), file);
    }
    written = written && file.commit();
    if (!written && error)
        *error = QStringLiteral("无法写入文件“%1”：%2").arg(fileName, file.errorString());
    return written;
}

QString CStandardHpfTable::selectedText(bool withHeader) const
{
    if (!m_d->model)
        return {};
    return tabSeparated(*m_d->model, m_d->view->selectionModel()->selection(), m_d->listedColumns(), withHeader);
}

QString CStandardHpfTable::currentKey() const
{
    const QModelIndex current = m_d->view->currentIndex();
    const IBaseHpfTableDataPtr record = m_d->model ? m_d->model->getDataByRow(current.row()) : IBaseHpfTableDataPtr();
    return record ? record->getKey() : QString();
}

bool CStandardHpfTable::setCurrentKey(const QString& key)
{
    if (!m_d->model)
        return false;
    m_d->model->announce();
    const int row = m_d->model->getRowByDataIndex(m_d->model->getDataIndexByKey(key));
    const std::vector<int> columns = m_d->view->columnsInOrder();
    if (row < 0 || columns.empty())
        return false;
    m_d->view->setCurrentIndex(m_d->model->index(row, columns.front()));
    return true;
}

QStringList CStandardHpfTable::selectedKeys() const
{
    QStringList keys;
    if (!m_d->model)
        return keys;
    std::set<int> rows;
    const QItemSelection selection = m_d->view->selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.insert(row);
    }
    for (int row : rows)
        keys.append(m_d->model->getDataByRow(row)->getKey());
    return keys;
}

} // namespace WQ
