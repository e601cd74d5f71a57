// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>
#include <nvservice/NoInstitutionId.h>

namespace nvservice
{

/// An institution that owns accounts and groups. Key: "<system tag>|<institution id, decimal>".
class NVSERVICE_EXPORT CInstitutionInfo : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t institutionId = NoInstitutionId; ///< unique on its server
    std::string name;
};

} // namespace nvservice
