// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/StoreOpener.h"
#include "service/store/StoreError.h"

#include <algorithm>
#include <utility>

namespace service::daemon
{

using std::chrono::milliseconds;

OpenStore openStore(const QString& location, EventLog& log)
{
    service::StoreOptions options;
    options.location = location;
    options.failureLog = [&log](const std::string& text) {
        log.error("store_failure", {LogField::ownText("error", text)});
    };
    OpenStore open;
    open.store = service::Store::open(options);
    open.engines = service::DataEngine::openAll(open.store);
    return open;
}

StoreOpener::StoreOpener(QString location, EventLog& log) : m_location(std::move(location)), m_log(log) {}

StoreOpener::~StoreOpener()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
    }
    m_stopping.notify_all();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void StoreOpener::start()
{
    m_thread = std::thread([this] { run(); });
}

milliseconds StoreOpener::pauseAfter(int failures)
{
    constexpr milliseconds First(250);
    constexpr milliseconds Longest(10000);
    constexpr int MostDoublings = 6;
    return std::min(First * (1 << std::min(failures - 1, MostDoublings)), Longest);
}

bool StoreOpener::pause(int failures)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_stopping.wait_for(lock, pauseAfter(failures), [this] { return m_isStopping; });
}

void StoreOpener::run()
{
    std::string reason;
    for (int failures = 1;; ++failures) {
        try {
            m_open = openStore(m_location, m_log);
            emit sigOpened();
            return;
        } catch (const StoreError& failure) {
            if (!failure.mayPass()) {
                emit sigFailed(QString::fromUtf8(failure.what()));
                return;
            }
            if (reason != failure.what()) {
                reason = failure.what();
                m_log.warning("waiting_for_store", {LogField::ownText("reason", reason)});
                emit sigWaiting(QString::fromStdString(reason));
            }
        }
        if (!pause(failures)) {
            return;
        }
    }
}

} // namespace service::daemon
