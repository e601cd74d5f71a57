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

    std::int32_t groupId = -1; ///< given by the service; -1 while the service has not stored the group
    std::string groupName;
    std::vector<boost::shared_ptr<CAccountInfo>> accounts; ///< no null pointers when decoded
    std::int32_t institutionId = NoInstitutionId;
    std::string institutionName; ///< the owning institution; empty when the group belongs to none
};

} // namespace nvservice
