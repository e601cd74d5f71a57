#pragma once

#include <nvservice/EZvDataOperation.h>
#include <nvservice/IData.h>

namespace nvservice
{

/// An operation on one record. Key: "<system tag>|<data type, decimal>|<operation id>".
class NVSERVICE_EXPORT COperateDataReq : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t dataType = 0; ///< a code of <nvservice/DataType.h>
    EZvDataOperation operation = EZvDataOperation::Modify;
    IDataPtr data; ///< the record; may be null, also when decoded
    std::string
        operationId; ///< made by the client, which fills in one when it is empty; an operation is applied once per id
};

} // namespace nvservice
