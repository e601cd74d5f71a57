// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CTradeLimitModel.h"

#include <QCoreApplication>

namespace QAV
{

QString CTradeLimitModel::getHeaderText(int column) const
{
    static const QStringList texts{
        QCoreApplication::translate("QAV", "证券代码"), QCoreApplication::translate("QAV", "证券名称"),
        QCoreApplication::translate("QAV", "名单"), QCoreApplication::translate("QAV", "方向")};
    return texts.value(column);
}

int CTradeLimitModel::getColumnFlags(int column) const
{
    return column == TradeLimitListColumn || column == TradeLimitDirectionColumn ? WQ::ColumnAlignCenter : 0;
}

WQ::HpfColumnEntry CTradeLimitModel::getColumnEntry(int column) const
{
    WQ::HpfColumnEntry entry;
    entry.kind = column == TradeLimitSearchColumn ? WQ::HpfColumnEntry::Empty : WQ::HpfColumnEntry::Default;
    return entry;
}

void CTradeLimitModel::setRows(const CTradeLimitRows& rows)
{
    std::vector<std::pair<int, WQ::FilterPair>> filters;
    for (int column = 0; column < TradeLimitColumnCount; ++column) {
        const WQ::FilterPair filter = columnFilter(column);
        if (filter.first != WQ::FilterNone) {
            filters.emplace_back(column, filter);
        }
    }
    clear();
    for (const auto& [column, filter] : filters) {
        filterColumn(column, filter);
    }
    for (const CTradeLimitRowPtr& row : rows) {
        addData(row);
    }
    announce();
}

} // namespace QAV
