#pragma once

#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// The reverse-order check and the wash-trade ban of an account group. Has no identity of its own: the key is the
/// system tag. Exempt categories are CCategoryInfo ids; the controls ignore trades in them.
class NVSERVICE_EXPORT CRatProofSetting : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    bool washTradeForbidden = false;
    bool reverseOrderCheck = false;
    std::vector<std::int32_t> washTradeExemptCategoryIds;
    std::vector<std::int32_t> reverseOrderExemptCategoryIds;
    bool notCountCancelledOrders = false; ///< orders cancelled without any fill are not counted
    bool reverseOrderWarnOnly = false;    ///< a reverse order is only warned about, not forbidden
};

} // namespace nvservice
