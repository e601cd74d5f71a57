// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/DataType.h>

#include <boost/make_shared.hpp>

namespace support
{

inline nvservice::CKolmQueryDataReq queryOf(int dataType, const std::string& key = {})
{
    nvservice::CKolmQueryDataReq request;
    request.dataType = dataType;
    request.queryKey = key;
    return request;
}

inline nvservice::COperateDataReq operationOn(int dataType, nvservice::EZvDataOperation operation,
                                              const nvservice::IDataPtr& record, const std::string& operationId = {})
{
    nvservice::COperateDataReq request;
    request.dataType = dataType;
    request.operation = operation;
    request.data = record;
    request.operationId = operationId;
    return request;
}

/// As clients take requests.
template <typename Request>
boost::shared_ptr<Request> shared(const Request& request)
{
    return boost::make_shared<Request>(request);
}

} // namespace support
