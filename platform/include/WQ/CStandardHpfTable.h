// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WQ/Export.h"
#include "WQ/IBaseTable.h"
#include "WQ/TableFilter.h"

#include <QVector>
#include <QWidget>
#include <memory>

class QAbstractItemView;
class QHeaderView;

namespace WQ
{

class CBaseTableColumnDelegate;
class IBaseHpfTableModel;

/// A table for any number of rows: it touches only the rows on screen. Columns are identified by their model column
/// number, wherever the view shows them. UI thread only.
class WQ_EXPORT CStandardHpfTable : public QWidget, public IBaseTable
{
    Q_OBJECT
public:
    /// `menuFlags` is a set of `EBaseTableMenuFlag`.
    CStandardHpfTable(int tableId, QWidget* parent, int menuFlags);
    ~CStandardHpfTable() override;

    int tableId() const override;
    int flags() const override;
    void setFlags(int flags) override;
    int menuFlags() const;

    /// The table takes ownership of the model and deletes the previous one. Null leaves the table without a model.
    void setDataModel(IBaseHpfTableModel* model);
    IBaseHpfTableModel* dataModel() const;

    /// All functions for columns ignore a column that the model does not have.
    void setColumnFilterable(int column, bool filterable);
    bool isColumnFilterable(int column) const;
    /// The table takes ownership and deletes the column's previous delegate. Null restores plain cells.
    void setColumnDelegate(int column, CBaseTableColumnDelegate* delegate);
    /// Null if the column has none.
    CBaseTableColumnDelegate* columnDelegate(int column) const;
    /// A column that is hidden here stays hidden, whatever the user or a layout string says. A column that is made
    /// visible here is shown unless the user has hidden it.
    void setColumnVisible(int column, bool visible);
    bool isColumnVisible(int column) const;
    /// Sets the width in pixels. A width that was set here, by the user or by a layout string is not changed by
    /// adjustColumnWidth().
    void setColumnWidth(int column, int width);
    int columnWidth(int column) const;
    /// Removes the column from the view permanently; later columns move left. Model column numbers stay.
    void removeColumn(int column);
    bool isColumnRemoved(int column) const;

    /// Like the model's functions of the same name; without a model they do nothing.
    void filterColumn(int column, const FilterPair& filter);
    void search(const QVector<int>& columns, const QString& text);
    void clearFilter();
    void sortByColumn(int column, Qt::SortOrder order);
    void clearSort();

    /// Requests to repaint the table, and to fit the column widths to the headers and to the rows on screen. Several
    /// requests in one event-loop turn are carried out once.
    void updateTable();
    void adjustColumnWidth();

    QString saveConfigStr() const override;
    bool loadConfigStr(const QString& config) override;

    /// Writes the shown rows and columns as CSV. If the file cannot be written, returns false and sets `error` (for the
    /// user). Without a model it only returns false.
    bool exportCsv(const QString& fileName, QString* error = nullptr) const;
    /// The selected cells as tab-separated text, as Ctrl+C copies them; empty without a selection.
    QString selectedText(bool withHeader) const;

    /// The key of the current row; empty if there is none.
    QString currentKey() const;
    /// Makes the row current and scrolls to it. Returns false if the row is not shown.
    bool setCurrentKey(const QString& key);
    /// The keys of the rows with selected cells, in the order shown.
    QStringList selectedKeys() const;

    QAbstractItemView* view() const;
    QHeaderView* header() const;

    bool event(QEvent* event) override;

Q_SIGNALS:
    void sigCurrentKeyChanged(const QString& key);
    /// Double click on a row, or Enter in a cell that does not handle the key itself.
    void sigRowActivated(const QString& key);
    void sigSelectionChanged();

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
