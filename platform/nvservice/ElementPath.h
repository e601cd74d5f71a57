// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace nvservice
{

/// An untrusted element name in a form that is safe to show: valid UTF-8 without control characters, limited in length.
std::string printableName(std::string_view name);

} // namespace nvservice
