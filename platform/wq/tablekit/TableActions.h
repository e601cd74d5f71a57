// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>

class QAbstractItemView;
class QAction;

namespace WQ
{

/// The functions of a table for the entries of its context menu.
struct TableCommands {
    /// The text to copy; empty without a selection.
    std::function<QString(bool withHeader)> selectedText;
    std::function<void()> selectAll;
    /// Writes the file that the user has chosen. If that fails, returns false and sets `error`.
    std::function<bool(const QString& fileName, QString* error)> exportCsv;
    std::function<void()> find;
    std::function<void(bool forward)> findNext;
    std::function<void()> fit;
    std::function<void()> clearSort;
    /// Empty for a table without filters.
    std::function<void()> clearFilter;
};

/// The entries; the table's view owns them.
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

/// Creates the entries with their texts and shortcuts. The shortcuts work while the view, a child of the table, or a
/// widget in it has the focus.
TableActions createTableActions(QAbstractItemView& view, const TableCommands& commands);

} // namespace WQ
