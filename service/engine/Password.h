// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace service
{

/// A longer password is never valid.
constexpr std::size_t MaxPasswordBytes = 1024;

/// The argon2id hash of a password as text. Empty if there is not enough memory.
std::string hashPassword(const std::string& password);

/// True if the password matches the hash. For an unknown user pass an empty hash: the result is false after the same
/// time. At most four passwords of the process are checked at a time; further calls wait.
bool verifyPassword(const std::string& hash, const std::string& password);

} // namespace service
