// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IBaseHpfTableData.h>

#include <QString>

#include <cstdint>

namespace QAV
{

/// One row of the account group table.
class CAccountGroupRiskMainData final : public WQ::IBaseHpfTableData
{
public:
    QString getDisplayQString(int column) const override;
    QString getQStringValue(int column) const override;
    int getIntValue(int column) const override;
    double getDoubleValue(int column) const override;
    std::int64_t getInt64Value(int column) const override;
    QColor getTextColor(int column) const override;
    /// The server name and the group id, for example "A|17", because two servers may have equal ids.
    QString getKey() const override;

    std::int32_t groupId = -1;
    QString groupName;
    std::int32_t accountCount = 0;
    QString institutionName;
    QString serverName;
};

} // namespace QAV
