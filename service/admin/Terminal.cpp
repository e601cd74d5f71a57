// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Terminal.h"
#include "service/admin/CommandLine.h"

#include <utils/Translation.h>

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <iostream>

#include <termios.h>
#include <unistd.h>

namespace service
{

namespace
{

constexpr int MillisecondsBetweenBars = 100;
constexpr int BarWidth = 30;
constexpr char ClearLine[] = "\r\x1b[K";

// Used by signal handlers.
volatile std::sig_atomic_t isInputHidden = 0;
termios withEcho{};
termios withoutEcho{};

/// Turns the echo on while the program is stopped, and off when it continues.
void onStop(int)
{
    const int error = errno;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &withEcho);
    raise(SIGSTOP);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &withoutEcho);
    errno = error;
}

/// Turns the echo of the terminal off as long as it exists. One at a time.
class SilentInput : private boost::noncopyable
{
public:
    SilentInput()
    {
        tcgetattr(STDIN_FILENO, &withEcho);
        withoutEcho = withEcho;
        withoutEcho.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        isInputHidden = 1;
        struct sigaction action{};
        action.sa_handler = onStop;
        action.sa_flags = SA_RESTART;
        sigaction(SIGTSTP, &action, &m_stopBefore);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &withoutEcho);
    }
    ~SilentInput()
    {
        sigaction(SIGTSTP, &m_stopBefore, nullptr);
        showInput();
    }

private:
    struct sigaction m_stopBefore{};
};

std::string readLine()
{
    std::string line;
    if (!std::getline(std::cin, line)) {
        throw UsageError(QCoreApplication::translate("service", "请在标准输入的第一行给出密码"));
    }
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

std::string askFor(const std::string& prompt)
{
    std::fputs(prompt.c_str(), stderr);
    std::string line = readLine();
    std::fputs("\n", stderr);
    return line;
}

} // namespace

Progress::Progress(QString title, int millisecondsBetweenLines)
    : m_title(std::move(title)), m_millisecondsBetweenLines(millisecondsBetweenLines),
      m_isTerminal(isatty(STDERR_FILENO) == 1)
{
    m_sinceShown.start();
}

Progress::~Progress()
{
    if (m_isShown) {
        std::fputs(ClearLine, stderr);
    }
}

void Progress::show(std::int64_t done, std::int64_t total)
{
    if (total <= 0) {
        return;
    }
    const int percent = static_cast<int>(100 * std::min(done, total) / total);
    if (!m_isTerminal) {
        if (m_sinceShown.elapsed() >= m_millisecondsBetweenLines) {
            std::fprintf(stderr, "%s %d%%\n", m_title.toUtf8().constData(), percent);
            m_sinceShown.restart();
        }
        return;
    }
    if (m_isShown && m_sinceShown.elapsed() < MillisecondsBetweenBars) {
        return;
    }
    const int filled = static_cast<int>(BarWidth * std::min(done, total) / total);
    const QString bar = QString(filled, QLatin1Char('#')) + QString(BarWidth - filled, QLatin1Char('.'));
    std::fprintf(stderr, "%s%s [%s] %3d%%", ClearLine, m_title.toUtf8().constData(), bar.toUtf8().constData(), percent);
    std::fflush(stderr);
    m_isShown = true;
    m_sinceShown.restart();
}

void showInput() noexcept
{
    if (isInputHidden != 0) {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &withEcho);
    }
    isInputHidden = 0;
}

std::string readPassword()
{
    if (isatty(STDIN_FILENO) == 0) {
        return readLine();
    }
    const SilentInput silent;
    std::string first = askFor(utils::text("service", "密码："));
    if (askFor(utils::text("service", "再次输入密码：")) != first) {
        throw UsageError(QCoreApplication::translate("service", "两次输入的密码不一致"));
    }
    return first;
}

} // namespace service
