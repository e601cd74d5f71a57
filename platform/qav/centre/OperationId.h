// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace QAV
{

/// A new id that no other client makes (UUID, 36 characters).
std::string newOperationId();

} // namespace QAV
