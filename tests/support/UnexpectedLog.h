// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace support
{

/// Collects every warning and error that is logged while it lives; one at a time. A test makes one in `init` and
/// compares `unexpected` with an empty list in `cleanup`; a line that the test wants is announced beforehand with
/// `expect`.
class UnexpectedLog
{
public:
    UnexpectedLog();
    ~UnexpectedLog();
    UnexpectedLog(const UnexpectedLog&) = delete;
    UnexpectedLog& operator=(const UnexpectedLog&) = delete;

    /// Accepts one or more lines that contain `part`; `missing` names it while none has come.
    void expect(const QString& part);
    QStringList unexpected() const;
    QStringList missing() const;
};

} // namespace support
