// SPDX-License-Identifier: Apache-2.0
#include "hpf/CHpfTableKit.h"

#include "hpf/CHpfFilterPopup.h"
#include "hpf/CHpfHeader.h"
#include "hpf/CHpfTableView.h"
#include "hpf/HpfModelPrivate.h"

#include <WQ/CStandardHpfTable.h>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int NarrowestFit = 64;
constexpr int WidestFit = 480;

} // namespace

CHpfTableKit::CHpfTableKit(CStandardHpfTable& table, CHpfTableView& view, int tableId, int menuFlags)
    : CTableKit(table, view, tableId, menuFlags), m_table(table), m_view(view)
{
}

IBaseHpfTableModel* CHpfTableKit::model() const
{
    return m_view.hpfModel();
}

void CHpfTableKit::fitColumns()
{
    for (const int column : columns().visible()) {
        if (!columns().hasChosenWidth(column) && !m_view.isColumnWidthFixed(column)) {
            const int needed = std::max(m_view.header()->contentWidth(column), m_view.contentWidth(column));
            columns().fit(column, std::clamp(needed, NarrowestFit, WidestFit));
        }
    }
    nameView();
}

void CHpfTableKit::requestFit()
{
    m_table.adjustColumnWidth();
}

int CHpfTableKit::sortColumn() const
{
    return model() ? model()->sortColumn() : -1;
}

Qt::SortOrder CHpfTableKit::sortOrder() const
{
    return model() ? model()->sortOrder() : Qt::AscendingOrder;
}

void CHpfTableKit::sort(int column, Qt::SortOrder order)
{
    if (model()) {
        model()->sort(column, order);
    }
}

bool CHpfTableKit::isListed(int column) const
{
    return model()->getColumnEntry(column).kind == HpfColumnEntry::Default;
}

bool CHpfTableKit::isSortable(int column) const
{
    return !(model()->getColumnFlags(column) & ColumnNoSort);
}

bool CHpfTableKit::isNumber(int column, const QString&) const
{
    const int kind = model()->getValueKind(column);
    return kind != ValueText && kind != ValueNone;
}

std::vector<char> CHpfTableKit::matches(int column, const QString& text) const
{
    HpfModelPrivate& rows = HpfModelPrivate::of(*model());
    const std::vector<char> byData = rows.filter.containing(rows.records, column, text);
    std::vector<char> byRow;
    for (int row = 0; row < model()->rowCount(); ++row) {
        byRow.push_back(byData[static_cast<std::size_t>(model()->getDataIndexByRow(row))]);
    }
    return byRow;
}

bool CHpfTableKit::isFiltered() const
{
    return model() && model()->isFiltered();
}

bool CHpfTableKit::isFilteredBy(int column) const
{
    return model() && model()->columnFilter(column).first != FilterNone;
}

void CHpfTableKit::clearFilter()
{
    m_table.clearFilter();
}

bool CHpfTableKit::isFilterable(int column) const
{
    return m_view.header()->hasFilterButton(column);
}

void CHpfTableKit::openFilter(int column)
{
    if (!isFilterable(column)) {
        return;
    }
    closeFilter();
    m_view.sync();
    m_popup = new CHpfFilterPopup(*model(), column, &m_table);
    const CHpfHeader& header = *m_view.header();
    const QRect button = header.filterButtonRect(column);
    m_popup->openBelow({header.viewport()->mapToGlobal(button.topLeft()), button.size()});
}

void CHpfTableKit::closeFilter()
{
    delete m_popup;
}

} // namespace WQ
