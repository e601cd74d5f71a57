// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>

namespace service
{

/// There is one right for each system type of security categories.
constexpr int FirstCategorySysTypeRight = 14000;
constexpr int CategorySysTypes = 100; ///< system types 0 to 99

/// The right to use categories of a system type; 0 if there is no such right.
constexpr int rightOfCategorySysType(int sysType)
{
    return sysType >= 0 && sysType < CategorySysTypes ? FirstCategorySysTypeRight + sysType : 0;
}

/// The system types that somebody with these rights may use.
inline std::set<int> categorySysTypesOf(const std::set<int>& rights)
{
    std::set<int> sysTypes;
    const auto end = rights.lower_bound(FirstCategorySysTypeRight + CategorySysTypes);
    for (auto right = rights.lower_bound(FirstCategorySysTypeRight); right != end; ++right) {
        sysTypes.insert(*right - FirstCategorySysTypeRight);
    }
    return sysTypes;
}

} // namespace service
