// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>

namespace nvservice
{

/// Stored data that break a rule of the service or contradict other data. Names and texts are for the user, in the
/// language of the log-in. Key: "<system tag>|<kind>|<group id, decimal>|<text>".
class NVSERVICE_EXPORT CFinding : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::string kind;         ///< for programs: "closed-account"
    std::string kindName;     ///< the kind in words
    std::int32_t groupId = 0; ///< 0: not about one group
    std::string groupName;    ///< the present name, or the last one of a deleted group
    std::string text;         ///< what was found
    std::string advice;       ///< what to do about findings of this kind
};

} // namespace nvservice
