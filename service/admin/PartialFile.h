#pragma once

#include <QByteArray>
#include <QString>

#include <boost/noncopyable.hpp>

#include <array>

namespace service
{

/// A file that appears under its name only when it is whole. Until then it is written in a folder of its own beside it,
/// which is taken away by the destructor, and when the program is interrupted. No other file is ever removed.
class PartialFile : private boost::noncopyable
{
public:
    /// Throws `Refusal`, which names the target, when no file can be made there.
    PartialFile(const QString& target, bool mayReplace);
    ~PartialFile();

    const QString& target() const { return m_target; }
    /// Where it is written.
    const QString& path() const { return m_path; }
    /// Throws `Refusal`.
    void write(const QByteArray& content);
    /// Brings it to the disk and gives it its name. Throws `Refusal` when another file has it that may not be replaced.
    void commit();

private:
    QString m_target;
    bool m_mayReplace;
    QString m_path;
    int m_slot = -1;
};

/// What a SQLite database may have beside its file.
constexpr std::array<const char*, 3> DatabaseCompanions = {"-wal", "-shm", "-journal"};

/// Throws `Refusal` when the file is there already, unless it may be replaced. Only a plain file may, and none of the
/// database `store`.
void requireNewFile(const QString& name, bool mayReplace, const QString& store);

/// From now on an interrupted program takes its partial files away. Changes of the database need no such care: what was
/// not committed is not there.
void cleanUpWhenInterrupted();

/// No interruption as long as it lives; one that comes is carried out afterwards.
class Uninterrupted : private boost::noncopyable
{
public:
    Uninterrupted();
    ~Uninterrupted();
};

} // namespace service
