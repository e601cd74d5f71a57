// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace service
{

/// Longest password that is looked at, in bytes.
constexpr std::size_t MaxPasswordBytes = 1024;

/// The argon2id text form of a password. Empty when memory is short.
std::string hashPassword(const std::string& password);

/// Whether the password belongs to the hash. An empty hash stands for a user who doesn't exist: the same work is done
/// and the answer is no. Waits while four others of the process are being checked.
bool verifyPassword(const std::string& hash, const std::string& password);

} // namespace service
