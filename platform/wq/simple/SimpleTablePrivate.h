// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CSimpleCellDelegate.h"
#include "CSimpleTableView.h"
#include "tablekit/CTableColumns.h"
#include "tablekit/TableActions.h"
#include "tablekit/TableText.h"

#include <WQ/CStandardSimpleTable.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <vector>

class QHeaderView;

namespace WQ
{

class CTableFindBar;

struct CStandardSimpleTable::Private : public CUiResourceChangeHandler {
    Private(CStandardSimpleTable& table, int id);

    bool hasColumn(int column) const;
    bool hasCell(int rowId, int column) const;
    QHeaderView& header() const;
    void onUiResourceChanged() override;

    void applyFlags();
    void nameView();
    /// Repaint once per event-loop turn.
    void requestRepaint(bool now);

    // Columns
    void fitColumns();
    int wantedWidth(int column) const;
    /// The columns for copy, export and find: the visible ones, left to right, without columns of widgets only.
    std::vector<int> listedColumns() const;

    // Sorting
    void sortByHeader(int column);
    void endSorting();
    void showSorting();

    // Menu
    void createActions();
    void updateActions();
    void showMenu(const QPoint& globalPosition);
    CTableFindBar& wantedFindBar();
    /// See TableSearch::goTo.
    bool goTo(const QString& text, bool forward, bool stay);
    TableTexts texts() const;

    CStandardSimpleTable& q;
    const int tableId;
    int flags = TableDefaultFlags;
    int headerHeight = 28;
    CSimpleTableView* view;
    CSimpleCellDelegate* delegate;
    CTableColumns columns;
    CTableFindBar* findBar = nullptr; ///< created on first use

    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;

    TableActions actions;
};

} // namespace WQ
