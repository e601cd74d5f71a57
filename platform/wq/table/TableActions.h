#pragma once

#include <QString>

#include <functional>
#include <vector>

class QAbstractItemView;
class QAction;
class QMenu;

namespace WQ
{

/// What a table does for the entries of its context menu.
struct TableCommands {
    /// What is copied; empty without a selection.
    std::function<QString(bool withHeader)> selectedText;
    std::function<void()> selectAll;
    /// Writes a file that the user chose; false, with the reason in `error`, when that fails.
    std::function<bool(const QString& fileName, QString* error)> exportCsv;
    std::function<void()> find;
    std::function<void(bool forward)> findNext;
    std::function<void()> fit;
    std::function<void()> clearSort;
    /// Empty for a table without filters.
    std::function<void()> clearFilter;
};

/// The entries; they belong to the table's view.
struct TableActions {
    QAction* copy = nullptr;
    QAction* copyWithHeader = nullptr;
    QAction* selectAll = nullptr;
    QAction* exportCsv = nullptr;
    QAction* find = nullptr;
    QAction* findNext = nullptr;
    QAction* findPrevious = nullptr;
    QAction* fit = nullptr;
    QAction* clearSort = nullptr;
    QAction* clearFilter = nullptr; ///< null for a table without filters
};

/// Makes the entries with their texts and shortcuts, which work while the view, a child of the table, or a widget in it
/// has the focus.
TableActions createTableActions(QAbstractItemView& view, const TableCommands& commands);

/// A column that the user may show and hide.
struct TableColumnChoice {
    int column;
    QString text;
    bool shown;
};

/// Adds the sub-menu in which columns are shown and hidden. One column always stays.
void addColumnChooser(QMenu& menu, const std::vector<TableColumnChoice>& columns,
                      const std::function<void(int column, bool shown)>& setShown);

} // namespace WQ
