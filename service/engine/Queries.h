#pragma once

#include "service/engine/DataEngine.h"
#include "service/store/Users.h"

namespace service
{

/// Answers a query of the user from the caller's reading transaction. Throws `Refusal` or `StoreError`.
Reply answerQuery(Connection& connection, const SubSystem& server, const StoredUser& user,
                  const nvservice::CKolmQueryDataReq& request);

} // namespace service
