// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/Health.h"

#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace service::daemon
{

namespace
{

constexpr std::chrono::seconds LongestWait{3}; ///< shorter than the monitor's server waits for an answer

} // namespace

Health::Health(service::StorePtr store, IExecutor& executor) : m_store(std::move(store)), m_executor(executor) {}

void Health::ask(Told told)
{
    const int number = ++m_lastNumber;
    m_askers.push_back({number, std::move(told)});
    if (!m_isLooking) {
        look();
    }
    // The store waits for a lost database longer than a monitor waits for an answer.
    QTimer::singleShot(LongestWait, this, [this, number] {
        const auto late = std::find_if(m_askers.begin(), m_askers.end(),
                                       [number](const Asker& asker) { return asker.number == number; });
        if (late == m_askers.end()) {
            return;
        }
        const Told toTell = std::move(late->told);
        m_askers.erase(late);
        toTell({});
    });
}

void Health::look()
{
    m_isLooking = true;
    const auto finding = std::make_shared<Finding>();
    m_executor.post(
        [store = m_store, finding] {
            utils::NVError error;
            store->subSystems(error);
            finding->isStoreWell = error.isSuccess();
            finding->disk = diskStateOf(store->options().location);
        },
        [self = QPointer<Health>(this), finding] {
            if (self) {
                self->tell(*finding);
            }
        });
}

void Health::tell(const Finding& finding)
{
    m_isLooking = false;
    for (const Asker& asker : std::exchange(m_askers, {})) {
        asker.told(finding);
    }
}

} // namespace service::daemon
