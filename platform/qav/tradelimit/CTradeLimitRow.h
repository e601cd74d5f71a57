// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IBaseHpfTableData.h>
#include <nvservice/CTradeLimitEntry.h>
#include <nvservice/EZvTraderType.h>

#include <boost/shared_ptr.hpp>

#include <vector>

namespace QAV
{

enum ETradeLimitColumn {
    TradeLimitCodeColumn,
    TradeLimitNameColumn,
    TradeLimitListColumn,
    TradeLimitDirectionColumn,
    TradeLimitSearchColumn, ///< code and name together, for the search; never shown
    TradeLimitColumnCount
};

/// One entry of a black or white list as a row of the table. Immutable: an edited entry is a new row with the same id.
class CTradeLimitRow : public WQ::IBaseHpfTableData
{
public:
    CTradeLimitRow(int id, nvservice::CTradeLimitEntry entry, nvservice::EZvTraderType traderType);

    int id() const { return m_id; }
    const nvservice::CTradeLimitEntry& entry() const { return m_entry; }
    static QString keyOf(int id) { return QString::number(id); }

    QString getDisplayQString(int column) const override;
    QString getQStringValue(int column) const override { return getDisplayQString(column); }
    int getIntValue(int) const override { return InvalidInt; }
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int column) const override;
    QString getKey() const override { return keyOf(m_id); }

private:
    int m_id;
    nvservice::EZvTraderType m_traderType;
    nvservice::CTradeLimitEntry m_entry;
};

using CTradeLimitRowPtr = boost::shared_ptr<CTradeLimitRow>;
using CTradeLimitRows = std::vector<CTradeLimitRowPtr>;

/// The name of a list kind or a direction for the user; the number if it is unknown.
QString listKindName(nvservice::EZVRCListKind listKind);
QString directionName(nvservice::EZVRCDirection direction, nvservice::EZvTraderType traderType);

/// True if entries of the trade type have a direction. Futures and futures options have none, because both sides open
/// positions.
bool hasDirection(nvservice::EZvTraderType traderType);

} // namespace QAV
