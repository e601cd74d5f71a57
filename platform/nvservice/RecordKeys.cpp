// SPDX-License-Identifier: Apache-2.0
#include "RecordFields.h"

#include <string_view>

namespace nvservice
{

namespace
{

/// Joins the parts of a key. Text parts are escaped, so that different parts never give the same key.
class KeyBuilder
{
public:
    explicit KeyBuilder(const std::string& systemTag) { appendText(systemTag); }

    KeyBuilder& text(const std::string& part)
    {
        m_key += '|';
        appendText(part);
        return *this;
    }

    template <typename Number>
    KeyBuilder& number(Number part)
    {
        m_key += '|';
        m_key += std::to_string(part);
        return *this;
    }

    std::string take() { return std::move(m_key); }

private:
    void appendText(std::string_view part)
    {
        for (std::size_t special; (special = part.find_first_of("|\\")) != std::string_view::npos;) {
            m_key.append(part.substr(0, special));
            m_key += '\\';
            m_key += part[special];
            part.remove_prefix(special + 1);
        }
        m_key.append(part);
    }

    std::string m_key;
};

std::string accountKey(const std::string& systemTag, const CAccountInfo& account)
{
    return KeyBuilder(systemTag)
        .number(static_cast<std::int32_t>(account.brokerType))
        .text(account.accountId)
        .text(account.unitId)
        .take();
}

} // namespace

std::string CAccountInfo::getKey() const
{
    return accountKey(getSystemTag(), *this);
}

std::string accountDisplayID(const boost::shared_ptr<CAccountInfo>& account)
{
    if (!account) {
        return {};
    }
    return account->unitId.empty() ? account->accountId : account->accountId + '-' + account->unitId;
}

std::string CAccountGroup::getKey() const
{
    return KeyBuilder(getSystemTag()).number(groupId).take();
}

std::string CKolmAccountInfo::getKey() const
{
    return account ? accountKey(getSystemTag(), *account) : KeyBuilder(getSystemTag()).take();
}

std::string CProductInfo::getKey() const
{
    return KeyBuilder(getSystemTag()).number(productId).take();
}

std::string CKolmProductsResp::getKey() const
{
    return KeyBuilder(getSystemTag()).take();
}

std::string CAccountGroupRCRule::getKey() const
{
    return KeyBuilder(getSystemTag()).take();
}

std::string CAssetsRC::getKey() const
{
    return KeyBuilder(getSystemTag()).number(ruleId).take();
}

std::string CRatProofSetting::getKey() const
{
    return KeyBuilder(getSystemTag()).take();
}

std::string CEmailRC::getKey() const
{
    return KeyBuilder(getSystemTag()).text(ruleKind).text(accountKey).text(ruleKey).take();
}

std::string CustomEmailRC::getKey() const
{
    return KeyBuilder(getSystemTag()).take();
}

std::string CAccountGroupRCConfig::getKey() const
{
    return KeyBuilder(getSystemTag()).number(groupId).take();
}

std::string CCategoryInfo::getKey() const
{
    return KeyBuilder(getSystemTag()).number(categoryId).take();
}

std::string CInstitutionInfo::getKey() const
{
    return KeyBuilder(getSystemTag()).number(institutionId).take();
}

std::string CSecurityInfo::getKey() const
{
    return KeyBuilder(getSystemTag()).text(market).text(securityCode).take();
}

std::string CUserInfo::getKey() const
{
    return KeyBuilder(getSystemTag()).text(userId).take();
}

std::string CAuditEntry::getKey() const
{
    return KeyBuilder(getSystemTag()).number(entryId).take();
}

std::string CFinding::getKey() const
{
    return KeyBuilder(getSystemTag()).text(kind).number(groupId).text(text).take();
}

std::string CGroupRestore::getKey() const
{
    return KeyBuilder(getSystemTag()).number(groupId).take();
}

std::string CChangeInfo::getKey() const
{
    return KeyBuilder(getSystemTag()).number(dataType).number(groupId).number(revision()).take();
}

std::string CKolmQueryDataReq::getKey() const
{
    return KeyBuilder(getSystemTag()).number(dataType).text(queryKey).take();
}

std::string COperateDataReq::getKey() const
{
    return KeyBuilder(getSystemTag()).number(dataType).text(operationId).take();
}

} // namespace nvservice
