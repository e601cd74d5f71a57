// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/daemon/EventLog.h"
#include "service/engine/DataEngine.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace service::daemon
{

/// A store and one engine for each of its sub-systems.
struct OpenStore {
    service::StorePtr store;
    std::vector<service::DataEnginePtr> engines;
};

/// Opens the store and migrates it. Throws `StoreError`.
OpenStore openStore(const QString& location, EventLog& log);

/// Opens the store on a thread of its own, which emits the signals. While the database is away or busy, tries again
/// with growing pauses, for as long as it takes.
class StoreOpener : public QObject
{
    Q_OBJECT

public:
    StoreOpener(QString location, EventLog& log);
    /// Waits for an attempt in progress, which may take as long as the database wants.
    ~StoreOpener() override;

    void start();
    /// After `sigOpened`, once.
    OpenStore takeStore();
    /// After the other signals: why the store is not open.
    QString reason() const;

    /// The pause after so many failures in a row.
    static std::chrono::milliseconds pauseAfter(int failures);

signals:
    /// The reason why the store cannot be opened yet has changed. It is logged, too.
    void sigWaiting();
    void sigOpened();
    /// The failure will not pass by itself.
    void sigFailed();

private:
    void run();
    /// One attempt. False if it is the last one.
    bool tryToOpen();
    /// False if the destructor waits.
    bool pause(int failures);

    QString m_location;
    EventLog& m_log;
    mutable std::mutex m_mutex; ///< for what follows
    OpenStore m_open;
    std::string m_reason;
    std::condition_variable m_stopping;
    bool m_isStopping = false;
    std::thread m_thread;
};

} // namespace service::daemon
