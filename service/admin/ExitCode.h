// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace service
{

/// The exit codes of the tool. After a signal the exit code is 128 plus its number.
enum ExitCode {
    Done = 0,
    Refused = 1,       ///< refused because of a rule, a record or a file; nothing was changed
    WrongUse = 2,      ///< the command line is wrong
    StoreUnusable = 3, ///< the database is missing, locked, damaged, full, of a newer version or of another program
    Findings = 4,      ///< a check found something
};

} // namespace service
