// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountInfo.h>
#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// A product (a fund or mandate) and the accounts that trade for it. Key: "<system tag>|<product id, decimal>".
class NVSERVICE_EXPORT CProductInfo : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t productId = -1; ///< unique on its server
    std::string productName;
    bool excluded = false;                                 ///< true: its accounts count as belonging to no product
    std::vector<boost::shared_ptr<CAccountInfo>> accounts; ///< trading for it; no null pointers when decoded
};

} // namespace nvservice
