// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/EZVBrokerType.h>
#include <nvservice/IData.h>
#include <nvservice/NoInstitutionId.h>

namespace nvservice
{

/// A trading account, or a sub-account unit of one.
/// Key: "<system tag>|<broker type, decimal>|<account id>|<unit id>".
class NVSERVICE_EXPORT CAccountInfo : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    EZVBrokerType brokerType = EZVBrokerType::Unknown; ///< the account type
    std::string accountId; ///< the same for an account and all its units; leading zeros count
    std::string unitId;    ///< empty for a main account
    std::string accountName;
    std::int32_t institutionId = NoInstitutionId; ///< the owning institution
    std::string institutionName;
};

/// The account's id as shown to the user: the account id, for a sub-account unit followed by '-' and the unit id. Empty
/// for null.
NVSERVICE_EXPORT std::string accountDisplayID(const boost::shared_ptr<CAccountInfo>& account);

} // namespace nvservice
