// SPDX-License-Identifier: Apache-2.0
#include "CAccountRow.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/TypeManager.h>

namespace Example
{

CAccountRow::CAccountRow(const nvservice::CKolmAccountInfo& record) : m_key(WQ::sToQs(record.getKey()))
{
    const nvservice::CAccountInfo& account = *record.account;
    const auto* centre = utils::CSingletonT<QAV::CKolmClientCenter>::instance();
    m_texts[IdColumn] = WQ::sToQs(nvservice::accountDisplayID(record.account));
    m_texts[NameColumn] = WQ::sToQs(account.accountName);
    m_texts[TypeColumn] = WQ::sToQs(
        nvservice::TypeManager::getEnumItemName("nvservice::EZVBrokerType", static_cast<int>(account.brokerType), 0));
    m_texts[InstitutionColumn] = WQ::sToQs(account.institutionName);
    m_texts[ServerColumn] = WQ::sToQs(centre->getServerNameBySystemTag(record.getSystemTag()));
}

QString CAccountRow::getDisplayQString(int column) const
{
    return m_texts[column];
}

QColor CAccountRow::getTextColor(int column) const
{
    const QLatin1String key = column == IdColumn ? WQ::key::Text : WQ::key::TextWeak;
    return WQ::CUiResourceManager::instance()->colour(key);
}

} // namespace Example
