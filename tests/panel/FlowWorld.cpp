#include "FlowWorld.h"

#include "service/engine/CategoryRights.h"
#include "service/sampledata/SampleData.h"
#include "workbench/CEmbeddedTransport.h"

#include <QAV/CConfigService.h>
#include <QAV/CUserManager.h>
#include <nvservice/DataType.h>
#include <utils/CSingletonT.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTimer>
#include <QtTest>

#include <future>

namespace panel_test
{

namespace
{

using support::CUnsteadyTransport;

constexpr int Servers = 3;
constexpr CUnsteadyTransport::Request GroupQuery{false, nvservice::DataType::AccountGroup};

QAV::CKolmClientCenter& center()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

/// Every commit waits for the disk; a disk in memory makes thousands of them cheap.
QString folderTemplate()
{
    const QString inMemory = QStringLiteral("/dev/shm");
    const QString parent = QFileInfo(inMemory).isWritable() ? inMemory : QDir::tempPath();
    return parent + QStringLiteral("/qav-panel-test-XXXXXX");
}

void require(const utils::NVError& error)
{
    if (!error.isSuccess())
        qFatal("%s", error.errorMsg().c_str());
}

QString moduleSwitches()
{
    QFile file(QStringLiteral(QAV_MODULE_FILE));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no module switches");
    return QString::fromUtf8(file.readAll());
}

boost::shared_ptr<nvservice::CUserInfo> logIn(Line& line)
{
    std::promise<boost::shared_ptr<nvservice::CUserInfo>> answer;
    line.transport->logIn("admin", "admin123", [&](const utils::NVError& error, const auto& user) {
        require(error);
        answer.set_value(user);
    });
    return answer.get_future().get();
}

} // namespace

FlowWorld::FlowWorld() : m_folder(folderTemplate())
{
    client.switchModules(moduleSwitches());
    // A held answer is to stay on its way for as long as the test likes.
    center().setDeadline(std::chrono::hours(1));

    utils::NVError error;
    service::StoreOptions options;
    options.file = m_folder.filePath(QStringLiteral("store.db"));
    m_store = service::Store::open(options, error);
    require(error);
    service::SampleOptions sample;
    sample.servers = Servers;
    sample.groups = 36;
    sample.accounts = 240;
    sample.categories = 30;
    sample.securities = 100;
    require(service::generateSampleData(*m_store, sample));

    const auto servers = m_store->subSystems(error);
    const auto engines = service::DataEngine::openAll(m_store, error);
    require(error);
    for (std::size_t i = 0; i < engines.size(); ++i) {
        auto transport =
            boost::make_shared<CUnsteadyTransport>(boost::make_shared<workbench::CEmbeddedTransport>(engines[i]));
        m_lines.push_back(std::make_unique<Line>(Line{engines[i], servers[i], transport,
                                                      engines[i]->logIn("admin", "admin123").session,
                                                      GroupModel(*m_store, servers[i])}));
        require(center().addServer(servers[i].name, servers[i].systemTag, transport));
        const auto user = logIn(*m_lines.back());
        utils::CSingletonT<QAV::CUserManager>::instance()->setUserInfo(user);
        utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes(
            service::categorySysTypesOf(user->rights));
    }
}

FlowWorld::~FlowWorld()
{
    closePanel();
    center().setDeadline(std::chrono::seconds(30));
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({});
}

void FlowWorld::openPanel(std::size_t server)
{
    client.createPanel();
    switchTo(server);
}

void FlowWorld::closePanel()
{
    client.destroyPanel();
    m_listed.clear();
}

void FlowWorld::switchTo(std::size_t server)
{
    m_current = server;
    center().setCurrentServer(current().server.name);
    client.panel->switchSystem(int(server), current().name());
    noteQueries();
}

int FlowWorld::groupQueries() const
{
    int count = 0;
    for (const auto& line : m_lines)
        count += line->transport->count(GroupQuery);
    return count;
}

void FlowWorld::noteQueries()
{
    // The databases do not change before the servers have answered what they were asked.
    for (const auto& line : m_lines)
        line->transport->waitForServer();
    if (std::exchange(m_groupQueries, groupQueries()) != groupQueries())
        m_listed = current().model.groups();
}

void FlowWorld::settle()
{
    const auto requests = [this] {
        int count = 0;
        for (const auto& line : m_lines)
            count += line->transport->requests();
        return count;
    };
    int seen = -1;
    while (std::exchange(seen, requests()) != requests()) {
        noteQueries();
        // Callbacks come one after the other on one thread: one more request is answered after all that came before.
        std::promise<void> passed;
        center().getClientByName("nobody")->queryData_async(
            boost::make_shared<nvservice::CKolmQueryDataReq>(),
            [&](const utils::NVError&, const std::vector<nvservice::IDataPtr>&, int, bson::BSONObj) {
                passed.set_value();
            },
            0);
        passed.get_future().wait();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

bool FlowWorld::waitUntil(const std::function<bool()>& isReached)
{
    constexpr qint64 Minutes = 3 * 60 * 1000;
    QTimer wakesUp;
    wakesUp.start(5);
    QElapsedTimer time;
    time.start();
    while (!isReached() && time.elapsed() < Minutes)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    return isReached();
}

QStringList FlowWorld::listedRows() const
{
    const Line& line = *m_lines[m_current];
    QStringList rows;
    for (const auto& [id, group] : m_listed) {
        const auto institution = line.model.institutions().find(group.input.institution);
        rows << QStringLiteral("%1, %2, %3, %4")
                    .arg(QString::fromStdString(group.input.name))
                    .arg(group.input.accounts.size())
                    .arg(institution == line.model.institutions().end() ? QStringLiteral("主经纪商")
                                                                        : QString::fromStdString(institution->second),
                         line.name());
    }
    return rows;
}

QStringList FlowWorld::shownRows() const
{
    QStringList rows;
    for (int row = 0; row < client.model()->rowCount(); ++row) {
        const auto data = client.model()->getDataByRow(row);
        rows << QStringLiteral("%1, %2, %3, %4")
                    .arg(data->getDisplayQString(0), data->getDisplayQString(1), data->getDisplayQString(2),
                         data->getDisplayQString(3));
    }
    return rows;
}

void FlowWorld::compareDatabases()
{
    for (const auto& line : m_lines)
        QCOMPARE(GroupModel::linesOf(*m_store, line->server), line->model.lines());
}

std::size_t FlowWorld::liveRecords() const
{
    std::size_t count = 0;
    for (const auto& line : m_lines)
        count += line->transport->liveRecords();
    return count;
}

} // namespace panel_test
