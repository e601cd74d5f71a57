// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClientCenter.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>

#include <QString>

#include <string>

/// Functions with which the panel and its dialogs build requests and read replies.
namespace QAV
{

CKolmClientCenter& clientCenter();

/// A query for all records of a data type (nvservice/DataType.h), or for those with `queryKey`.
boost::shared_ptr<nvservice::CKolmQueryDataReq> makeQueryRequest(int dataType, const std::string& queryKey = {});

/// An operation on one record.
boost::shared_ptr<nvservice::COperateDataReq> makeOperateRequest(int dataType, nvservice::EZvDataOperation operation,
                                                                 const nvservice::IDataPtr& record);

/// The outcome of an operation for the user: whether it succeeded and, if not, why.
struct OperateOutcome {
    bool success = true;
    QString message;
};

/// An operation has succeeded if the service reports success without a result document. A document with a success is
/// the reason of a refusal.
OperateOutcome operateOutcome(const utils::NVError& error, const bson::BSONObj& result);

/// The name of the server with a record's system tag, as shown to the user.
QString serverNameOf(const nvservice::IData& record);

} // namespace QAV
