#pragma once

#include "WQ/Export.h"

#include <QColor>
#include <QString>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <limits>

namespace WQ
{

/// One row of a high-performance table: a record of the plug-in that answers what each of its columns shows, sorts and
/// filters by. The table calls it for rows that are on screen, and for every row once when it sorts or filters.
/// Columns are model column numbers. To be used on the user-interface thread only; a record that is in a model changes
/// only through `IBaseHpfTableModel::updateData`.
class WQ_EXPORT IBaseHpfTableData
{
public:
    static constexpr int InvalidInt = std::numeric_limits<int>::max();
    static constexpr double InvalidDouble = std::numeric_limits<double>::max();
    static constexpr std::int64_t InvalidInt64 = std::numeric_limits<std::int64_t>::max();

    virtual ~IBaseHpfTableData();

    /// What the cell shows.
    virtual QString getDisplayQString(int column) const = 0;
    /// What a column of value kind `ValueText` sorts by.
    virtual QString getQStringValue(int column) const = 0;
    /// What a column of value kind `ValueInt` sorts by; `InvalidInt` if the column has none, the largest of all.
    virtual int getIntValue(int column) const = 0;
    /// The same for `ValueDouble` and `InvalidDouble`.
    virtual double getDoubleValue(int column) const = 0;
    /// The same for `ValueInt64` and `InvalidInt64`.
    virtual std::int64_t getInt64Value(int column) const = 0;
    /// The colour of the cell's text.
    virtual QColor getTextColor(int column) const = 0;
    /// Identifies the row within its model. It never changes while the row is in the model.
    virtual QString getKey() const = 0;

    /// What the cell is filtered by, and listed under in the filter's list of values. Base: the display text.
    virtual QString getFilterQString(int column) const;
    /// A unit that is shown behind the text, parted by a blank. Base: empty.
    virtual QString getDisplayUnit(int column) const;
    /// The column that a field's name stands for, -1 if there is none. Base: -1.
    virtual int getIndexFromName(const QString& name) const;
    /// Resource key of an image shown before the text. Base: empty, no image.
    virtual QString getItemIconKey(int column) const;
    /// What the mouse over that image tells. Base: empty.
    virtual QString getItemIconTip(int column) const;
    /// Whether the mouse over the text shows `getUnderTipText`; otherwise a text that doesn't fit its cell is shown in
    /// full. Base: false.
    virtual bool isShowUnderTip(int column) const;
    /// The tip of the cell. Base: empty.
    virtual QString getUnderTipText(int column) const;
};

using IBaseHpfTableDataPtr = boost::shared_ptr<IBaseHpfTableData>;

} // namespace WQ
