#pragma once

#include <utils/NVError.h>

#include <cstddef>

namespace nvservice
{

/// As checkDocument(), but names and texts may be anything.
utils::NVError checkShape(const char* data, std::size_t size);

} // namespace nvservice
