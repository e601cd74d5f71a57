#pragma once

#include <QAV/CKolmClientCenter.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>

#include <QString>

#include <string>

/// How the panel and its dialogs build their requests and read the replies.
namespace QAV
{

CKolmClientCenter& clientCenter();

/// A query for all records of one data type (nvservice/DataType.h); `queryKey` narrows it where the type has a key.
boost::shared_ptr<nvservice::CKolmQueryDataReq> makeQueryRequest(int dataType, const std::string& queryKey = {});

/// An operation on one record.
boost::shared_ptr<nvservice::COperateDataReq> makeOperateRequest(int dataType, nvservice::EZvDataOperation operation,
                                                                 const nvservice::IDataPtr& record);

/// What the user is told of an operation: whether it succeeded and, if not, why.
struct OperateOutcome {
    bool success = true;
    QString message;
};

/// An operation succeeded when the service reports success and sends no result document; a document beside a success
/// is the reason of a refusal.
OperateOutcome operateOutcome(const utils::NVError& error, const bson::BSONObj& result);

/// The name of the server that a record's system tag names, as the user sees it.
QString serverNameOf(const nvservice::IData& record);

} // namespace QAV
