// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CTableColumns.h"
#include "tablekit/CTableView.h"
#include "tablekit/TableText.h"

#include <WQ/IBaseTable.h>

#include <QPointer>

namespace WQ
{

class CTableFindBar;

/// What a table has besides its rows: columns, context menu with shortcuts, find bar, copy, export, layout string. The
/// table is a widget with a view and, below it, the find bar.
class CTableKit
{
public:
    /// `menuFlags`: a set of EBaseTableMenuFlag.
    CTableKit(QWidget& table, CTableView& view, int tableId, int menuFlags);
    virtual ~CTableKit() = default;
    CTableKit(const CTableKit&) = delete;
    CTableKit& operator=(const CTableKit&) = delete;

    int tableId() const { return m_tableId; }
    int menuFlags() const { return m_menuFlags; }
    CTableColumns& columns() { return m_columns; }

    /// Fits the columns without a chosen width soon.
    virtual void requestFit() = 0;
    virtual int sortColumn() const = 0; ///< -1: not sorted
    virtual Qt::SortOrder sortOrder() const = 0;
    /// -1: ends the sorting.
    virtual void sort(int column, Qt::SortOrder order) = 0;

    void setFlags(int flags);
    /// Adapts the menu's entries to the flags, the sorting and the filter.
    void updateActions();
    /// Names the view for assistive technology: as the table, else by its columns.
    void nameView();

    QString saveConfig() const;
    bool loadConfig(const QString& config);
    QString selectedText(bool withHeader) const;
    bool exportCsv(const QString& fileName, QString* error) const;

protected:
    /// False as long as the table has no model.
    virtual bool isReady() const { return true; }
    /// Whether a visible column counts for copy, export and find.
    virtual bool isListed(int column) const = 0;
    virtual bool isInChooser(int) const { return true; }
    virtual bool isSortable(int) const { return true; }
    virtual bool isNumber(int column, const QString& text) const = 0;
    /// By row: 1 for a cell of the column that contains the text.
    virtual std::vector<char> matches(int column, const QString& text) const = 0;

    virtual bool hasFilters() const { return false; }
    virtual bool isFiltered() const { return false; }
    virtual bool isFilteredBy(int) const { return false; }
    virtual void clearFilter() {}
    virtual bool isFilterable(int) const { return false; }
    virtual void openFilter(int) {}

private:
    void createActions();
    /// `index`: of the row whose actions are listed; invalid: none. `column`: may be filtered.
    void showMenu(const QPoint& globalPosition, const QModelIndex& index, int column);
    bool canSortBy(int column) const;
    TableActions columnActions(int column);
    QString columnState(int column) const;
    void sortByHeader(int column);
    void copy(bool withHeader) const;
    void exportByDialog();
    CTableFindBar& findBar();
    bool find(const QString& text, bool forward, bool stay);
    std::vector<int> listedColumns() const;
    TableTexts texts() const;
    QAction* action(const char* name) const;

    QWidget& m_table;
    CTableView& m_view;
    const int m_tableId;
    const int m_menuFlags;
    CTableColumns m_columns;
    QPointer<CTableFindBar> m_findBar; ///< created on first use
};

} // namespace WQ
