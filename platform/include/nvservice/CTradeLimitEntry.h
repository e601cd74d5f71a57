// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Bson.h>
#include <nvservice/RiskEnums.h>

#include <string>

namespace nvservice
{

/// One security on the black or the white list of a trade type. A plain value: lists hold 100 000 of them.
struct CTradeLimitEntry {
    std::string securityCode; ///< leading zeros count
    std::string securityName;
    EZVRCDirection direction = EZVRCDirection::Both; ///< the side of a trade that the entry applies to
    EZVRCListKind listKind = EZVRCListKind::Black;   ///< the list that the entry is on
    bson::BSONObj unknownFields;                     ///< as in IData
};

} // namespace nvservice
