// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/KillRounds.h"

#include "service/ServiceFixture.h"
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/DaemonThread.h"
#include "service/daemon/RawClient.h"
#include "service/store/Query.h"
#include "support/tls/TestCertificates.h"

#include <QElapsedTimer>
#include <QThread>

#include <atomic>
#include <map>
#include <random>

namespace testservice
{

namespace
{

constexpr int RoundsOfOneStore = 50;
constexpr int LongestLoadMilliseconds = 120;

struct Operation {
    bool isModify = false;
    int number = 0;
    std::string id;
};

/// One client: adds groups and changes a group of its own in turns, and remembers what it was told.
struct Worker {
    int index = 0;
    int ownGroup = 0;
    int ownRevision = 1; ///< that the client knows of
    int next = 0;
    std::optional<Operation> pending;
    std::vector<int> added; ///< numbers of groups whose addition was acknowledged
    int acknowledged = 0;
    QString failure;

    std::string nameOf(int number) const { return "k" + std::to_string(index) + "-" + std::to_string(number); }

    boost::shared_ptr<CAccountGroup> recordOf(const Operation& operation) const
    {
        auto record = group(nameOf(operation.number), First, {future("8001"), future("8002")});
        if (operation.isModify) {
            record->groupId = ownGroup;
            record->setRevision(ownRevision);
        }
        return record;
    }

    void noteSuccess()
    {
        ++acknowledged;
        pending->isModify ? static_cast<void>(++ownRevision) : added.push_back(pending->number);
        pending.reset();
    }

    /// Until the daemon is gone.
    void run(int port, const QString& authority, std::atomic<int>& answered)
    {
        RawClient client;
        if (!client.open(port, authority) || !client.hello() || !client.logIn("writer", "right").isSuccess()) {
            return;
        }
        for (;;) {
            if (!pending) {
                pending = Operation{next % 2 == 1, next, "op-" + nameOf(next)};
                ++next;
            }
            const auto kind = pending->isModify ? EZvDataOperation::Modify : EZvDataOperation::Add;
            const auto answer =
                client.operate(nvservice::DataType::AccountGroup, kind, recordOf(*pending), pending->id);
            if (answer.error.code() == EErrorCode::NotConnected) {
                return;
            }
            if (!answer.error.isSuccess()) {
                failure = QString("%1: %2").arg(pending->id.c_str(), answer.error.errorMsg().c_str());
                return;
            }
            noteSuccess();
            ++answered;
        }
    }
};

/// A store and what the clients know of it.
class Campaign
{
public:
    Campaign(int clients, support::TestCertificates& certificates)
        : m_certificates(certificates), m_directory(QDir::tempPath() + "/qav-kill-XXXXXX"), m_daemon(m_directory.path())
    {
        addUser(m_fixture.store(), m_fixture.server(0), "writer", "right", everyRight(), None);
        for (int i = 0; i < clients; ++i) {
            m_workers.emplace_back();
            m_workers.back().index = i;
            m_workers.back().ownGroup = m_fixture.storedGroup("own" + std::to_string(i))->groupId;
        }
        m_daemon.configure(m_fixture.location(), "东分系统", certificates.certificate(), certificates.key(),
                           "[log]\nlevel = \"info\"\n[workers]\nrequests = 4\n");
    }

    QString round(std::mt19937& random, KillFigures& figures)
    {
        QString errors;
        if (!m_daemon.start(errors)) {
            return "the daemon does not start: " + errors;
        }
        std::atomic<int> answered{0};
        std::vector<std::thread> threads;
        for (Worker& worker : m_workers) {
            threads.emplace_back([&] { worker.run(m_daemon.port(), m_certificates.authority(), answered); });
        }
        // Under load means: after the first answer.
        QElapsedTimer timer;
        for (timer.start(); answered == 0 && timer.elapsed() < 30000;) {
            QThread::usleep(200);
        }
        const bool isUnderLoad = answered > 0;
        QThread::usleep(std::uniform_int_distribution<unsigned long>(0, 1000 * LongestLoadMilliseconds)(random));
        m_daemon.kill();
        for (std::thread& thread : threads) {
            thread.join();
        }
        waitUntilAlone();
        return isUnderLoad ? verify(figures) : QStringLiteral("no operation was answered");
    }

private:
    /// A PostgreSQL server finishes what the dead daemon has asked it for.
    void waitUntilAlone()
    {
        while (TestDatabase::isPostgres() &&
               m_fixture.number("SELECT count(*) FROM pg_stat_activity WHERE datname = current_database() AND "
                                "backend_type = 'client backend' AND pid <> pg_backend_pid()") > 0) {
            QThread::msleep(1);
        }
    }

    QString verify(KillFigures& figures)
    {
        const utils::NVError integrity = m_fixture.store().checkIntegrity();
        if (!integrity.isSuccess()) {
            return QString::fromStdString(integrity.errorMsg());
        }
        countAdditions();
        for (Worker& worker : m_workers) {
            figures.acknowledged += std::exchange(worker.acknowledged, 0);
            const QString failure = worker.failure.isEmpty() ? verify(worker, figures) : worker.failure;
            if (!failure.isEmpty()) {
                return failure;
            }
        }
        const std::int64_t groups = m_fixture.number("SELECT count(*) FROM account_group");
        if (m_fixture.number("SELECT count(*) FROM account_group_member") !=
            2 * groups - m_fixture.number("SELECT count(*) FROM account_group WHERE name LIKE 'own%'")) {
            return "a group is incomplete";
        }
        if (m_fixture.number("SELECT count(*) FROM audit") != m_fixture.number("SELECT count(*) FROM operation_log")) {
            return "audit and operations differ";
        }
        return {};
    }

    QString verify(const Worker& worker, KillFigures& figures)
    {
        const bool isPendingAdd = worker.pending && !worker.pending->isModify;
        const bool isPendingModify = worker.pending && worker.pending->isModify;
        int applied = 0;
        for (const int number : worker.added) {
            if (timesAdded(worker, number) != 1) {
                return QString("%1 was acknowledged and is there %2 times")
                    .arg(worker.nameOf(number).c_str())
                    .arg(timesAdded(worker, number));
            }
        }
        if (isPendingAdd) {
            applied = timesAdded(worker, worker.pending->number);
            if (applied > 1) {
                return "an unanswered addition was applied twice";
            }
        }
        const auto own = QString::number(worker.ownGroup);
        const auto revision =
            m_fixture.number("SELECT revision FROM account_group WHERE server_id = 1 AND group_id = " + own);
        const auto history =
            m_fixture.number("SELECT count(*) FROM account_group_history WHERE server_id = 1 AND group_id = " + own);
        const auto over = static_cast<int>(revision - worker.ownRevision);
        if (over < 0 || over > (isPendingModify ? 1 : 0) || history != revision) {
            return QString("group %1 has revision %2 and %3 states; its client was told %4")
                .arg(own)
                .arg(revision)
                .arg(history)
                .arg(worker.ownRevision);
        }
        if (worker.pending) {
            ++figures.unanswered;
            figures.wereApplied += isPendingAdd ? applied : over;
        }
        return {};
    }

    int timesAdded(const Worker& worker, int number) const
    {
        const auto found = m_additions.find("op-" + worker.nameOf(number));
        return found == m_additions.end() ? 0 : found->second;
    }

    /// How often each operation id added a group.
    void countAdditions()
    {
        m_additions.clear();
        service::Query query(m_fixture.store().connection(),
                             QStringLiteral("SELECT operation_id FROM audit WHERE operation = 2 AND outcome = 0"));
        for (query.run(); query.next();) {
            ++m_additions[query.text(0)];
        }
    }

    support::TestCertificates& m_certificates;
    QTemporaryDir m_directory;
    ServiceFixture m_fixture;
    DaemonProcess m_daemon;
    std::vector<Worker> m_workers;
    std::map<std::string, int> m_additions;
};

} // namespace

KillFigures killRounds(int rounds, int clients, unsigned seed)
{
    KillFigures figures;
    support::TestCertificates certificates;
    std::mt19937 random(seed);
    std::unique_ptr<Campaign> campaign;
    QElapsedTimer timer;
    for (timer.start(); figures.rounds < rounds && figures.failure.isEmpty(); ++figures.rounds) {
        if (figures.rounds % RoundsOfOneStore == 0) {
            campaign = std::make_unique<Campaign>(clients, certificates);
        }
        figures.failure = campaign->round(random, figures);
    }
    figures.seconds = static_cast<double>(timer.elapsed()) / 1000;
    return figures;
}

} // namespace testservice
