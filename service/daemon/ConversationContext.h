// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/ChangeHub.h"
#include "service/daemon/Configuration.h"
#include "service/daemon/EventLog.h"
#include "service/daemon/Executor.h"
#include "service/daemon/HeldBytes.h"
#include "service/daemon/LogInGuard.h"
#include "service/daemon/MessageRoom.h"
#include "service/daemon/Metrics.h"
#include "service/engine/DataEngine.h"
#include "service/engine/ErrorCodeNames.h"

#include <functional>

namespace service::daemon
{

/// The objects that all conversations of one sub-system share. Must outlive them.
struct ConversationContext {
    service::DataEnginePtr engine;
    IExecutor& requests;
    IExecutor& logIns;
    LogInGuard& guard;
    Metrics& metrics;
    EventLog& log;
    HeldBytes& held;
    MessageRoom& room;
    ChangeHub& changes;
    LimitSettings limits;
    TimeoutSettings timeouts;
    std::function<TimePoint()> now;
};

/// A client that sends or reads at a lower rate is slow.
constexpr double SlowBytesPerSecond = 256.0 * 1024;

} // namespace service::daemon
