// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace service::daemon
{

constexpr std::size_t Mebibyte = std::size_t{1024} * 1024;

} // namespace service::daemon
