// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QString>

#include <boost/noncopyable.hpp>

#include <cstdint>
#include <functional>
#include <string>

namespace service
{

/// The progress of long work on standard error: a bar on a terminal, elsewhere a line from time to time.
class Progress : private boost::noncopyable
{
public:
    explicit Progress(QString title, int millisecondsBetweenLines = 10000);
    /// Removes the bar.
    ~Progress();
    void show(std::int64_t done, std::int64_t total);
    /// Calls `show`. Must not outlive the bar.
    std::function<void(std::int64_t done, std::int64_t total)> counter()
    {
        return [this](std::int64_t done, std::int64_t total) { show(done, total); };
    }

private:
    QString m_title;
    QElapsedTimer m_sinceShown; ///< or since the start
    int m_millisecondsBetweenLines;
    bool m_isTerminal;
    bool m_isShown = false;
};

/// Reads a password: the first line of standard input without its line end. On a terminal it prompts twice and does not
/// show the input. Throws `UsageError` if there is no line, or if the two differ.
std::string readPassword();

/// Restores the terminal's echo if `readPassword` has switched it off. May be called by a signal handler.
void showInput() noexcept;

} // namespace service
