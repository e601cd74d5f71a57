#pragma once

namespace service
{

/// How a run of the tool ended; 128 and the number of the signal when it was interrupted.
enum ExitCode {
    Done = 0,
    Refused = 1,       ///< a rule, a record or a file stands against it; nothing was changed
    WrongUse = 2,      ///< the command line is wrong
    StoreUnusable = 3, ///< the database is missing, locked, damaged, full, of a newer version or not ours
    Findings = 4,      ///< a check found something
};

} // namespace service
