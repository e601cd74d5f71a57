// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

namespace support
{

/// The pulse of the thread that makes it: notes how long the thread works at most from one turn of its event loop to
/// the next, that is how long an event of the user's waits. Counts the thread's processor time, so that other load on
/// the machine changes little.
class Heartbeat
{
public:
    Heartbeat();

    /// Forgets what it has noted, or goes on from an earlier note.
    void restart(double longestPause = 0);
    /// Milliseconds since the last restart.
    double longestPause() const { return m_longest; }

private:
    void beat();

    QObject m_context; ///< ends the connection
    double m_last = 0;
    double m_longest = 0;
};

} // namespace support
