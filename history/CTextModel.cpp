// SPDX-License-Identifier: Apache-2.0
#include "history/CTextModel.h"

namespace QAV
{

WQ::HpfColumnEntry CTextModel::getColumnEntry(int column) const
{
    WQ::HpfColumnEntry entry;
    if (column == m_buttonColumn) {
        entry.kind = WQ::HpfColumnEntry::Empty;
    }
    return entry;
}

void CTextModel::setHeaders(const QStringList& headers)
{
    m_headers = headers;
    emit headerDataChanged(Qt::Horizontal, 0, m_headers.size() - 1);
}

void CTextModel::replaceRows(const std::vector<WQ::IBaseHpfTableDataPtr>& rows)
{
    QVector<WQ::FilterPair> filters;
    for (int column = 0; column < getColumnCount(); ++column) {
        filters << columnFilter(column);
    }
    clear();
    for (const WQ::IBaseHpfTableDataPtr& row : rows) {
        addData(row);
    }
    for (int column = 0; column < filters.size(); ++column) {
        if (filters[column].first != WQ::FilterNone) {
            filterColumn(column, filters[column]);
        }
    }
    announce();
}

} // namespace QAV
