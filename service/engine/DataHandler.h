// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"

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

/// What an operation did, for the audit.
struct AppliedChange {
    std::string recordKey;
    bson::BSONObj before;
    bson::BSONObj after;
    std::int32_t newId = 0; ///< of a record that was added
};

/// What the engine does with the records of one data type. Its functions run inside the caller's transaction and throw
/// `StoreError`, or `Refusal` before anything is written.
struct DataHandler {
    /// The records that a user may see.
    using Query = Records (*)(const RequestContext& context, const std::string& key);

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
        int right;        ///< that it needs
        const char* name; ///< as texts call it: "添加账号组"
        std::function<AppliedChange(const RequestContext&, const nvservice::IData&)> apply;
    };

    /// For records that are only read.
    DataHandler(std::int32_t type, Query theQuery) : dataType(type), query(theQuery) {}

    /// For records that requests change.
    /// @param checkSize  throws for a record that is not worth a closer look.
    /// @param group      the id of the group that a record is about; empty for none.
    template <typename Record>
    DataHandler(std::int32_t type, Query theQuery, const char* name, void (*checkSize)(const Record&),
                std::optional<std::int32_t> (*group)(const Record&, nvservice::EZvDataOperation),
                std::vector<Operation> theOperations)
        : dataType(type), query(theQuery), recordName(name), operations(std::move(theOperations)),
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
    Query query;                       ///< null: nobody can ask for them
    const char* recordName = "";       ///< as texts call a record: "账号组"
    std::vector<Operation> operations; ///< empty: no request changes them
    /// False for a record of another class, and for none.
    std::function<bool(const nvservice::IData*)> isReasonable;
    std::function<std::optional<std::int32_t>(const nvservice::IData*, nvservice::EZvDataOperation)> groupOf;
};

/// One for each data type.
const std::vector<DataHandler>& dataHandlers();

/// Throws `Refusal` (PermissionDenied) when the user has no right to `what`.
void requireRight(const StoredUser& user, int right, const std::string& what);

/// The decimal id that a query key names. Throws `Refusal` (InvalidValue) for every other text.
std::int64_t requireId(const std::string& key, const std::string& what);

// Each is in the file of its handler.
DataHandler accountGroupHandler();
DataHandler emailRuleHandler();
DataHandler riskConfigHandler();
Records queryAccounts(const RequestContext& context, const std::string& key);
Records queryCategories(const RequestContext& context, const std::string& key);
Records queryInstitutions(const RequestContext& context, const std::string& key);
Records queryProducts(const RequestContext& context, const std::string& key);
Records querySecurities(const RequestContext& context, const std::string& key);

} // namespace service
