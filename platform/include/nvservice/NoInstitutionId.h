// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace nvservice
{

/// The institution id that means "no institution".
constexpr std::int32_t NoInstitutionId = 2147483647;

} // namespace nvservice
