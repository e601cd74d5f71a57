// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "centre/CRequestLedger.h"

#include <QAV/CKolmClient.h>

#include <functional>

namespace QAV
{

/// Calls back. An exception is logged and dropped.
void callLogged(const std::function<void()>& call);

/// Answers a request by its callback, if it has one.
PendingRequest::Done answerTo(const QueryCallback& callback);
PendingRequest::Done answerTo(const OperateCallback& callback);
PendingRequest::Done answerTo(const LogInCallback& callback);

} // namespace QAV
