// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>

#include <vector>

namespace nvservice
{

/// The answer to a product query: one record that lists products. Key: the system tag.
class NVSERVICE_EXPORT CKolmProductsResp : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::vector<IDataPtr> products; ///< CProductInfo records; no null pointers when decoded
};

} // namespace nvservice
