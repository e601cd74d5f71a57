// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CTableColumns.h"
#include "tablekit/TableActions.h"
#include "tablekit/TableText.h"

#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAction>
#include <QPointer>

#include <map>
#include <set>
#include <vector>

namespace WQ
{

class CHpfFilterPopup;
class CHpfTableView;
class CTableFindBar;

struct CStandardHpfTable::Private {
    Private(CStandardHpfTable& table, int id, int menu);

    bool hasColumn(int column) const;
    void request(bool repaint, bool fit);
    void carryOutRequests();
    void fitColumns();
    /// The visible columns for copy, export and find, left to right.
    std::vector<int> listedColumns() const;
    TableTexts texts() const;

    void createActions();
    void updateActions();
    void showMenu(const QPoint& globalPosition, int column);
    void openFilter(int column);
    /// See TableSearch::goTo.
    bool goTo(const QString& text, bool forward, bool stay);
    void sortByHeader(int column);

    CStandardHpfTable& q;
    const int tableId;
    const int menuFlags;
    int flags = TableDefaultFlags;
    QPointer<IBaseHpfTableModel> model;
    CHpfTableView* view = nullptr;
    std::unique_ptr<CTableColumns> columns;
    CTableFindBar* findBar = nullptr;
    QPointer<CHpfFilterPopup> popup;

    std::set<int> filterable;
    std::map<int, CBaseTableColumnDelegate*> delegates;

    bool requestPosted = false;
    bool repaintWanted = false;
    bool fitWanted = false;
    bool fitWhenShown = false;
    QString currentKey;

    TableActions actions;
};

} // namespace WQ
