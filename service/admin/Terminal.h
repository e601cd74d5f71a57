#pragma once

#include <QElapsedTimer>
#include <QString>

#include <boost/noncopyable.hpp>

#include <cstdint>
#include <string>

namespace service
{

/// A bar on standard error while something long goes on; nothing at all unless standard error is a terminal.
class Progress : private boost::noncopyable
{
public:
    explicit Progress(QString title);
    /// Takes the bar away.
    ~Progress();
    void show(std::int64_t done, std::int64_t total);

private:
    QString m_title;
    QElapsedTimer m_sinceShown;
    bool m_isTerminal;
    bool m_isShown = false;
};

/// The first line of standard input without its end. On a terminal it is asked for, twice, and not shown. Throws
/// `UsageError` when there is none, or the two differ.
std::string readPassword();

/// Gives the terminal its echo back if `readPassword` has it off. May be called by a signal handler.
void showInput() noexcept;

} // namespace service
