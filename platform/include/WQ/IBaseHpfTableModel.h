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

/// What a column's values are: by what they sort, and how they stand in the cell.
enum EHpfValueKind : int {
    ValueNone = 0,   ///< Nothing to sort by.
    ValueInt = 2,    ///< 32-bit integers, right-aligned.
    ValueInt64 = 3,  ///< 64-bit integers, right-aligned.
    ValueDouble = 4, ///< Floating point numbers, right-aligned.
    ValueText = 10   ///< Texts, sorted in pinyin order.
};

/// Set of flags of one column.
enum EHpfColumnFlag : int {
    ColumnNoSort = 0x1,     ///< A click on the header doesn't sort.
    ColumnAlignCenter = 0x2 ///< Header and cells are centred.
};

/// How a column takes part in everything that lists columns: the column chooser, copy, export and find.
struct HpfColumnEntry {
    enum EKind { Default, Empty };
    EKind kind = Default; ///< Default: listed under its header text. Empty: not listed (a column of buttons, say).
};

struct HpfModelPrivate;

/// The rows of a high-performance table and what the table knows of its columns. A plug-in derives from it, says what
/// its columns are and adds its row records.
///
/// Two numberings of rows: the *data index* counts the records in the order of their arrival and stays until `clear`;
/// the *row* (of `QModelIndex`) counts what is shown, after filter and sorting. Records are known by data index and key
/// at once; rows appear in bulk, before the next event is handled.
///
/// To be used on the user-interface thread only. The model owns its records (shared).
class WQ_EXPORT IBaseHpfTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    /// `gather`: added rows are announced to the views in bulk before the next event is handled. Without it each row is
    /// announced when it is added, which suits tables that receive single rows.
    explicit IBaseHpfTableModel(bool gather, QObject* parent = nullptr);
    ~IBaseHpfTableModel() override;

    virtual int getColumnCount() const = 0;
    /// Empty for an unknown column.
    virtual QString getHeaderText(int column) const = 0;
    /// `EHpfValueKind`.
    virtual int getValueKind(int column) const = 0;
    /// Base: empty, no tip.
    virtual QString getHeaderTip(int column) const;
    /// Whether the column's width is fixed: neither the user nor the fitting of columns changes it. Base: false.
    virtual bool isColumnWidthFixed(int column) const;
    /// Colour key of the background of a row (of what is shown). Base: "clr_table_background2" for odd rows,
    /// "clr_table_background" for even ones.
    virtual QString getRowBackgroundKey(int row) const;
    /// Set of `EHpfColumnFlag`. Base: 0.
    virtual int getColumnFlags(int column) const;
    /// The step of a column of `ValueDouble`: values that round to the same multiple of it sort as equal.
    /// Base: 0, every difference counts.
    virtual double getCompareTick(int column) const;
    /// Drops all rows and all filters. The sorting stays.
    virtual void clear();

protected:
    /// Takes in a new record (`addData`, and `updateData` of an unknown key). An override calls the base.
    virtual void _addData(const IBaseHpfTableDataPtr& data);
    /// Puts `data` in the place of the record of the same key. An override calls the base.
    virtual void _updateData(int dataIndex, const IBaseHpfTableDataPtr& data);
    /// Called when what a column delegate shows for a record has changed; the base has the row repainted.
    virtual void _updateDelegateData(int dataIndex);

public:
    /// How the column is listed. Base: a default entry.
    virtual HpfColumnEntry getColumnEntry(int column) const;
    /// What a cell gives its views for a Qt item role; an override handles its own roles and hands the rest on.
    virtual QVariant getCellData(const IBaseHpfTableData& data, int row, int column, int role) const;

    /// Appends a record. Null is ignored. Keys are the caller's to keep apart: of two records with one key both are
    /// shown and the first is found by the key.
    void addData(const IBaseHpfTableDataPtr& data);
    /// Replaces the record of the same key, or appends it if there is none.
    void updateData(const IBaseHpfTableDataPtr& data);
    /// Reports that a delegate shows something new for the record of this key; an unknown key is ignored.
    void updateDelegateData(const QString& key);

    int getDataCount() const;
    /// Data index of the record, -1 if the key is unknown.
    int getDataIndexByKey(const QString& key) const;
    /// Null if the key is unknown.
    IBaseHpfTableDataPtr getDataByKey(const QString& key) const;
    /// Null outside 0 .. `getDataCount()` - 1.
    IBaseHpfTableDataPtr getDataByIndex(int dataIndex) const;
    /// Record shown in a row; null outside 0 .. `rowCount()` - 1.
    IBaseHpfTableDataPtr getDataByRow(int row) const;
    /// Data index of a row, -1 outside the rows that are shown.
    int getDataIndexByRow(int row) const;
    /// Row of a record, -1 if the filter hides it, it isn't announced yet or doesn't exist.
    int getRowByDataIndex(int dataIndex) const;

    /// Filters by one column, in addition to the filters of other columns and in place of an earlier one of this
    /// column. A filter of type `FilterNone` is the same as `clearColumnFilter`. Unknown columns and types are ignored.
    void filterColumn(int column, const FilterPair& filter);
    void clearColumnFilter(int column);
    /// Removes the filters of all columns.
    void clearFilter();
    bool isFiltered() const;
    /// The filter of a column; its type is `FilterNone` if there is none.
    FilterPair columnFilter(int column) const;
    /// The different filter texts of a column among the rows that the other columns' filters admit, in the column's
    /// order; at most `limit`. `complete`, if given, tells whether these are all.
    QStringList filterValues(int column, int limit, bool* complete = nullptr) const;

    /// Sorts what is shown, stably; a negative column restores the order of arrival. A second sort by the same column
    /// reuses the ranks of the first. Rows added later take their places when they are announced.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    void clearSort();
    /// -1 if unsorted.
    int sortColumn() const;
    Qt::SortOrder sortOrder() const;

    /// Announces gathered rows now.
    void announce();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool event(QEvent* event) override;

signals:
    /// Around every change of the order or of the set of rows shown (not around additions): a view keeps what it
    /// remembers of rows by data index in between.
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
