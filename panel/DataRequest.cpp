// SPDX-License-Identifier: Apache-2.0
#include "panel/DataRequest.h"

#include <WQ/StringConversion.h>
#include <utils/CSingletonT.h>

#include <boost/make_shared.hpp>

namespace QAV
{

CKolmClientCenter& clientCenter()
{
    return *utils::CSingletonT<CKolmClientCenter>::instance();
}

boost::shared_ptr<nvservice::CKolmQueryDataReq> makeQueryRequest(int dataType, const std::string& queryKey)
{
    const auto request = boost::make_shared<nvservice::CKolmQueryDataReq>();
    request->dataType = dataType;
    request->queryKey = queryKey;
    return request;
}

boost::shared_ptr<nvservice::COperateDataReq> makeOperateRequest(int dataType, nvservice::EZvDataOperation operation,
                                                                 const nvservice::IDataPtr& record)
{
    const auto request = boost::make_shared<nvservice::COperateDataReq>();
    request->dataType = dataType;
    request->operation = operation;
    request->data = record;
    return request;
}

OperateOutcome operateOutcome(const utils::NVError& error, const bson::BSONObj& result)
{
    if (!error.isSuccess()) {
        return {false, WQ::sToQs(error.errorMsg())};
    }
    if (!result.isEmpty()) {
        return {false, WQ::sToQs(result.toString(false, false))};
    }
    return {};
}

QString serverNameOf(const nvservice::IData& record)
{
    return WQ::sToQs(clientCenter().getServerNameBySystemTag(record.getSystemTag()));
}

} // namespace QAV
