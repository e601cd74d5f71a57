#pragma once

#include "service/store/Journal.h"
#include "service/store/Store.h"

#include <functional>
#include <string>

namespace service
{

/// One change that an administrator makes, inside its transaction.
struct Administration {
    Connection& connection;
    const SubSystem& server;
    /// The change's row in the audit; time and log-in are filled in. `before` and `after` tell whether anything
    /// changes.
    AuditRow row;
};

/// Carries out `change` in one transaction together with its audit row, `administrator` being the log-in of the row.
/// What `change` throws as a `Refusal` is audited with its text, nothing else is stored, and it is thrown on. False
/// when `before` and `after` are the same: then nothing is stored at all. Throws `StoreError`.
bool carryOut(Store& store, const SubSystem& server, const std::string& administrator,
              const std::function<void(Administration&)>& change);

} // namespace service
