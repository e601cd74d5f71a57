// SPDX-License-Identifier: Apache-2.0
#include "support/UnexpectedLog.h"

#include <QtTest>

#include <atomic>
#include <mutex>
#include <vector>

namespace support
{

namespace
{

struct Expected {
    QString part;
    bool seen = false;
};

std::mutex g_mutex;
QStringList g_unexpected;
std::vector<Expected> g_expected;
std::atomic<QtMessageHandler> g_previous{nullptr};

void collect(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    // The offscreen platform says so of size hints, raised windows and keyboard grabs.
    if (message.startsWith(QLatin1String("This plugin does not support "))) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(g_mutex);
        bool expected = type == QtDebugMsg || type == QtInfoMsg;
        for (Expected& line : g_expected) {
            if (message.contains(line.part)) {
                line.seen = true;
                expected = true;
            }
        }
        if (!expected) {
            g_unexpected << message;
        }
    }
    if (const QtMessageHandler previous = g_previous) {
        previous(type, context, message);
    }
}

} // namespace

UnexpectedLog::UnexpectedLog()
{
    const QtMessageHandler previous = qInstallMessageHandler(collect);
    if (previous == collect) {
        qFatal("only one UnexpectedLog may live at a time");
    }
    g_previous = previous;
}

UnexpectedLog::~UnexpectedLog()
{
    verify();
    qInstallMessageHandler(g_previous);
}

void UnexpectedLog::expect(const QString& part)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_expected.push_back({part, false});
}

void UnexpectedLog::allow(const QString& part)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_expected.push_back({part, true});
}

QStringList UnexpectedLog::unexpected() const
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    return g_unexpected;
}

QStringList UnexpectedLog::missing() const
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    QStringList parts;
    for (const Expected& line : g_expected) {
        if (!line.seen) {
            parts << line.part;
        }
    }
    return parts;
}

bool UnexpectedLog::verify()
{
    const QStringList lines = unexpected();
    const QStringList parts = missing();
    for (const QString& line : lines) {
        QTest::qFail(qPrintable("unexpected in the log: " + line), __FILE__, __LINE__);
    }
    for (const QString& part : parts) {
        QTest::qFail(qPrintable("missing in the log: " + part), __FILE__, __LINE__);
    }
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_unexpected.clear();
    g_expected.clear();
    return lines.isEmpty() && parts.isEmpty();
}

} // namespace support
