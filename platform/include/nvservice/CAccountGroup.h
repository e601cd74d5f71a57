// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountInfo.h>
#include <nvservice/IData.h>
#include <nvservice/NoInstitutionId.h>

#include <vector>

namespace nvservice
{

/// A named set of trading accounts that belong to one institution and one server.
/// Key: "<system tag>|<group id, decimal>".
class NVSERVICE_EXPORT CAccountGroup : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t groupId = -1; ///< assigned by the service; -1 until the service has stored the group
    std::string groupName;     ///< unique on its server
    std::vector<boost::shared_ptr<CAccountInfo>> accounts; ///< in the user's order; no null pointers when decoded
    std::int32_t institutionId = NoInstitutionId;          ///< the owning institution
    std::string institutionName;                           ///< empty if the group belongs to no institution
};

} // namespace nvservice
