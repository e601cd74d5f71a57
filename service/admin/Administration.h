// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/CommandLine.h"
#include "service/store/Journal.h"

#include <nvservice/EZvDataOperation.h>

#include <functional>
#include <string>

namespace service
{

/// Who changes the data of which server.
struct Administrator {
    Store& store;
    SubSystem server;
    std::string name; ///< in the audit
};

/// As the command line says. Throws as `Invocation` does.
Administrator administratorOf(Invocation& call);

/// One change by an administrator, in its transaction.
struct Administration : ServerData {
    /// The audit row of the change. If `before` and `after` are equal, nothing changes.
    AuditRow row;
};

/// Carries out `change` and stores its audit row in one transaction. If `change` throws a `Refusal`, only the audit row
/// with its text is stored, and the exception is rethrown. Returns false and stores nothing if `before` and `after` are
/// equal. Throws `StoreError`.
bool carryOut(const Administrator& administrator, nvservice::EZvDataOperation operation, const std::string& recordKey,
              const std::function<void(Administration&)>& change);

} // namespace service
