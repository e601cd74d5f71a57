// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Journal.h"
#include "service/store/Store.h"

#include <functional>
#include <string>

namespace service
{

/// One change by an administrator, in its transaction.
struct Administration : ServerData {
    /// The audit row of the change. Time and log-in are filled in later. If `before` and `after` are equal, nothing
    /// changes.
    AuditRow row;
};

/// Carries out `change` and stores its audit row in one transaction; `administrator` is the log-in of the row. If
/// `change` throws a `Refusal`, only the audit row with its text is stored, and the exception is rethrown. Returns
/// false and stores nothing if `before` and `after` are equal. Throws `StoreError`.
bool carryOut(Store& store, const SubSystem& server, const std::string& administrator,
              const std::function<void(Administration&)>& change);

} // namespace service
