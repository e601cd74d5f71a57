#pragma once

#include <nvservice/CCategoryInfo.h>
#include <nvservice/CSecurityInfo.h>

#include <vector>

namespace service
{

/// The system type that no sample user may use; the others are 1 to 6.
constexpr int ForbiddenSampleSysType = 9;

/// The first `count` categories of an endless tree: top, sectors, subdivisions. Each comes after the one above it.
/// Among them are internal ones, ones of a forbidden system type, and two of the same name.
std::vector<nvservice::CCategoryInfo> sampleCategories(int count);

/// `count` securities of all trade types; a few belong to any, and two markets share a code. Names and codes are
/// invented.
std::vector<nvservice::CSecurityInfo> sampleSecurities(int count);

} // namespace service
