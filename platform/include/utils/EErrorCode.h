#pragma once

namespace utils
{

/// What went wrong, for code. The text for the user is in the NVError that carries the code.
enum class EErrorCode : int {
    Success = 0,
    Failed = 1,            ///< no more specific code applies
    NotConnected = 2,      ///< the server is unknown or no connection to it exists
    DeadlineExceeded = 3,  ///< no answer in time; an operation may or may not have been carried out
    Cancelled = 4,         ///< given up before an answer came, for example while shutting down
    Malformed = 5,         ///< bytes, a document or a file that breaks its format
    NotLoggedIn = 6,       ///< wrong user or password, or no log-in at all
    PermissionDenied = 7,  ///< the user lacks the right
    OutOfScope = 8,        ///< the record belongs to another institution
    NotFound = 9,          ///< the record, file or server does not exist
    Conflict = 10,         ///< the record was changed by somebody else since it was read
    Duplicate = 11,        ///< another record has the same name or key
    InvalidValue = 12,     ///< a value that makes no sense, well-formed as it may be
    StorageFailure = 13,   ///< the database refused or failed
    Unsupported = 14,      ///< a data type, operation or version that this side does not know
    ResourceExhausted = 15 ///< a limit of size, count, memory or time was reached
};

} // namespace utils
