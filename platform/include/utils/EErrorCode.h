// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace utils
{

/// What went wrong, for programs. The NVError that carries the code also has a text for the user.
enum class EErrorCode : int {
    Success = 0,
    Failed = 1,            ///< no more specific code applies
    NotConnected = 2,      ///< the server is unknown or not connected
    DeadlineExceeded = 3,  ///< no answer in time; an operation may or may not have been carried out
    Cancelled = 4,         ///< cancelled before an answer came, for example during shutdown
    Malformed = 5,         ///< bytes, a document or a file with an invalid format
    NotLoggedIn = 6,       ///< wrong user or password, or not logged in
    PermissionDenied = 7,  ///< the user lacks the right
    OutOfScope = 8,        ///< the record belongs to another institution
    NotFound = 9,          ///< the record, file or server does not exist
    Conflict = 10,         ///< the record was changed by somebody else since it was read
    Duplicate = 11,        ///< another record has the same name or key
    InvalidValue = 12,     ///< a value is well-formed but not allowed
    StorageFailure = 13,   ///< the database refused or failed
    Unsupported = 14,      ///< unknown data type, operation or version
    ResourceExhausted = 15 ///< a limit of size, count, memory or time was exceeded
};

} // namespace utils
