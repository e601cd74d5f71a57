// SPDX-License-Identifier: Apache-2.0
#include "service/RightSets.h"
#include "service/daemon/ChangeListener.h"
#include "service/daemon/DaemonProcess.h"
#include "service/daemon/Installation.h"
#include "support/TestProgram.h"
#include "support/records/Requests.h"

#include <QAV/CNetworkTransport.h>

#include <condition_variable>
#include <map>
#include <random>

using namespace testservice;
namespace DataType = nvservice::DataType;

namespace
{

/// The revision of every group and configuration of the east server that was changed after it was made.
std::map<std::pair<int, int>, std::int64_t> storedRevisions(const ServiceFixture& fixture)
{
    std::map<std::pair<int, int>, std::int64_t> revisions;
    const QString rows = QString::fromStdString(fixture.column(
        "SELECT g.group_id || ' ' || g.revision || ' ' || c.revision FROM account_group g JOIN group_risk_config c"
        " ON c.server_id = g.server_id AND c.group_id = g.group_id WHERE g.server_id = 1"));
    for (const QString& row : rows.split(',', Qt::SkipEmptyParts)) {
        const QStringList values = row.split(' ');
        revisions[{values[0].toInt(), DataType::AccountGroup}] = values[1].toLongLong();
        if (values[2].toLongLong() > 1) {
            revisions[{values[0].toInt(), DataType::GroupRiskConfig}] = values[2].toLongLong();
        }
    }
    return revisions;
}

} // namespace

/// What real clients of the daemon hear of changes.
class DaemonChangesTest : public QObject
{
    Q_OBJECT

private slots:
    void nobodyHearsOfWhatTheyMayNotRead()
    {
        Installation installation;
        ServiceFixture& fixture = installation.fixture;
        DaemonThread daemon(installation.configuration);
        std::map<std::string, std::unique_ptr<ChangeListener>> listeners;
        std::map<std::string, std::pair<bool, int>> readers; ///< whether risk settings may be read; institution
        for (std::size_t set = 0; set < rightSets().size(); ++set) {
            for (const int institution : {None, First, Second}) {
                const std::string login = "user-" + std::to_string(set) + "-" + std::to_string(institution);
                addUser(fixture.store(), fixture.server(0), login, "right", rightSets()[set].rights, institution);
                readers[login] = {rightSets()[set].maySetRisk, institution};
                listeners[login] = std::make_unique<ChangeListener>();
                QVERIFY2(listeners[login]->begin(daemon.port(), login), login.c_str());
            }
        }
        const service::SessionPtr boss = fixture.session("boss", everyRight());
        const auto add = [&](const std::string& name, int institution) {
            const std::string account = institution == First ? "8001" : institution == Second ? "9001" : "7001";
            return static_cast<int>(
                operate(fixture.east(), boss, EZvDataOperation::Add, group(name, institution, {future(account)}))
                    .newId);
        };
        std::map<int, int> institutions; ///< by group
        for (const int institution : {None, First, Second}) {
            for (int i = 0; i < 2; ++i) {
                const int id = add(nameOf(institution) + std::to_string(i), institution);
                institutions[id] = institution;
                const RiskConfigPtr config = fixture.config(id);
                config->ratProofSetting.washTradeForbidden = true;
                COMPARE_CODE(
                    operateOn(DataType::GroupRiskConfig, fixture.east(), boss, EZvDataOperation::Modify, config),
                    EErrorCode::Success);
            }
        }
        for (const int institution : {First, Second}) {
            add(std::string("end of ") + nameOf(institution), institution);
        }
        for (auto& [login, listener] : listeners) {
            const auto& [readsRisk, own] = readers[login];
            QVERIFY2(listener->takeUntil(std::string("end of ") + nameOf(own == None ? Second : own)), login.c_str());
            QVERIFY(listener->heard.isComplete());
            const auto& heard = listener->heard.revisions();
            for (const auto& [id, institution] : institutions) {
                const bool reads = own == None || own == institution;
                QCOMPARE(heard.count({id, DataType::AccountGroup}), std::size_t(reads ? 1 : 0));
                QCOMPARE(heard.count({id, DataType::GroupRiskConfig}), std::size_t(reads && readsRisk ? 1 : 0));
            }
        }
    }

    void afterAKillAClientHearsOfEveryStoredChangeOnce()
    {
        QTemporaryDir directory(directoryTemplate());
        Installation installation;
        ServiceFixture& fixture = installation.fixture;
        DaemonProcess daemon(directory.path());
        daemon.configure(fixture.location(), East, {}, {});
        ChangeListener listener;
        std::mt19937 random(7);
        QString errors;
        int changes = 0;
        for (int round = 0; round < 6; ++round) {
            QVERIFY2(daemon.start(errors), qPrintable(errors));
            QVERIFY(listener.begin(daemon.port(), "admin"));
            RawClient writer;
            QVERIFY(enter(writer, daemon.port()));
            // Some are answered, and the daemon ends with others under way.
            const int answered = static_cast<int>(random() % 4);
            for (int i = 0; i < answered + 20; ++i) {
                ++changes;
                const std::int64_t id = writer.sendOperation(
                    DataType::AccountGroup, EZvDataOperation::Add,
                    group("组" + std::to_string(changes), First, {future("8001")}), std::to_string(changes));
                if (i < answered) {
                    COMPARE_CODE(writer.answerTo(id), EErrorCode::Success);
                }
            }
            QTest::qWait(static_cast<int>(random() % 40)); // the moment of the kill, which may be any
            daemon.kill();
            // What came before the end counts.
            while (listener.take()) {
            }
            listener.client.cut();
            QVERIFY(listener.heard.isComplete());
            writer.cut();
        }
        QVERIFY2(daemon.start(errors), qPrintable(errors));
        QVERIFY(listener.begin(daemon.port(), "admin"));
        const auto stored = storedRevisions(fixture);
        QVERIFY2(stored.size() > 10, qPrintable(QString::number(stored.size())));
        QVERIFY(listener.heard.isComplete());
        for (const auto& [key, revision] : stored) {
            const auto found = listener.heard.revisions().find(key);
            QVERIFY2(found != listener.heard.revisions().end() && found->second == revision,
                     qPrintable(QString("group %1 was not told").arg(key.first)));
        }
        QCOMPARE(listener.heard.revisions().size(), stored.size());
        QVERIFY(listener.heard.isInOrder());
    }

    void theClientsTransportCatchesUpAfterALostConnection()
    {
        Installation installation;
        ServiceFixture& fixture = installation.fixture;
        auto daemon = std::make_unique<DaemonThread>(installation.configuration);
        installation.configuration.listen[0].port = daemon->port();
        QAV::NetworkServer server;
        server.host = "127.0.0.1";
        server.port = static_cast<std::uint16_t>(daemon->port());
        server.encrypted = false;
        server.firstPause = std::chrono::milliseconds(20);
        server.longestPause = std::chrono::milliseconds(200);
        std::mutex mutex;
        std::condition_variable told;
        HeardChanges heard;
        QAV::CNetworkTransport client(server);
        client.changeSource().setChangeHandler([&](const QAV::IChangeSource::Changes& changes) {
            const std::lock_guard<std::mutex> lock(mutex);
            heard.add(changes.records, changes.isComplete);
            told.notify_all();
        });
        const auto waitFor = [&](const std::string& name) {
            std::unique_lock<std::mutex> lock(mutex);
            return told.wait_for(lock, std::chrono::seconds(60), [&] { return heard.knows(name); });
        };
        std::promise<utils::NVError> entered;
        client.logIn("admin", "right", [&](const utils::NVError& error, const auto&) { entered.set_value(error); });
        QVERIFY(entered.get_future().get().isSuccess());
        // The log-in is over before the client listens, so the first changes may come too early.
        const service::SessionPtr boss = fixture.session("boss", everyRight());
        int number = 0;
        const auto add = [&] {
            const std::string name = "组" + std::to_string(++number);
            operate(fixture.east(), boss, EZvDataOperation::Add, group(name, First, {future("8001")}));
            return name;
        };
        std::string name;
        do {
            name = add();
            std::unique_lock<std::mutex> lock(mutex);
            told.wait_for(lock, std::chrono::milliseconds(500), [&] { return heard.knows(name); });
            QVERIFY(number < 100);
        } while (![&] {
            const std::lock_guard<std::mutex> lock(mutex);
            return heard.knows(name);
        }());
        for (int round = 0; round < 3; ++round) {
            daemon.reset();
            const std::string missed = add();
            const std::string last = add();
            daemon = std::make_unique<DaemonThread>(installation.configuration);
            QVERIFY2(daemon->startError().isSuccess(), daemon->startError().errorMsg().c_str());
            QVERIFY(waitFor(missed) && waitFor(last));
        }
        client.changeSource().setChangeHandler({});
        const std::lock_guard<std::mutex> lock(mutex);
        QVERIFY(heard.isComplete() && heard.isInOrder());
    }

    /// Two desks write at random; a third one knows what is stored.
    void whatIsToldIsWhatIsStored()
    {
        Installation installation;
        ServiceFixture& fixture = installation.fixture;
        addUser(fixture.store(), fixture.server(0), "second", "right", everyRight(), None);
        DaemonThread daemon(installation.configuration);
        DaemonThread other(installation.configuration); // of the same database
        ChangeListener listener;
        QVERIFY(listener.begin(daemon.port(), "reader") && listener.heard.isComplete());
        ChangeListener everything;
        QVERIFY(everything.begin(other.port(), "admin"));
        RawClient writers[2];
        QVERIFY(enter(writers[0], daemon.port()) && enter(writers[1], other.port(), {}, "second"));
        std::mt19937 random(3);
        std::vector<int> ids;
        for (int step = 0; step < 120; ++step) {
            RawClient& writer = writers[random() % 2];
            const std::string name = "组" + std::to_string(step);
            const std::string operation = "op" + std::to_string(step);
            if (ids.size() < 3 || random() % 4 == 0) {
                COMPARE_CODE(writer.operate(DataType::AccountGroup, EZvDataOperation::Add,
                                            group(name, First, {future("8001")}), operation),
                             EErrorCode::Success);
                ids.push_back(static_cast<int>(fixture.number("SELECT max(group_id) FROM account_group")));
                continue;
            }
            const int id = ids[random() % ids.size()];
            if (random() % 2) {
                const GroupPtr record = fixture.current(id);
                record->groupName = name;
                COMPARE_CODE(writer.operate(DataType::AccountGroup, EZvDataOperation::Modify, record, operation),
                             EErrorCode::Success);
            } else {
                const RiskConfigPtr config = fixture.config(id);
                config->ratProofSetting.washTradeForbidden = !config->ratProofSetting.washTradeForbidden;
                COMPARE_CODE(writer.operate(DataType::GroupRiskConfig, EZvDataOperation::Modify, config, operation),
                             EErrorCode::Success);
            }
        }
        COMPARE_CODE(writers[0].operate(DataType::AccountGroup, EZvDataOperation::Add,
                                        group("end", First, {future("8001")}), "end"),
                     EErrorCode::Success);
        QVERIFY(everything.takeUntil("end") && listener.takeUntil("end"));
        QVERIFY(everything.heard.isComplete() && everything.heard.isInOrder());
        QVERIFY(everything.heard.revisions() == storedRevisions(fixture));
        for (const auto& [key, revision] : listener.heard.revisions()) {
            QCOMPARE(key.second, DataType::AccountGroup); // no right to risk settings
        }
    }
};

TEST_WITHOUT_WIDGETS(DaemonChangesTest)
#include "tst_daemon_changes.moc"
