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

    /// The part of a trade type, or null. Valid until `lists` changes.
    const CTradeLimitList* findList(EZvTraderType traderType) const;
    /// The part of a trade type, added at the end when there is none. Valid until `lists` changes.
    CTradeLimitList& list(EZvTraderType traderType);

    std::vector<CTradeLimitList> lists; ///< at most one per trade type; trade types without a part have no entries
};

} // namespace nvservice
