// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/records/Requests.h"

#include <nvservice/CAccountGroup.h>
#include <utils/NVError.h>

#include <QString>

#include <string>

// Requests and records of the client's tests.

inline boost::shared_ptr<nvservice::CKolmQueryDataReq> groupQuery()
{
    return support::shared(support::queryOf(nvservice::DataType::AccountGroup));
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
    return support::shared(
        support::operationOn(nvservice::DataType::AccountGroup, nvservice::EZvDataOperation::Add, record));
}

inline QString text(const utils::NVError& error)
{
    return QString::fromStdString(error.errorMsg());
}
