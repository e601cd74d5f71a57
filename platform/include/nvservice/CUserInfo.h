// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>
#include <nvservice/NoInstitutionId.h>

#include <set>

namespace nvservice
{

/// The logged-in user. Key: "<system tag>|<user id>".
class NVSERVICE_EXPORT CUserInfo : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::string userId; ///< the log-in name
    std::string userName;
    std::int32_t institutionId = NoInstitutionId; ///< NoInstitutionId or -1: not bound to an institution
    std::set<int> rights; ///< codes of <nvservice/UserRight.h>, and other codes that the service grants
};

} // namespace nvservice
