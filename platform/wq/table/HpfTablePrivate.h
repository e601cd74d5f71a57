#pragma once

#include "table/TableActions.h"
#include "table/TableText.h"

#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAction>
#include <QPointer>

#include <map>
#include <set>
#include <vector>

class QMenu;

namespace WQ
{

class CHpfFilterPopup;
class CHpfTableView;
class CTableFindBar;

/// The minimum width of a column in pixels.
constexpr int narrowestColumn = 40;

struct CStandardHpfTable::Private {
    Private(CStandardHpfTable& table, int id, int menu);

    bool hasColumn(int column) const;
    void applyVisibility(int column);
    void resize(int column, int width);
    void request(bool repaint, bool fit);
    void carryOutRequests();
    void fitColumns();
    /// The visible columns for copy, export and find, left to right.
    std::vector<int> listedColumns() const;
    TableTexts texts() const;

    void createActions();
    void updateActions();
    void showMenu(const QPoint& globalPosition, int column);
    void addColumnChooser(QMenu& menu);
    void setUserVisible(int column, bool visible);
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
    CTableFindBar* findBar = nullptr;
    QPointer<CHpfFilterPopup> popup;

    std::set<int> filterable;
    std::set<int> invisible;  ///< By setColumnVisible.
    std::set<int> userHidden; ///< By the user.
    std::set<int> removed;
    std::map<int, int> widths; ///< Widths that somebody chose.
    std::map<int, CBaseTableColumnDelegate*> delegates;

    bool ownResize = false;
    bool requestPosted = false;
    bool repaintWanted = false;
    bool fitWanted = false;
    bool fitWhenShown = false;
    QString currentKey;

    TableActions actions;
};

} // namespace WQ
