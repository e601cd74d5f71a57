// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CTradeLimitEntry.h>
#include <nvservice/EZvTraderType.h>

#include <vector>

namespace nvservice
{

/// The black and white list of one trade type.
struct CTradeLimitList {
    EZvTraderType traderType = EZvTraderType::None; ///< one bit
    std::vector<CTradeLimitEntry> entries;          ///< in the order in which the user sees them
    bson::BSONObj unknownFields;                    ///< as in IData
};

} // namespace nvservice
