// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Journal.h"

#include <nvservice/Bson.h>
#include <nvservice/EZvDataOperation.h>
#include <nvservice/IData.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace service
{

using Records = std::vector<nvservice::IDataPtr>;

struct QueryAnswer {
    QueryAnswer(Records found, std::string cursor = {}) : records(std::move(found)), next(std::move(cursor)) {}

    Records records;
    std::string next; ///< the cursor of the next page; empty if there is none
};

/// What an operation did, for the audit.
struct AppliedChange {
    std::string recordKey;
    bson::BSONObj before;
    bson::BSONObj after;
    std::int32_t newId = 0; ///< of a record that was added

    /// Of a change that is audited as another one than the request.
    struct Kind {
        std::int32_t dataType;
        nvservice::EZvDataOperation operation;
    };
    std::optional<Kind> kind = {};
    std::vector<AppliedChange> more = {}; ///< what the operation did to other records
};

/// The row of a change in the audit. `attempt` has what is the same for all changes of the operation.
AuditRow auditRowOf(const AuditRow& attempt, const AppliedChange& change);

/// The queries and operations of one data type. Its functions run in the caller's transaction. They throw `StoreError`,
/// or `Refusal` before anything is written.
struct DataHandler {
    /// The records that a user may see.
    using Query = std::function<QueryAnswer(const RequestContext& context, const std::string& key)>;

    struct Operation {
        template <typename Record>
        Operation(nvservice::EZvDataOperation theOperation, int neededRight, const char* itsName,
                  AppliedChange (*function)(const RequestContext&, const Record&))
            : operation(theOperation), right(neededRight), name(itsName),
              apply([function](const RequestContext& context, const nvservice::IData& sent) {
                  return function(context, dynamic_cast<const Record&>(sent));
              })
        {
        }

        nvservice::EZvDataOperation operation;
        int right;        ///< required; 0: depends on the record
        const char* name; ///< in texts, to be translated: "添加账号组"
        std::function<AppliedChange(const RequestContext&, const nvservice::IData&)> apply;
    };

    /// For records that are only read.
    DataHandler(std::int32_t type, Query theQuery) : dataType(type), query(std::move(theQuery)) {}

    /// For records that requests change.
    /// @param checkSize  throws for a record that is too large
    /// @param group      the id of the record's group; empty for none
    template <typename Record>
    DataHandler(std::int32_t type, Query theQuery, const char* name, void (*checkSize)(const Record&),
                std::optional<std::int32_t> (*group)(const Record&, nvservice::EZvDataOperation),
                std::vector<Operation> theOperations)
        : dataType(type), query(std::move(theQuery)), recordName(name), operations(std::move(theOperations)),
          isReasonable([checkSize](const nvservice::IData* sent) {
              const auto* const record = dynamic_cast<const Record*>(sent);
              if (record) {
                  checkSize(*record);
              }
              return record != nullptr;
          }),
          groupOf([group](const nvservice::IData* sent, nvservice::EZvDataOperation operation) {
              const auto* const record = dynamic_cast<const Record*>(sent);
              return record ? group(*record, operation) : std::nullopt;
          })
    {
    }

    std::int32_t dataType;
    Query query;                       ///< empty: cannot be queried
    const char* recordName = "";       ///< in texts, to be translated: "账号组"
    std::vector<Operation> operations; ///< empty: cannot be changed
    /// False without a record of the right class. Throws for one that is too large.
    std::function<bool(const nvservice::IData*)> isReasonable;
    std::function<std::optional<std::int32_t>(const nvservice::IData*, nvservice::EZvDataOperation)> groupOf;
};

/// One for each data type.
const std::vector<DataHandler>& dataHandlers();

/// Throws `Refusal` (PermissionDenied) if the user does not have the right; `what` names it in the text, in Chinese.
void requireRight(const StoredUser& user, int right, const char* what);

/// The decimal id in a query key. Throws `Refusal` (InvalidValue) for any other text.
std::int64_t requireId(const std::string& key, const char* what);

// Each is in the file of its handler.
DataHandler accountGroupHandler();
DataHandler emailRuleHandler();
DataHandler groupRestoreHandler();
DataHandler riskConfigHandler();
QueryAnswer queryAudit(const RequestContext& context, const std::string& key);
QueryAnswer queryGroupHistory(const RequestContext& context, const std::string& key);
Records queryAccounts(const RequestContext& context, const std::string& key);
Records queryCategories(const RequestContext& context, const std::string& key);
Records queryFindings(const RequestContext& context, const std::string& key);
Records queryGroupState(const RequestContext& context, const std::string& key);
Records queryInstitutions(const RequestContext& context, const std::string& key);
Records queryProducts(const RequestContext& context, const std::string& key);
Records querySecurities(const RequestContext& context, const std::string& key);

} // namespace service
