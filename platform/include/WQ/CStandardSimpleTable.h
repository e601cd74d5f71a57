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

/// A table that holds its rows itself: cells of text and cells of widgets. To be used on the user-interface thread
/// only.
///
/// Rows are known by their id. Ids count up from 0, stay when other rows are removed or sorted, and are never used
/// again while the table lives, not even after clear(). The display order is the order of appending until the user
/// sorts; a cell that is written or a row that is appended afterwards ends the sorting and leaves every row where it
/// stands. Filling, removing and finding rows by id or position is quick at any number of rows.
///
/// Of the flags, TableHeaderFilter means nothing here: no row is ever left out of what is shown, counted and exported.
///
/// What the program changes is shown once per event-loop turn, however many changes there are.
///
/// A cell widget belongs to the table and is visible only while its row is on screen; otherwise it is parked, hidden,
/// below the table. Its events go up to the deliverers above the table wherever it is. The Tab key goes from the table
/// to the widgets of the current row and on; they do not take part in the window's own Tab order. Space and Enter on
/// a cell whose widget is a button click it.
///
/// Operations on a row or column that doesn't exist do nothing and return an empty value.
class WQ_EXPORT CStandardSimpleTable : public QWidget, public IBaseTable
{
    Q_OBJECT
public:
    /// Makes the widget of a cell as a child of `parent`. May return null.
    using WidgetFactory = std::function<QWidget*(QWidget* parent)>;

    CStandardSimpleTable(int tableId, QWidget* parent);
    ~CStandardSimpleTable() override;

    int tableId() const override;
    int flags() const override;
    void setFlags(int flags) override;

    /// Takes all rows away when the number changes.
    void setColumnCount(int count);
    int columnCount() const;
    void setHeaderText(int column, const QString& text);
    QString headerText(int column) const;
    /// Pixels.
    void setHeaderHeight(int height);
    void setRowHeight(int height);
    int headerHeight() const;
    int rowHeight() const;
    /// A column that is made invisible here stays so whatever the user or a layout string says.
    void setColumnVisible(int column, bool visible);
    bool isColumnVisible(int column) const;
    /// Pixels. A column without a width of its own, given here, by the user or by a layout string, is fitted.
    void setColumnWidth(int column, int width);
    int columnWidth(int column) const;
    /// Qt::Alignment of the column's texts; left and vertically centred at first.
    void setColumnAlignment(int column, int alignment);
    /// Fits the columns without a width of their own to headers, the rows on screen and the next ones below it, and
    /// together to the table's width; where that is too narrow, the widest columns give way first.
    /// Also done by itself when rows come or the table's size changes.
    void adjustTableSize();

    /// Appends an empty row and returns its id.
    int appendRow();
    /// Removes the row and its widgets. A widget is deleted after the current event, so the handler of its click may
    /// call this. The selection does not move to another row.
    void removeRow(int rowId);
    /// Removes all rows and ends the sorting. Columns, widths and flags stay.
    void clear();
    int rowCount() const;
    /// Id of the row at a position of the display order, -1 outside 0 .. rowCount()-1.
    int rowID(int index) const;
    /// Position in the display order, -1 if there is no such row.
    int rowIndex(int rowId) const;
    bool hasRow(int rowId) const { return rowIndex(rowId) >= 0; }

    /// @param update  true: the cell is painted again; false: the next updateTable() shows it
    void setItemText(int rowId, int column, const QString& text, bool update = true);
    QString itemText(int rowId, int column) const;
    /// Colour of the text by key of the theme; empty: the table's.
    void setItemColorKey(int rowId, int column, const QString& key);

    /// Puts a widget into the cell, over its text; the table owns it from now on and deletes the cell's earlier one.
    /// Null takes it away. The header stands as the column's widgets do. The widget keeps its size hint, within its
    /// minimum and maximum size, as far as the cell has room.
    /// @param alignment  Qt::Alignment in the cell, 132 = centred both ways; 0 fills the cell
    /// @param update     as for setItemText
    void setItemWidget(int rowId, int column, QWidget* widget, int alignment, bool update = true);
    /// As above, and cheaper for many rows: the widget is made when its row first comes on screen (or is asked for with
    /// itemWidget), and kept.
    void setItemWidget(int rowId, int column, WidgetFactory factory, int alignment, bool update = true);
    /// The widget of the cell, visible or parked; null if it has none.
    QWidget* itemWidget(int rowId, int column) const;
    /// Shows what was changed with `update` false.
    void updateTable();

    /// Ids of the rows in which something is selected, in display order.
    QVector<int> selectedRows() const;
    void setRowSelected(int rowId, bool selected);
    void clearSelection();
    /// Id of the current row, -1 if there is none.
    int currentRow() const;
    /// Makes the row current, without selecting it, and scrolls to it.
    void setCurrentRow(int rowId, int column = 0);

    /// Text shown in the middle while there are no rows; "暂无数据" at first.
    void setEmptyText(const QString& text);

    /// The order shown: by the texts of a column (numbers by value, Chinese by pinyin), or as appended.
    void sortByColumn(int column, Qt::SortOrder order);
    void clearSort();

    QString saveConfigStr() const override;
    bool loadConfigStr(const QString& config) override;

    /// Writes the visible columns of all rows as CSV, UTF-8 with a byte order mark. Returns false and fills `error`
    /// (for the user) if the file can't be written.
    bool exportCsv(const QString& fileName, QString* error = nullptr) const;
    /// The selected cells as tab-separated text, as Ctrl+C copies them; empty without a selection.
    QString selectedText(bool withHeader) const;

    /// The inner view, up to date with the rows; for tests and drivers.
    QAbstractItemView* view() const;
    QHeaderView* header() const;

    QSize sizeHint() const override;

signals:
    void sigSelectionChanged();
    /// Double click on a row, or Enter in a cell without a button.
    void sigRowActivated(int rowId);

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
