// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/EZvDataOperation.h>
#include <nvservice/IData.h>

namespace nvservice
{

/// A stored change of one account group or of its risk configuration. The revision of the record is the one that the
/// change has made. Key: "<system tag>|<data type>|<group id>|<revision>".
class NVSERVICE_EXPORT CChangeInfo : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int32_t dataType = 0; ///< `AccountGroup` or `GroupRiskConfig`; e-mail rules are part of the configuration
    std::int32_t groupId = -1;
    std::string groupName;                                 ///< after the change; before it if the group was deleted
    EZvDataOperation operation = EZvDataOperation::Modify; ///< what the change did, as far as the reader may know
    std::string userId;                                    ///< the log-in name of who made the change
    std::string userName;       ///< empty if the service knows no name, as for an administrator at the service itself
    std::int64_t changedAt = 0; ///< milliseconds since 1970 UTC
    std::string operationId; ///< of the operation that made the change, if the reader's user sent it; otherwise empty
};

/// Several readers share one record, so nobody changes it.
using CChangeInfoPtr = boost::shared_ptr<const CChangeInfo>;

} // namespace nvservice
