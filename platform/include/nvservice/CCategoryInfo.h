// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>

namespace nvservice
{

/// A security category; categories form a tree. Key: "<system tag>|<category id, decimal>".
class NVSERVICE_EXPORT CCategoryInfo : public IData
{
public:
    /// The category type that is never offered for exemption.
    static constexpr std::int32_t InternalCategoryType = 2;

    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t categoryId = -1; ///< unique on its server
    std::string categoryName;
    std::int32_t categoryType = 0; ///< 2: internal, never offered for exemption
    std::int32_t sysType = 0;      ///< the system type; users have rights per system type
    std::int32_t parentId = -1;    ///< the parent category; -1 at the top
};

} // namespace nvservice
