// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CCategoryInfo.h>
#include <nvservice/CSecurityInfo.h>

#include <vector>

namespace service
{

/// The system type that no sample user has a right to. The others are 1 to 6.
constexpr int ForbiddenSampleSysType = 9;

/// The first `count` categories of an endless tree: top, sectors, subdivisions. Each comes after its parent. Some are
/// internal, some have the forbidden system type, and two have the same name.
std::vector<nvservice::CCategoryInfo> sampleCategories(int count);

/// `count` securities of all trade types. A few belong to any type, and two markets share a code. Names and codes are
/// invented.
std::vector<nvservice::CSecurityInfo> sampleSecurities(int count);

} // namespace service
