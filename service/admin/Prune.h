// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Store.h"

#include <cstdint>
#include <string>

namespace service
{

enum class EJournal {
    Audit,      ///< except the rows about pruning itself
    Operations, ///< the stored answers by operation id
};

/// How long an answer is kept, so that a repeated operation is recognised.
constexpr std::int64_t KeptOperationHours = 24;

/// Removes the server's rows from before a time (milliseconds since 1970 UTC) and returns their number. It works in
/// small transactions, with pauses for other writers. At every moment one audit row has the number of removed rows.
/// Throws `Refusal` (InvalidValue, audited) for a time in the future, or for answers that must be kept; `StoreError` if
/// it cannot continue.
std::int64_t prune(Store& store, const SubSystem& server, const std::string& administrator, EJournal journal,
                   std::int64_t before);

} // namespace service
