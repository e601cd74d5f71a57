// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CTradeLimitList.h>
#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// The black and white lists of an account group, one part per trade type. Has no identity of its own: the key is the
/// system tag.
class NVSERVICE_EXPORT CAccountGroupRCRule : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    /// The part of a trade type; null if there is none. Valid until `lists` changes.
    const CTradeLimitList* findList(EZvTraderType traderType) const;
    /// The part of a trade type; appended if there is none. Valid until `lists` changes.
    CTradeLimitList& list(EZvTraderType traderType);

    std::vector<CTradeLimitList> lists; ///< at most one per trade type; a trade type without a part has no entries
};

} // namespace nvservice
