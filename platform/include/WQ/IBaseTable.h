// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WQ/EBaseTableMenuFlag.h"
#include "WQ/Export.h"

#include <QString>

namespace WQ
{

/// The appearance and features of a table, except its context menu. `flags()` is a set of these bits.
enum EBaseTableFlag : int {
    TableShowHeader = 0x0001,       ///< The header is shown.
    TableShowGrid = 0x0002,         ///< Thin lines between rows and columns.
    TableAlternateRows = 0x0004,    ///< Row backgrounds come from the model; otherwise all rows have the same colour.
    TableCellSelection = 0x0008,    ///< Single cells can be selected; otherwise only whole rows.
    TableRowHover = 0x0010,         ///< The row under the mouse is highlighted.
    TableResizableColumns = 0x0020, ///< The user may drag column borders.
    TableHeaderSort = 0x0040,       ///< A click on a header sorts: ascending, descending, unsorted.
    TableMovableColumns = 0x0080,   ///< The user may drag columns to another position.
    TableHeaderFilter = 0x0100,     ///< Filterable columns show their filter button.
    TableContextMenu = 0x0200,      ///< The context menu is shown and its shortcuts work.
    TableEmptyText = 0x0400,        ///< A table without rows shows a text.
    TableToggleSelection = 0x2000, ///< A click selects or deselects a row without changing the others (no Ctrl needed).

    TableDefaultFlags = TableShowHeader | TableShowGrid | TableAlternateRows | TableCellSelection | TableRowHover |
                        TableResizableColumns | TableHeaderSort | TableMovableColumns | TableHeaderFilter |
                        TableContextMenu | TableEmptyText
};

/// The common interface of all tables: an id, flags, and a layout that can be saved as a string. UI thread only.
class WQ_EXPORT IBaseTable
{
public:
    virtual ~IBaseTable();

    /// The id given at construction. It is part of the layout string, so that a layout cannot be loaded into another
    /// table. Tables of one panel have different ids; tables of different panels may have the same.
    virtual int tableId() const = 0;

    /// A set of `EBaseTableFlag`; a new table has `TableDefaultFlags`. Unknown bits are stored but have no effect.
    virtual int flags() const = 0;
    virtual void setFlags(int flags) = 0;

    /// The layout as printable ASCII text without ';': widths, order and visibility of the columns as set by the user,
    /// and the sorting. It contains a format version and the table id.
    virtual QString saveConfigStr() const = 0;

    /// Restores a layout from `saveConfigStr`. Returns false and changes nothing if the text is empty, damaged, or of
    /// another version, table or number of columns.
    virtual bool loadConfigStr(const QString& config) = 0;

protected:
    IBaseTable() = default;
    IBaseTable(const IBaseTable&) = delete;
    IBaseTable& operator=(const IBaseTable&) = delete;
};

} // namespace WQ
