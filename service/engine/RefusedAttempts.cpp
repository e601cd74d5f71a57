// SPDX-License-Identifier: Apache-2.0
#include "service/engine/RefusedAttempts.h"

#include <utils/Translation.h>

#include <QDateTime>

#include <algorithm>
#include <tuple>

namespace service
{

namespace
{

using std::chrono::steady_clock;
using utils::EErrorCode;

constexpr int AnyOperation = -1;
constexpr std::int32_t AnyDataType = 0;

} // namespace

bool RefusedAttempts::Kind::operator<(const Kind& other) const
{
    return std::tie(operation, dataType, outcome) < std::tie(other.operation, other.dataType, other.outcome);
}

bool RefusedAttempts::Window::hasCounted() const
{
    return std::any_of(tallies.begin(), tallies.end(), [](const auto& each) { return each.second.counted > 0; });
}

RefusedAttempts::RefusedAttempts(Writer writer, Limits limits) : m_writer(std::move(writer)), m_limits(limits) {}

RefusedAttempts::~RefusedAttempts()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_one();
    if (m_thread.joinable()) {
        m_thread.join();
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    for (const auto& [login, window] : m_windows) {
        end(login, window);
    }
    write(lock);
}

RefusedAttempts::Kind RefusedAttempts::kindOf(const AuditRow& attempt)
{
    // Clients may send any code with these, so the number of kinds would have no limit.
    if (attempt.outcome.code() == EErrorCode::Unsupported || attempt.outcome.code() == EErrorCode::NotLoggedIn) {
        return {AnyOperation, AnyDataType, attempt.outcome.code()};
    }
    return {attempt.operation, attempt.dataType, attempt.outcome.code()};
}

RefusedAttempts::Window& RefusedAttempts::windowOf(const AuditRow& attempt)
{
    const Time now = steady_clock::now();
    const auto [entry, isNew] = m_windows.try_emplace(attempt.login);
    if (isNew || entry->second.end <= now) {
        end(attempt.login, entry->second);
        entry->second = Window();
        entry->second.end = now + m_limits.window;
        entry->second.since = attempt.at;
    }
    return entry->second;
}

RefusedAttempts::EShare RefusedAttempts::take(const AuditRow& attempt)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Window& window = windowOf(attempt);
    Tally& tally = window.tallies[kindOf(attempt)];
    if (tally.rows >= m_limits.rows) {
        return EShare::Nothing;
    }
    ++tally.rows;
    const int bytes = attempt.after.objsize();
    if (bytes > m_limits.bodyBytes - window.bodyBytes) {
        return EShare::RowWithoutBody;
    }
    window.bodyBytes += bytes;
    return EShare::Row;
}

void RefusedAttempts::count(const AuditRow& attempt)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Window& window = windowOf(attempt);
    window.until = attempt.at;
    if (++window.tallies[kindOf(attempt)].counted > 1) {
        return;
    }
    if (!m_thread.joinable()) {
        m_thread = std::thread([this] { run(); });
    }
    m_changed.notify_one();
}

void RefusedAttempts::end(const std::string& login, const Window& window)
{
    for (const auto& [kind, tally] : window.tallies) {
        if (tally.counted == 0) {
            continue;
        }
        const auto count = static_cast<int>(tally.counted);
        AuditRow row;
        row.at = QDateTime::currentMSecsSinceEpoch();
        row.login = login;
        row.operation = kind.operation;
        row.dataType = kind.dataType;
        row.outcome = {kind.outcome, utils::text("service", "另有%n次同类操作被拒绝，没有逐条记录", nullptr, count)};
        bson::BSONObjBuilder number;
        number.append("attempts", static_cast<long long>(tally.counted));
        number.append("since", static_cast<long long>(window.since));
        number.append("until", static_cast<long long>(window.until));
        row.after = number.obj();
        m_ended.push_back(std::move(row));
    }
}

std::optional<RefusedAttempts::Time> RefusedAttempts::nextTime() const
{
    std::optional<Time> next;
    if (!m_ended.empty()) {
        next = m_writeAt;
    }
    for (const auto& each : m_windows) {
        if (each.second.hasCounted() && (!next || each.second.end < *next)) {
            next = each.second.end;
        }
    }
    return next;
}

void RefusedAttempts::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_isStopping) {
        if (const std::optional<Time> next = nextTime()) {
            m_changed.wait_until(lock, *next);
        } else {
            m_changed.wait(lock);
        }
        const Time now = steady_clock::now();
        for (auto window = m_windows.begin(); window != m_windows.end();) {
            if (window->second.end > now) {
                ++window;
                continue;
            }
            end(window->first, window->second);
            window = m_windows.erase(window);
        }
        if (m_writeAt <= now) {
            write(lock);
        }
    }
}

void RefusedAttempts::write(std::unique_lock<std::mutex>& lock)
{
    std::vector<AuditRow> rows;
    rows.swap(m_ended);
    lock.unlock();
    const bool isStored = rows.empty() || m_writer(rows);
    lock.lock();
    if (isStored) {
        return;
    }
    m_ended.insert(m_ended.end(), rows.begin(), rows.end());
    m_writeAt = steady_clock::now() + m_limits.window;
}

} // namespace service
