// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WQ/IBaseHpfTableData.h"
#include "WQ/TableFilter.h"

#include <QAbstractTableModel>
#include <QStringList>
#include <QVector>
#include <functional>
#include <memory>

namespace WQ
{

/// The kind of a column's values: how they are sorted and aligned.
enum EHpfValueKind : int {
    ValueNone = 0,   ///< Cannot be sorted.
    ValueInt = 2,    ///< 32-bit integers, right-aligned.
    ValueInt64 = 3,  ///< 64-bit integers, right-aligned.
    ValueDouble = 4, ///< Floating point numbers, right-aligned.
    ValueText = 10   ///< Texts, sorted in pinyin order.
};

/// Set of flags of one column.
enum EHpfColumnFlag : int {
    ColumnNoSort = 0x1,     ///< A click on the header does not sort.
    ColumnAlignCenter = 0x2 ///< Header and cells are centred.
};

/// How a column appears where columns are listed: in the column chooser, copy, export and find.
struct HpfColumnEntry {
    enum EKind { Default, Empty };
    EKind kind = Default; ///< Default: listed under its header text. Empty: not listed, for example a button column.
};

struct HpfModelPrivate;

/// The rows of a high-performance table and the description of its columns. A plug-in derives a class from it that
/// describes its columns, and adds its row records.
///
/// Rows are numbered in two ways. The *data index* counts the records in the order in which they were added and does
/// not change until `clear`. The *row* (of `QModelIndex`) counts the shown rows after filtering and sorting. A new
/// record has a data index and a key at once; its row is announced in bulk, before the next event is handled.
///
/// UI thread only. The model shares ownership of its records.
class WQ_EXPORT IBaseHpfTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    /// `gather`: true: added rows are announced to the views in bulk before the next event is handled; false: each row
    /// is announced at once, which suits tables that receive single rows.
    explicit IBaseHpfTableModel(bool gather, QObject* parent = nullptr);
    ~IBaseHpfTableModel() override;

    virtual int getColumnCount() const = 0;
    /// Empty for an unknown column.
    virtual QString getHeaderText(int column) const = 0;
    /// `EHpfValueKind`.
    virtual int getValueKind(int column) const = 0;
    /// The tool tip of the header. Base class: empty, no tip.
    virtual QString getHeaderTip(int column) const;
    /// True if neither the user nor the automatic fitting may change the column's width. Base class: false.
    virtual bool isColumnWidthFixed(int column) const;
    /// The colour key of a shown row's background. Base class: "clr_table_background2" for odd rows,
    /// "clr_table_background" for even ones.
    virtual QString getRowBackgroundKey(int row) const;
    /// A set of `EHpfColumnFlag`. Base class: 0.
    virtual int getColumnFlags(int column) const;
    /// The step of a column of kind `ValueDouble`: values that round to the same multiple of it are equal for sorting.
    /// Base class: 0, every difference counts.
    virtual double getCompareTick(int column) const;
    /// Removes all rows, all filters and the search. The sorting stays, as do columns, widths, delegates and flags of
    /// the table; the buttons of rows stay in their delegate, see `CBaseTableColumnMultiButtonsDelegate::clear`.
    virtual void clear();

protected:
    /// Stores a new record, for `addData` and for `updateData` with an unknown key. An override must call the base
    /// class.
    virtual void _addData(const IBaseHpfTableDataPtr& data);
    /// Replaces the record with the same key by `data`. An override must call the base class.
    virtual void _updateData(int dataIndex, const IBaseHpfTableDataPtr& data);
    /// Called when a column delegate shows something new for a record. The base class repaints the row.
    virtual void _updateDelegateData(int dataIndex);

public:
    /// How the column is listed. Base class: a default entry.
    virtual HpfColumnEntry getColumnEntry(int column) const;
    /// The data of a cell for a Qt item role. An override handles its own roles and calls the base class for others.
    virtual QVariant getCellData(const IBaseHpfTableData& data, int row, int column, int role) const;

    /// Appends a record. Null is ignored. The caller ensures that keys are unique: of two records with the same key
    /// both are shown, and the key finds the first.
    void addData(const IBaseHpfTableDataPtr& data);
    /// Replaces the record with the same key, or appends it if there is none.
    void updateData(const IBaseHpfTableDataPtr& data);
    /// Reports that a delegate shows something new for the record with this key. An unknown key is ignored.
    void updateDelegateData(const QString& key);

    int getDataCount() const;
    /// The data index of the record; -1 if the key is unknown.
    int getDataIndexByKey(const QString& key) const;
    /// Null if the key is unknown.
    IBaseHpfTableDataPtr getDataByKey(const QString& key) const;
    /// Null outside 0 .. `getDataCount()` - 1.
    IBaseHpfTableDataPtr getDataByIndex(int dataIndex) const;
    /// The record in a shown row; null outside 0 .. `rowCount()` - 1.
    IBaseHpfTableDataPtr getDataByRow(int row) const;
    /// The data index of a shown row; -1 if there is no such row.
    int getDataIndexByRow(int row) const;
    /// The row of a record; -1 if it is filtered out, not announced yet, or unknown.
    int getRowByDataIndex(int dataIndex) const;

    /// Sets the filter of one column; the filters of other columns stay. A filter of type `FilterNone` is the same as
    /// `clearColumnFilter`. Unknown columns and types are ignored.
    void filterColumn(int column, const FilterPair& filter);
    void clearColumnFilter(int column);
    /// Narrows the rows to those in which at least one of `columns` contains `text`, as by `FilterContains`, in
    /// addition to the filters of single columns. Replaces the previous search; an empty text ends it. Unknown columns
    /// are ignored; without a known one no row is found.
    void search(const QVector<int>& columns, const QString& text);
    /// Removes the filters of all columns and the search.
    void clearFilter();
    /// True if there is a filter or a search.
    bool isFiltered() const;
    /// The filter of a column; its type is `FilterNone` if there is none.
    FilterPair columnFilter(int column) const;
    /// The distinct filter texts of a column in the rows that pass the filters of the other columns, sorted like the
    /// column; at most `limit`. `complete`, if not null, receives whether these are all.
    QStringList filterValues(int column, int limit, bool* complete = nullptr) const;

    /// Sorts the shown rows; the sort is stable. A negative column restores the original order. Sorting by the same
    /// column again reuses the ranks. Rows added later are sorted in when they are announced.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    void clearSort();
    /// -1 if unsorted.
    int sortColumn() const;
    Qt::SortOrder sortOrder() const;

    /// Announces the gathered rows now.
    void announce();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool event(QEvent* event) override;

Q_SIGNALS:
    /// Emitted before and after every change of the order or the set of shown rows, but not around additions. In
    /// between, a view refers to rows by data index.
    void sigAboutToRearrange();
    void sigRearranged();
    void sigFilterChanged();
    void sigSortChanged();
    /// The model was cleared.
    void sigCleared();

private:
    friend struct HpfModelPrivate;
    std::unique_ptr<HpfModelPrivate> m_d;
};

} // namespace WQ
