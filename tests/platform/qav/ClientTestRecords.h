// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroup.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/DataType.h>
#include <utils/NVError.h>

#include <boost/make_shared.hpp>

#include <QString>

#include <string>

// Requests and records of the client's tests.

inline boost::shared_ptr<nvservice::CKolmQueryDataReq> groupQuery()
{
    auto request = boost::make_shared<nvservice::CKolmQueryDataReq>();
    request->dataType = nvservice::DataType::AccountGroup;
    return request;
}

inline boost::shared_ptr<nvservice::CAccountGroup> group(int id, const std::string& name)
{
    auto record = boost::make_shared<nvservice::CAccountGroup>();
    record->groupId = id;
    record->groupName = name;
    return record;
}

inline boost::shared_ptr<nvservice::COperateDataReq> addOf(const nvservice::IDataPtr& record)
{
    auto request = boost::make_shared<nvservice::COperateDataReq>();
    request->dataType = nvservice::DataType::AccountGroup;
    request->operation = nvservice::EZvDataOperation::Add;
    request->data = record;
    return request;
}

inline QString text(const utils::NVError& error)
{
    return QString::fromStdString(error.errorMsg());
}
