// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// Which past revisions of a group and of its risk configuration become new ones. The service answers a query of
/// DataType::GroupRestore with one that can be sent back as it is. Key: "<system tag>|<group id, decimal>".
class NVSERVICE_EXPORT CGroupRestore : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t groupId = -1;           ///< the group, which may have been deleted
    std::int64_t groupRevision = 0;      ///< the revision of the group to restore; 0: the group stays as it is
    std::int64_t configRevision = 0;     ///< the revision of the configuration to restore; 0: it stays as it is
    std::int64_t seenGroupRevision = 0;  ///< the group's present revision as the user has seen it; 0: it is deleted
    std::int64_t seenConfigRevision = 0; ///< the same of the configuration
    std::vector<std::string>
        obstacles; ///< in an answer: why it would be refused now, for the user; empty: it would not
};

} // namespace nvservice
