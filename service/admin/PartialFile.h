#pragma once

#include <QByteArray>
#include <QString>

#include <boost/noncopyable.hpp>

namespace service
{

/// A file that appears under its name only when it is whole. Until then it is written under another name beside it,
/// which is taken away by the destructor, and when the program is interrupted.
class PartialFile : private boost::noncopyable
{
public:
    /// Throws `Refusal`, which names the target, when no file can be made there.
    explicit PartialFile(const QString& target);
    ~PartialFile();

    const QString& target() const { return m_target; }
    /// Where it is written.
    const QString& path() const { return m_path; }
    /// Throws `Refusal`.
    void write(const QByteArray& content);
    /// Brings it to the disk and gives it its name, in place of what had it. Throws `Refusal`.
    void commit();

private:
    QString m_target;
    QString m_path;
    int m_slot;
};

/// Throws `Refusal` when the file is there already, unless it may be replaced.
void requireNewFile(const QString& name, bool mayReplace);

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
