// SPDX-License-Identifier: Apache-2.0
#include "panel/CAccountGroupRiskMainData.h"

#include "panel/AccountGroupColumn.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

namespace QAV
{

QString CAccountGroupRiskMainData::getDisplayQString(int column) const
{
    switch (column) {
    case AccountGroupNameColumn:
        return groupName;
    case AccountCountColumn:
        return QString::number(accountCount);
    case InstitutionColumn:
    case ServerColumn:
        return getQStringValue(column);
    default:
        return {};
    }
}

QString CAccountGroupRiskMainData::getQStringValue(int column) const
{
    switch (column) {
    case AccountGroupNameColumn:
        return groupName;
    case InstitutionColumn:
        return institutionName;
    case ServerColumn:
        return serverName;
    default:
        return {};
    }
}

int CAccountGroupRiskMainData::getIntValue(int column) const
{
    return column == AccountCountColumn ? accountCount : InvalidInt;
}

double CAccountGroupRiskMainData::getDoubleValue(int) const
{
    return InvalidDouble;
}

std::int64_t CAccountGroupRiskMainData::getInt64Value(int) const
{
    return InvalidInt64;
}

QColor CAccountGroupRiskMainData::getTextColor(int) const
{
    return WQ::CUiResourceManager::instance()->colour(WQ::key::Text);
}

QString CAccountGroupRiskMainData::getKey() const
{
    return serverName + QLatin1Char('|') + QString::number(groupId);
}

} // namespace QAV
