// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/ChangeHub.h"

#include "service/store/StoreError.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace service::daemon
{

namespace
{

constexpr std::chrono::milliseconds ReadingPause(600);
constexpr std::chrono::milliseconds PauseAfterFailure(1000);
// Changes times sessions of one reading. Beyond it, each session only hears that anything may have changed: otherwise
// telling would slow down those who work.
constexpr std::size_t MostHandedOut = 10000;

} // namespace

struct ChangeHub::Reading {
    std::vector<std::weak_ptr<Listener>> listeners; ///< whom it is for; a later one may know more
    ChangeBatch batch;
    std::string failure;
};

ChangeHub::ChangeHub(DataEnginePtr engine, IExecutor& executor, EventLog& log)
    : m_engine(std::move(engine)), m_executor(executor), m_log(log), m_self(std::make_shared<ChangeHub*>(this)),
      m_isWoken(std::make_shared<std::atomic<bool>>(false))
{
    m_pause.setSingleShot(true);
    QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this] {
        if (m_isOutdated) {
            startReading();
        }
    });
}

ChangeHub::~ChangeHub()
{
    *m_self = nullptr;
}

ChangeHub::ListenerPtr ChangeHub::listen(SessionPtr session, const std::optional<ChangePosition>& from,
                                         std::function<void()> hasNews)
{
    if (!m_watch) {
        m_watch = m_engine->watchCommits([this, mailbox = m_mailbox.address(), isWoken = m_isWoken] {
            if (!isWoken->exchange(true)) {
                mailbox.post([this] { wake(); });
            }
        });
    }
    const ListenerPtr listener(new Listener{{std::move(session), from}, std::move(hasNews)});
    m_listeners.push_back(listener);
    wake();
    return listener;
}

void ChangeHub::wake()
{
    m_isOutdated = true;
    if (!m_isReading && !m_pause.isActive()) {
        startReading();
    }
}

std::vector<ChangeHub::ListenerPtr> ChangeHub::listeners()
{
    std::vector<ListenerPtr> present;
    std::vector<std::weak_ptr<Listener>> known;
    for (const std::weak_ptr<Listener>& each : m_listeners) {
        if (ListenerPtr listener = each.lock()) {
            present.push_back(std::move(listener));
            known.push_back(each);
        }
    }
    m_listeners.swap(known);
    return present;
}

std::optional<ChangePosition> ChangeHub::earliest(const std::vector<ListenerPtr>& listeners) const
{
    std::optional<ChangePosition> from = m_end;
    for (const ListenerPtr& listener : listeners) {
        const std::optional<ChangePosition>& position = listener->unread.position();
        if (from && position && position->epoch == from->epoch && position->auditId < from->auditId) {
            from = position;
        }
    }
    return from;
}

void ChangeHub::startReading()
{
    const std::vector<ListenerPtr> present = listeners();
    if (present.empty()) {
        m_end.reset();
        return;
    }
    m_isReading = true;
    m_isOutdated = false;
    *m_isWoken = false;
    const auto reading = std::make_shared<Reading>();
    reading->listeners = m_listeners;
    const ChangeLimit limit{m_end ? m_end->auditId : 0, MostHandedOut / present.size()};
    m_executor.post(
        [engine = m_engine, reading, from = earliest(present), limit] {
            try {
                reading->batch = engine->readChanges(from, limit);
            } catch (const StoreError& failure) {
                reading->failure = failure.what();
            }
        },
        [self = m_self, reading] {
            if (*self) {
                (*self)->finish(*reading);
            }
        });
}

void ChangeHub::finish(Reading& reading)
{
    m_isReading = false;
    if (!reading.failure.empty()) {
        m_log.error("changes_not_read", {LogField::ownText("error", reading.failure)});
        m_isOutdated = true;
        m_pause.start(PauseAfterFailure);
        return;
    }
    const bool isFirst = !m_end;
    m_end = reading.batch.end;
    if (isFirst) {
        // Now it is known how far back the positions of the clients are.
        return startReading();
    }
    m_pause.start(ReadingPause);
    for (const std::weak_ptr<Listener>& each : reading.listeners) {
        const ListenerPtr listener = each.lock();
        if (!listener) {
            continue;
        }
        listener->unread.add(reading.batch);
        if (listener->unread.hasNews()) {
            listener->hasNews();
        }
    }
}

} // namespace service::daemon
