// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/DiskSpace.h"
#include "service/daemon/Executor.h"
#include "service/store/Store.h"

#include <QObject>

#include <functional>
#include <vector>

namespace service::daemon
{

/// Checks whether the store answers and has space on its disk. Concurrent callers share one check of the store. Lives
/// on one thread with an event loop.
class Health : public QObject
{
public:
    struct Finding {
        bool isStoreWell = false;
        EDiskState disk = EDiskState::Enough; ///< of a healthy store
    };
    using Told = std::function<void(const Finding&)>;

    Health(service::StorePtr store, IExecutor& executor);

    /// Calls `told` later on this thread. A store that has not answered after 3 s is reported as unhealthy.
    void ask(Told told);

private:
    struct Asker {
        int number;
        Told told;
    };

    void look();
    void tell(const Finding& finding);

    service::StorePtr m_store;
    IExecutor& m_executor;
    std::vector<Asker> m_askers;
    int m_lastNumber = 0;
    bool m_isLooking = false;
};

} // namespace service::daemon
