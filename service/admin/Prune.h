#pragma once

#include "service/store/Store.h"

#include <cstdint>
#include <string>

namespace service
{

enum class EJournal {
    Audit,      ///< but for the rows that tell of pruning itself
    Operations, ///< the answers by operation id
};

/// How long an answer stays, so that an operation that is sent again is still known.
constexpr std::int64_t KeptOperationHours = 24;

/// Removes the server's rows from before a time (milliseconds since 1970 UTC) and gives their number. It goes on in
/// small transactions, with pauses in which others write. One audit row tells how many rows are gone, at every moment.
/// Throws `Refusal` (InvalidValue, audited) for a time that is not over yet, or answers that are younger than they may
/// be; `StoreError` when it cannot go on.
std::int64_t prune(Store& store, const SubSystem& server, const std::string& administrator, EJournal journal,
                   std::int64_t before);

} // namespace service
