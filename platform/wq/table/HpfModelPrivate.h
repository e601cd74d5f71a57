#pragma once

#include "table/CHpfFilter.h"
#include "table/CHpfRowOrder.h"
#include "table/CRowKeyIndex.h"
#include "table/CSortRanks.h"

#include <WQ/IBaseHpfTableModel.h>

#include <QPointer>

#include <deque>
#include <map>
#include <vector>

namespace WQ
{

class CBaseTableColumnDelegate;

using HpfRecords = std::vector<IBaseHpfTableDataPtr>;

struct HpfModelPrivate {
    HpfModelPrivate(IBaseHpfTableModel& model, bool gatherInsertions);

    static HpfModelPrivate& of(IBaseHpfTableModel& model) { return *model.m_d; }
    static const HpfModelPrivate& of(const IBaseHpfTableModel& model) { return *model.m_d; }

    /// Records that the views know of; later ones are waiting to be announced.
    int announced() const { return order.dataCount(); }
    bool isCurrent() const { return !stale && announced() == static_cast<int>(records.size()); }

    const CSortRanks& ranksOf(int column);
    void forgetValues();
    void sortRows();
    void filterRows();
    /// Records that the filters admit, by data index; `except` is a column whose filter doesn't count.
    std::vector<char> admitted(int from, int except = -1);
    /// Records whose text in the column contains `text`, as a filter would find them, by data index.
    std::vector<char> containing(int column, const QString& text);
    /// Lets `change` reorder the rows, with every promise to views and persistent indexes kept.
    template <typename Change>
    void reorder(Change change);
    template <typename Change>
    void rebuild(Change change);

    IBaseHpfTableModel& q;
    HpfRecords records;
    const bool gather;
    bool announcePosted = false;
    bool stale = false; ///< Records were replaced: filter and sorting must look at them again.
    CRowKeyIndex keys;
    int hint = -1; ///< The record that was asked for last; mostly the next key asked for is its own.
    CHpfRowOrder order;
    CHpfFilter filter;
    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    std::deque<CSortRanks> ranks; ///< Of the columns sorted by last.
    std::map<int, QPointer<CBaseTableColumnDelegate>> delegates;
};

} // namespace WQ
