#pragma once

#include "service/daemon/DiskSpace.h"
#include "service/daemon/Executor.h"
#include "service/store/Store.h"

#include <QObject>

#include <functional>
#include <vector>

namespace service::daemon
{

/// Looks whether the store answers and has room on its disk. However many ask, the store is asked by one at a time.
/// Lives on one thread, which runs an event loop.
class Health : public QObject
{
public:
    struct Finding {
        bool isStoreWell = false;
        EDiskState disk = EDiskState::Enough; ///< of a store that is well
    };
    using Told = std::function<void(const Finding&)>;

    Health(service::StorePtr store, IExecutor& executor);

    /// Tells it on this thread, later; after 3 s at the latest, when a store that has given no answer is not well.
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
