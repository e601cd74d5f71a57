// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "centre/CRequestLedger.h"

#include <QAV/CKolmClient.h>

namespace QAV
{

/// Answers a request by its callback. Exceptions of the callback are logged.
PendingRequest::Done answerTo(const QueryCallback& callback);
PendingRequest::Done answerTo(const OperateCallback& callback);
PendingRequest::Done answerTo(const LogInCallback& callback);

} // namespace QAV
