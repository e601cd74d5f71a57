// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/NVError.h>

#include <cstddef>

namespace nvservice
{

/// Like checkDocument(), but without checking names and texts.
utils::NVError checkShape(const char* data, std::size_t size);

} // namespace nvservice
