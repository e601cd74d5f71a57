#pragma once

#include "WQ/EBaseTableMenuFlag.h"
#include "WQ/Export.h"

#include <QString>

namespace WQ
{

/// What a table is and lets its user do, besides its context menu. A set of these bits is the table's `flags()`.
enum EBaseTableFlag : int {
    TableShowHeader = 0x0001,       ///< The header is shown.
    TableShowGrid = 0x0002,         ///< Thin lines between rows and columns.
    TableAlternateRows = 0x0004,    ///< Row backgrounds come from the model; without it all rows have one colour.
    TableCellSelection = 0x0008,    ///< Single cells can be selected; without it always whole rows.
    TableRowHover = 0x0010,         ///< The row under the mouse is tinted.
    TableResizableColumns = 0x0020, ///< The user may drag column borders.
    TableHeaderSort = 0x0040,       ///< A click on a header sorts: ascending, descending, unsorted.
    TableMovableColumns = 0x0080,   ///< The user may drag columns to another place.
    TableHeaderFilter = 0x0100,     ///< Filterable columns show their filter button.
    TableContextMenu = 0x0200,      ///< The context menu is shown and its shortcuts work.
    TableEmptyText = 0x0400,        ///< A table without rows says so.
    TableToggleSelection =
        0x2000, ///< A plain click adds a row to the selection or takes it out again (no Ctrl needed).

    TableDefaultFlags = TableShowHeader | TableShowGrid | TableAlternateRows | TableCellSelection | TableRowHover |
                        TableResizableColumns | TableHeaderSort | TableMovableColumns | TableHeaderFilter |
                        TableContextMenu | TableEmptyText
};

/// What every table of the framework has: an id, flags, and a layout that can be kept as a string.
/// To be used on the user-interface thread only.
class WQ_EXPORT IBaseTable
{
public:
    virtual ~IBaseTable();

    /// The id given at construction. It is part of the layout string.
    virtual int tableId() const = 0;

    /// Set of `EBaseTableFlag`; a new table has `TableDefaultFlags`. Unknown bits are kept and mean nothing.
    virtual int flags() const = 0;
    virtual void setFlags(int flags) = 0;

    /// The layout (column widths, order and visibility as the user chose them, sorting) as printable ASCII text without
    /// ';'. It is bound to this format's version and to the table id.
    virtual QString saveConfigStr() const = 0;

    /// Restores a layout that `saveConfigStr` returned. A text that is empty, damaged, of another version, of another
    /// table or of another number of columns changes nothing; returns whether the layout was taken.
    virtual bool loadConfigStr(const QString& config) = 0;

protected:
    IBaseTable() = default;
    IBaseTable(const IBaseTable&) = delete;
    IBaseTable& operator=(const IBaseTable&) = delete;
};

} // namespace WQ
