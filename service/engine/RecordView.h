// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"

#include <nvservice/IData.h>

namespace service
{

/// What of a record of the past the user may see.
struct RecordView {
    nvservice::IDataPtr
        record;          ///< with stand-ins for accounts that the user may not see (`accountShownTo`); null: nothing
    bool isWhole = true; ///< false: something is missing
};

/// Risk settings need the right 10719. A user who is bound to an institution sees nothing of the groups and the
/// accounts of others. `isStored` is false for the record of a refused request: its stand-ins do not tell whether there
/// is such an account.
RecordView viewOf(const RequestContext& context, const nvservice::IDataPtr& record, bool isStored = true);

} // namespace service
