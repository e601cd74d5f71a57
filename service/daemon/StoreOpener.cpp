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

OpenStore StoreOpener::takeStore()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::move(m_open);
}

QString StoreOpener::reason() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return QString::fromStdString(m_reason);
}

void StoreOpener::run()
{
    for (int failures = 1; tryToOpen() && pause(failures); ++failures) {
    }
}

bool StoreOpener::tryToOpen()
{
    try {
        OpenStore open = openStore(m_location, m_log);
        std::unique_lock<std::mutex> lock(m_mutex);
        m_open = std::move(open);
        lock.unlock();
        emit sigOpened();
        return false;
    } catch (const StoreError& failure) {
        std::unique_lock<std::mutex> lock(m_mutex);
        const bool isNew = std::exchange(m_reason, failure.what()) != failure.what();
        lock.unlock();
        if (!failure.mayPass()) {
            emit sigFailed();
        } else if (isNew) {
            m_log.warning("waiting_for_store", {LogField::ownText("reason", failure.what())});
            emit sigWaiting();
        }
        return failure.mayPass();
    }
}

} // namespace service::daemon
