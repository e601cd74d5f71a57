#pragma once

#include "CSimpleCellDelegate.h"
#include "CSimpleTableView.h"
#include "table/TableActions.h"
#include "table/TableText.h"

#include <WQ/CStandardSimpleTable.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <map>
#include <set>
#include <vector>

class QHeaderView;
class QMenu;

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
    void applyVisibility(int column);
    void resize(int column, int width);
    void fitColumns();
    int wantedWidth(int column) const;
    /// The columns for copy, export and find: the visible ones, left to right, without columns of widgets only.
    QVector<int> listedColumns() const;
    QVector<int> visibleColumns() const;

    // Sorting
    void sortByHeader(int column);
    void endSorting();
    void showSorting();

    // Menu
    void createActions();
    void updateActions();
    void showMenu(const QPoint& globalPosition);
    void addColumnChooser(QMenu& menu);
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
    CTableFindBar* findBar = nullptr; ///< created on first use

    std::set<int> invisible;   ///< By setColumnVisible.
    std::set<int> userHidden;  ///< By the user.
    std::map<int, int> widths; ///< Widths that somebody chose.
    bool ownResize = false;
    int sortColumn = -1;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;

    TableActions actions;
};

} // namespace WQ
