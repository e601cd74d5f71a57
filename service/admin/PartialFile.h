// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <boost/noncopyable.hpp>

#include <array>

namespace service
{

/// A file that gets its name only when it is complete. Until then it is written in a temporary folder beside the
/// target. The destructor removes that folder, and so does an interrupted program. No other file is ever removed.
class PartialFile : private boost::noncopyable
{
public:
    /// Throws `Refusal`, which names the target, if no file can be created there.
    PartialFile(const QString& target, bool mayReplace);
    ~PartialFile();

    const QString& target() const { return m_target; }
    /// The path to write to.
    const QString& path() const { return m_path; }
    /// Throws `Refusal`.
    void write(const QByteArray& content);
    /// Flushes the file to disk and gives it its name. Throws `Refusal` if another file has that name and must not be
    /// replaced.
    void commit();

private:
    QString m_target;
    bool m_mayReplace;
    QString m_path;
    int m_slot = -1;
};

/// The suffixes of files that SQLite may create beside a database.
constexpr std::array<const char*, 3> DatabaseCompanions = {"-wal", "-shm", "-journal"};

/// Throws `Refusal` if the file exists and must not be replaced. Only a regular file that does not belong to the
/// database `store` may be replaced.
void requireNewFile(const QString& name, bool mayReplace, const QString& store);

/// From now on an interrupted program removes its partial files. The database needs no clean-up, because uncommitted
/// changes are rolled back.
void cleanUpWhenInterrupted();

/// Delays interruptions as long as it exists.
class Uninterrupted : private boost::noncopyable
{
public:
    Uninterrupted();
    ~Uninterrupted();
};

} // namespace service
