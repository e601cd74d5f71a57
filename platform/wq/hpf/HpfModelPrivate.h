// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "hpf/CHpfFilter.h"
#include "hpf/CHpfRowOrder.h"
#include "hpf/CRowKeyIndex.h"
#include "hpf/CSortRanks.h"

#include <WQ/IBaseHpfTableModel.h>

#include <QEvent>
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

    static const QEvent::Type AnnounceEvent;

    static HpfModelPrivate& of(IBaseHpfTableModel& model) { return *model.m_d; }
    static const HpfModelPrivate& of(const IBaseHpfTableModel& model) { return *model.m_d; }

    /// The number of announced records; later ones are waiting to be announced.
    int announced() const { return order.dataCount(); }
    bool isCurrent() const { return !stale && announced() == static_cast<int>(records.size()); }

    /// Announces now, or with all others before the next event.
    void announceSoon();
    void announce();
    void clear();
    void applyFilter(bool isChanged);
    void sort(int column, Qt::SortOrder newOrder);
    /// See IBaseHpfTableModel.
    QStringList filterValues(int column, int limit, bool& complete);

    const CSortRanks& ranksOf(int column);
    void forgetValues();
    void sortRows();
    void filterRows();
    /// Calls `change` to reorder the rows, and updates views and persistent indexes as Qt requires.
    template <typename Change>
    void reorder(Change change);
    template <typename Change>
    void rebuild(Change change);

    IBaseHpfTableModel& q;
    HpfRecords records;
    const bool gather;
    bool announcePosted = false;
    bool stale = false; ///< Records were replaced, so filter and sorting must be applied again.
    CRowKeyIndex keys;
    int hint = -1; ///< The last requested record; the next requested key is usually its own.
    CHpfRowOrder order;
    CHpfFilter filter;
    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    std::deque<CSortRanks> ranks; ///< Of the columns sorted by last.
    std::map<int, QPointer<CBaseTableColumnDelegate>> delegates;
};

} // namespace WQ
