// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WQ/Export.h"

#include <QColor>
#include <QString>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <limits>

namespace WQ
{

/// One row of a high-performance table: a record of the plug-in. For each column it returns what is shown and what the
/// column is sorted and filtered by. The table calls it for rows on screen, and once for every row when it sorts or
/// filters. Columns are model column numbers. UI thread only. Change a record that is in a model only through
/// `IBaseHpfTableModel::updateData`.
class WQ_EXPORT IBaseHpfTableData
{
public:
    static constexpr int InvalidInt = std::numeric_limits<int>::max();
    static constexpr double InvalidDouble = std::numeric_limits<double>::max();
    static constexpr std::int64_t InvalidInt64 = std::numeric_limits<std::int64_t>::max();

    virtual ~IBaseHpfTableData();

    /// The text that the cell shows.
    virtual QString getDisplayQString(int column) const = 0;
    /// The sort value of a column of kind `ValueText`.
    virtual QString getQStringValue(int column) const = 0;
    /// The sort value of a column of kind `ValueInt`; `InvalidInt`, the largest value, if there is none.
    virtual int getIntValue(int column) const = 0;
    /// The same for `ValueDouble` and `InvalidDouble`.
    virtual double getDoubleValue(int column) const = 0;
    /// The same for `ValueInt64` and `InvalidInt64`.
    virtual std::int64_t getInt64Value(int column) const = 0;
    /// The colour of the cell's text.
    virtual QColor getTextColor(int column) const = 0;
    /// Identifies the row in its model. Must not change while the row is in the model.
    virtual QString getKey() const = 0;

    /// The text that the cell is filtered by and that the filter list shows. Base class: the display text.
    virtual QString getFilterQString(int column) const;
    /// A unit that is shown after the text and a blank. Base class: empty.
    virtual QString getDisplayUnit(int column) const;
    /// The column of a field name; -1 if there is none. Base class: -1.
    virtual int getIndexFromName(const QString& name) const;
    /// The resource key of an image shown before the text. Base class: empty, no image.
    virtual QString getItemIconKey(int column) const;
    /// The tool tip of that image. Base class: empty.
    virtual QString getItemIconTip(int column) const;
    /// True: the tool tip of the cell is `getUnderTipText`. False (base class): it is the full text if that does not
    /// fit the cell.
    virtual bool isShowUnderTip(int column) const;
    /// The tool tip of the cell. Base class: empty.
    virtual QString getUnderTipText(int column) const;
};

using IBaseHpfTableDataPtr = boost::shared_ptr<IBaseHpfTableData>;

} // namespace WQ
