// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WQ/Export.h"
#include "WQ/IBaseTable.h"

#include <QVector>
#include <QWidget>
#include <functional>
#include <memory>

class QAbstractItemView;
class QHeaderView;

namespace WQ
{

/// A table that stores its rows itself. Cells contain text or widgets. UI thread only.
///
/// Rows are identified by ids. Ids count up from 0 and do not change when other rows are removed or sorted. They are
/// never reused while the table exists, not even after clear(). Rows are shown in the order in which they were appended
/// until the user sorts. Writing a cell or appending a row ends the sorting; the rows keep their current order. Adding,
/// removing and finding rows by id or position is fast with any number of rows.
///
/// The flag TableHeaderFilter has no effect: all rows are always shown, counted and exported.
///
/// The program's changes are shown once per event-loop turn, however many there are.
///
/// A cell widget belongs to the table. It is visible only while its row is on screen; otherwise it is parked as a
/// hidden child of the table. In both cases its events reach the deliverers above the table. The Tab key moves from the
/// table to the widgets of the current row and on; they are not part of the window's own Tab order. If a cell's widget
/// is a button, Space and Enter in the cell click it.
///
/// Functions with an unknown row or column do nothing and return an empty value.
class WQ_EXPORT CStandardSimpleTable : public QWidget, public IBaseTable
{
    Q_OBJECT
public:
    /// Creates the widget of a cell as a child of `parent`. May return null.
    using WidgetFactory = std::function<QWidget*(QWidget* parent)>;

    CStandardSimpleTable(int tableId, QWidget* parent);
    ~CStandardSimpleTable() override;

    int tableId() const override;
    int flags() const override;
    void setFlags(int flags) override;

    /// Removes all rows if the number changes.
    void setColumnCount(int count);
    int columnCount() const;
    void setHeaderText(int column, const QString& text);
    QString headerText(int column) const;
    /// Pixels.
    void setHeaderHeight(int height);
    void setRowHeight(int height);
    int headerHeight() const;
    int rowHeight() const;
    /// A column that is hidden here stays hidden, whatever the user or a layout string says.
    void setColumnVisible(int column, bool visible);
    bool isColumnVisible(int column) const;
    /// Sets the width in pixels. A column is fitted automatically unless its width was set here, by the user or by a
    /// layout string.
    void setColumnWidth(int column, int width);
    int columnWidth(int column) const;
    /// Sets the Qt::Alignment of the column's texts; left and vertically centred by default.
    void setColumnAlignment(int column, int alignment);
    /// Fits the columns without a set width to the headers, to the rows on screen and the next ones below, and together
    /// to the table's width. If the table is too narrow, the widest columns shrink first. This also happens
    /// automatically when rows are added or the table is resized.
    void adjustTableSize();

    /// Appends an empty row and returns its id.
    int appendRow();
    /// Removes the row and its widgets. The widgets are deleted after the current event, so their click handlers may
    /// call this function. The selection does not move to another row.
    void removeRow(int rowId);
    /// Removes all rows and ends the sorting. Columns, widths and flags stay.
    void clear();
    int rowCount() const;
    /// The id of the row at a position of the display order; -1 outside 0 .. rowCount()-1.
    int rowID(int index) const;
    /// The position in the display order; -1 if there is no such row.
    int rowIndex(int rowId) const;
    bool hasRow(int rowId) const { return rowIndex(rowId) >= 0; }

    /// @param update  true: the cell is repainted; false: updateTable() shows the change
    void setItemText(int rowId, int column, const QString& text, bool update = true);
    QString itemText(int rowId, int column) const;
    /// Sets the colour of the text by a key of the theme; empty: the table's colour.
    void setItemColorKey(int rowId, int column, const QString& key);

    /// Puts a widget into the cell, over its text. The table takes ownership and deletes the cell's previous widget;
    /// null removes it. The header of the column is aligned like its widgets. If the cell has room, the widget has its
    /// size hint, within its minimum and maximum size.
    /// @param alignment  Qt::Alignment in the cell, 132 = centred both ways; 0 fills the cell
    /// @param update     see setItemText
    void setItemWidget(int rowId, int column, QWidget* widget, int alignment, bool update = true);
    /// The same, but cheaper for many rows: the widget is created when its row first comes on screen, or when
    /// itemWidget asks for it, and then kept.
    void setItemWidget(int rowId, int column, WidgetFactory factory, int alignment, bool update = true);
    /// The widget of the cell, visible or parked; null if it has none.
    QWidget* itemWidget(int rowId, int column) const;
    /// Shows the changes made with `update` = false.
    void updateTable();

    /// The ids of the rows with selected cells, in display order.
    QVector<int> selectedRows() const;
    void setRowSelected(int rowId, bool selected);
    void clearSelection();
    /// The id of the current row; -1 if there is none.
    int currentRow() const;
    /// Makes the row current without selecting it, and scrolls to it.
    void setCurrentRow(int rowId, int column = 0);

    /// Sets the text that is shown in the middle while there are no rows, in place of the reason
    /// (see setEmptyReason) or “暂无数据”.
    void setEmptyText(const QString& text);

    /// Sorts the rows by the texts of a column: numbers by value, Chinese by pinyin.
    void sortByColumn(int column, Qt::SortOrder order);
    void clearSort();

    QString saveConfigStr() const override;
    bool loadConfigStr(const QString& config) override;

    /// Writes the visible columns of all rows as CSV, UTF-8 with a byte order mark. If the file cannot be written,
    /// returns false and sets `error` (for the user).
    bool exportCsv(const QString& fileName, QString* error = nullptr) const;
    /// The selected cells as tab-separated text, as Ctrl+C copies them; empty without a selection.
    QString selectedText(bool withHeader) const;

    /// For tests: the inner view, up to date with the rows.
    QAbstractItemView* view() const;
    QHeaderView* header() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void sigSelectionChanged();
    /// Double click on a row, or Enter in a cell without a button.
    void sigRowActivated(int rowId);

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
