// SPDX-License-Identifier: Apache-2.0
#include "RecordCopy.h"

#include <algorithm>

namespace nvservice
{

IData::IData() = default;
IData::IData(const IData&) = default;
IData::IData(IData&&) noexcept = default;
IData& IData::operator=(const IData&) = default;
IData& IData::operator=(IData&&) noexcept = default;
IData::~IData() = default;

std::string IData::getCsKey() const
{
    return getKey();
}

const std::string& IData::getSystemTag() const
{
    return m_systemTag;
}

void IData::setSystemTag(const std::string& systemTag)
{
    m_systemTag = systemTag;
}

std::int64_t IData::revision() const
{
    return m_revision;
}

void IData::setRevision(std::int64_t revision)
{
    m_revision = revision;
}

const CTradeLimitList* CAccountGroupRCRule::findList(EZvTraderType traderType) const
{
    const auto found = std::find_if(lists.begin(), lists.end(), [traderType](const CTradeLimitList& candidate) {
        return candidate.traderType == traderType;
    });
    return found == lists.end() ? nullptr : &*found;
}

CTradeLimitList& CAccountGroupRCRule::list(EZvTraderType traderType)
{
    if (const CTradeLimitList* found = findList(traderType)) {
        return const_cast<CTradeLimitList&>(*found);
    }
    lists.emplace_back();
    lists.back().traderType = traderType;
    return lists.back();
}

IDataPtr CAccountInfo::copy() const
{
    return deepCopy(*this);
}

const char* CAccountInfo::typeName() const
{
    return Fields<CAccountInfo>::typeName;
}

IDataPtr CAccountGroup::copy() const
{
    return deepCopy(*this);
}

const char* CAccountGroup::typeName() const
{
    return Fields<CAccountGroup>::typeName;
}

IDataPtr CKolmAccountInfo::copy() const
{
    return deepCopy(*this);
}

const char* CKolmAccountInfo::typeName() const
{
    return Fields<CKolmAccountInfo>::typeName;
}

IDataPtr CProductInfo::copy() const
{
    return deepCopy(*this);
}

const char* CProductInfo::typeName() const
{
    return Fields<CProductInfo>::typeName;
}

IDataPtr CKolmProductsResp::copy() const
{
    return deepCopy(*this);
}

const char* CKolmProductsResp::typeName() const
{
    return Fields<CKolmProductsResp>::typeName;
}

IDataPtr CAccountGroupRCRule::copy() const
{
    return deepCopy(*this);
}

const char* CAccountGroupRCRule::typeName() const
{
    return Fields<CAccountGroupRCRule>::typeName;
}

IDataPtr CAssetsRC::copy() const
{
    return deepCopy(*this);
}

const char* CAssetsRC::typeName() const
{
    return Fields<CAssetsRC>::typeName;
}

IDataPtr CRatProofSetting::copy() const
{
    return deepCopy(*this);
}

const char* CRatProofSetting::typeName() const
{
    return Fields<CRatProofSetting>::typeName;
}

IDataPtr CEmailRC::copy() const
{
    return deepCopy(*this);
}

const char* CEmailRC::typeName() const
{
    return Fields<CEmailRC>::typeName;
}

IDataPtr CustomEmailRC::copy() const
{
    return deepCopy(*this);
}

const char* CustomEmailRC::typeName() const
{
    return Fields<CustomEmailRC>::typeName;
}

IDataPtr CAccountGroupRCConfig::copy() const
{
    return deepCopy(*this);
}

const char* CAccountGroupRCConfig::typeName() const
{
    return Fields<CAccountGroupRCConfig>::typeName;
}

IDataPtr CCategoryInfo::copy() const
{
    return deepCopy(*this);
}

const char* CCategoryInfo::typeName() const
{
    return Fields<CCategoryInfo>::typeName;
}

IDataPtr CInstitutionInfo::copy() const
{
    return deepCopy(*this);
}

const char* CInstitutionInfo::typeName() const
{
    return Fields<CInstitutionInfo>::typeName;
}

IDataPtr CSecurityInfo::copy() const
{
    return deepCopy(*this);
}

const char* CSecurityInfo::typeName() const
{
    return Fields<CSecurityInfo>::typeName;
}

IDataPtr CUserInfo::copy() const
{
    return deepCopy(*this);
}

const char* CUserInfo::typeName() const
{
    return Fields<CUserInfo>::typeName;
}

IDataPtr CAuditEntry::copy() const
{
    return deepCopy(*this);
}

const char* CAuditEntry::typeName() const
{
    return Fields<CAuditEntry>::typeName;
}

IDataPtr CFinding::copy() const
{
    return deepCopy(*this);
}

const char* CFinding::typeName() const
{
    return Fields<CFinding>::typeName;
}

IDataPtr CGroupRestore::copy() const
{
    return deepCopy(*this);
}

const char* CGroupRestore::typeName() const
{
    return Fields<CGroupRestore>::typeName;
}

IDataPtr CChangeInfo::copy() const
{
    return deepCopy(*this);
}

const char* CChangeInfo::typeName() const
{
    return Fields<CChangeInfo>::typeName;
}

IDataPtr CKolmQueryDataReq::copy() const
{
    return deepCopy(*this);
}

const char* CKolmQueryDataReq::typeName() const
{
    return Fields<CKolmQueryDataReq>::typeName;
}

IDataPtr COperateDataReq::copy() const
{
    return deepCopy(*this);
}

const char* COperateDataReq::typeName() const
{
    return Fields<COperateDataReq>::typeName;
}

} // namespace nvservice
