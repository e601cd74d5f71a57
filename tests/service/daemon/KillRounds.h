// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace testservice
{

/// What so many sudden ends of the daemon under load left behind.
struct KillFigures {
    int rounds = 0;
    int acknowledged = 0; ///< operations that were answered with success
    int unanswered = 0;   ///< operations that were under way when the daemon ended
    int wereApplied = 0;  ///< of those, found in the database afterwards
    QString failure;      ///< what is wrong; empty: nothing
    double seconds = 0;
};

/// Starts the daemon, lets `clients` clients change groups over TLS, ends it with SIGKILL at a random moment and
/// compares the database with what the clients were told; so many times. What was unanswered is sent again in the next
/// round, under the same operation id. The database is a new one every 50 rounds, in a directory of the disk.
KillFigures killRounds(int rounds, int clients, unsigned seed);

} // namespace testservice
