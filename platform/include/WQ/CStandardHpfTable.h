#pragma once

#include "WQ/Export.h"
#include "WQ/IBaseTable.h"
#include "WQ/TableFilter.h"

#include <QWidget>
#include <memory>

class QAbstractItemView;
class QHeaderView;

namespace WQ
{

class CBaseTableColumnDelegate;
class IBaseHpfTableModel;

/// A table for any number of rows: only rows on screen are ever touched. Columns are known by their model column
/// number throughout, wherever they stand in the view. To be used on the user-interface thread only.
class WQ_EXPORT CStandardHpfTable : public QWidget, public IBaseTable
{
    Q_OBJECT
public:
    /// `menuFlags`: set of `EBaseTableMenuFlag`.
    CStandardHpfTable(int tableId, QWidget* parent, int menuFlags);
    ~CStandardHpfTable() override;

    int tableId() const override;
    int flags() const override;
    void setFlags(int flags) override;
    int menuFlags() const;

    /// The table takes ownership of the model and deletes an earlier one. Null leaves the table without a model.
    void setDataModel(IBaseHpfTableModel* model);
    IBaseHpfTableModel* dataModel() const;

    /// The operations on columns ignore a column that the model doesn't have.
    void setColumnFilterable(int column, bool filterable);
    bool isColumnFilterable(int column) const;
    /// The table takes ownership and deletes an earlier delegate of the column. Null restores the plain cell.
    void setColumnDelegate(int column, CBaseTableColumnDelegate* delegate);
    /// Null if the column has none.
    CBaseTableColumnDelegate* columnDelegate(int column) const;
    /// A column that is made invisible here stays so whatever the user or a layout string says; made visible, it is
    /// shown unless the user has hidden it.
    void setColumnVisible(int column, bool visible);
    bool isColumnVisible(int column) const;
    /// Pixels. The fitting of columns leaves a column alone whose width was set here, by the user or by a layout
    /// string.
    void setColumnWidth(int column, int width);
    int columnWidth(int column) const;
    /// Takes the column out of the view for good; later columns move left. Model column numbers stay.
    void removeColumn(int column);
    bool isColumnRemoved(int column) const;

    /// As the model's operations of the same name; without a model they do nothing.
    void filterColumn(int column, const FilterPair& filter);
    void clearFilter();
    void sortByColumn(int column, Qt::SortOrder order);
    void clearSort();

    /// Requests that are carried out once per event-loop turn, however often they are made: repaint what is shown; fit
    /// the widths of the columns to their headers and to the rows on screen.
    void updateTable();
    void adjustColumnWidth();

    QString saveConfigStr() const override;
    bool loadConfigStr(const QString& config) override;

    /// Writes what is shown as CSV. Returns false and fills `error` (for the user) if the file can't be
    /// written. Without a model it only returns false.
    bool exportCsv(const QString& fileName, QString* error = nullptr) const;
    /// The selected cells as tab-separated text, as Ctrl+C copies them; empty without a selection.
    QString selectedText(bool withHeader) const;

    /// Key of the current row, empty if there is none.
    QString currentKey() const;
    /// Makes the row current and scrolls to it; false if it isn't shown.
    bool setCurrentKey(const QString& key);
    /// Keys of the rows in which something is selected, in the order shown.
    QStringList selectedKeys() const;

    QAbstractItemView* view() const;
    QHeaderView* header() const;

    bool event(QEvent* event) override;

signals:
    void sigCurrentKeyChanged(const QString& key);
    /// Double click on a row, or Enter in a cell that doesn't use the key itself.
    void sigRowActivated(const QString& key);
    void sigSelectionChanged();

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
