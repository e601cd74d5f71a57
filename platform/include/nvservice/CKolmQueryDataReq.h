// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/IData.h>

namespace nvservice
{

/// A query. Key: "<system tag>|<data type, decimal>|<query key>".
class NVSERVICE_EXPORT CKolmQueryDataReq : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t dataType = 0; ///< a code of <nvservice/DataType.h>
    std::string queryKey;      ///< empty: all records of the type
};

} // namespace nvservice
