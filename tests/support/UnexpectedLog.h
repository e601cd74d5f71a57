// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace support
{

/// Collects every warning and error that is logged while it lives; one at a time. A line that nobody announced and one
/// that was announced and does not come are failures: they fail the test that runs when the log is verified or dies.
class UnexpectedLog
{
public:
    UnexpectedLog();
    ~UnexpectedLog();
    UnexpectedLog(const UnexpectedLog&) = delete;
    UnexpectedLog& operator=(const UnexpectedLog&) = delete;

    /// Announces one or more lines that contain `part`.
    void expect(const QString& part);
    /// The same for lines that need not come.
    void allow(const QString& part);
    /// The lines that nobody announced, and the announced ones that have not come.
    QStringList unexpected() const;
    QStringList missing() const;
    /// Fails the running test with each failure; true when there is none. Forgets them and what was announced.
    bool verify();
};

} // namespace support
