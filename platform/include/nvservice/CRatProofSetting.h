// SPDX-License-Identifier: Apache-2.0
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

    bool washTradeForbidden = false;                         ///< true: wash trades are forbidden
    bool reverseOrderCheck = false;                          ///< true: reverse orders are checked
    std::vector<std::int32_t> washTradeExemptCategoryIds;    ///< categories that the wash-trade ban ignores
    std::vector<std::int32_t> reverseOrderExemptCategoryIds; ///< categories that the reverse-order check ignores
    bool notCountCancelledOrders = false; ///< true: orders cancelled without any fill are not counted
    bool reverseOrderWarnOnly = false;    ///< true: reverse orders cause a warning but are not forbidden
};

} // namespace nvservice
