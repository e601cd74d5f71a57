// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/EZvDataOperation.h>
#include <nvservice/IData.h>

namespace nvservice
{

/// One attempt to change something, carried out or refused. Key: "<system tag>|<entry id, decimal>".
class NVSERVICE_EXPORT CAuditEntry : public IData
{
public:
    std::string getKey() const override;
    IDataPtr copy() const override;
    const char* typeName() const override;

    std::int64_t entryId = 0; ///< assigned by the service; a later entry has a higher one
    std::int64_t at = 0;      ///< milliseconds since 1970 UTC
    std::string userId;       ///< the log-in name
    std::string userName;     ///< the present name of the user; empty for a name that is no user
    EZvDataOperation operation = EZvDataOperation::Modify; ///< what was attempted
    std::int32_t dataType = 0;  ///< a code of <nvservice/DataType.h>; 0 for the work of an administrator
    std::int32_t groupId = -1;  ///< -1: not about a stored group
    std::string groupName;      ///< the present name, or the last one of a deleted group; empty without a group
    std::string recordKey;      ///< identifies the record
    std::int32_t outcome = 0;   ///< 0: carried out; otherwise the code of the error
    std::string outcomeText;    ///< what the user was told; empty if it was carried out
    std::string operationId;    ///< of the request
    std::int64_t attempts = 1;  ///< more than 1: so many refused attempts, counted as one entry
    IDataPtr before;            ///< the state that was replaced or deleted; none also unless details were asked for
    IDataPtr after;             ///< the stored state, or the refused one; none also unless details were asked for
    std::string withheldReason; ///< why details that were asked for are missing, for the user; otherwise empty
};

} // namespace nvservice
