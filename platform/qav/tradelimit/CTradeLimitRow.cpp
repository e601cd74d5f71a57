// SPDX-License-Identifier: Apache-2.0
#include "tradelimit/CTradeLimitRow.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/TypeManager.h>

namespace QAV
{

CTradeLimitRow::CTradeLimitRow(int id, nvservice::CTradeLimitEntry entry, nvservice::EZvTraderType traderType)
    : m_id(id), m_traderType(traderType), m_entry(std::move(entry))
{
}

QString CTradeLimitRow::getDisplayQString(int column) const
{
    switch (column) {
    case TradeLimitCodeColumn:
        return WQ::sToQs(m_entry.securityCode);
    case TradeLimitNameColumn:
        return WQ::sToQs(m_entry.securityName);
    case TradeLimitListColumn:
        return listKindName(m_entry.listKind);
    case TradeLimitDirectionColumn:
        return directionName(m_entry.direction, m_traderType);
    case TradeLimitSearchColumn:
        return WQ::sToQs(m_entry.securityCode) + QLatin1Char(' ') + WQ::sToQs(m_entry.securityName);
    default:
        return {};
    }
}

QColor CTradeLimitRow::getTextColor(int column) const
{
    const auto* const resources = WQ::CUiResourceManager::instance();
    if (column != TradeLimitListColumn) {
        return resources->colour(WQ::key::Text);
    }
    switch (m_entry.listKind) {
    case nvservice::EZVRCListKind::Black:
        return resources->colour(WQ::key::GlobalRise);
    case nvservice::EZVRCListKind::White:
        return resources->colour(WQ::key::GlobalFall);
    }
    return resources->colour(WQ::key::Warning);
}

QString listKindName(nvservice::EZVRCListKind listKind)
{
    return WQ::sToQs(nvservice::TypeManager::getEnumItemName("nvservice::EZVRCListKind", int(listKind), 0));
}

QString directionName(nvservice::EZVRCDirection direction, nvservice::EZvTraderType traderType)
{
    return WQ::sToQs(
        nvservice::TypeManager::getEnumItemName("nvservice::EZVRCDirection", int(direction), int(traderType)));
}

bool hasDirection(nvservice::EZvTraderType traderType)
{
    return traderType != nvservice::EZvTraderType::Future && traderType != nvservice::EZvTraderType::FutureOption;
}

} // namespace QAV
