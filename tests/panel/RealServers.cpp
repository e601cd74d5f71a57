// SPDX-License-Identifier: Apache-2.0
#include "RealServers.h"

#include "service/engine/CategoryRights.h"
#include "workbench/CEmbeddedTransport.h"

#include <QAV/CConfigService.h>
#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <boost/make_shared.hpp>

#include <future>
#include <limits>

namespace panel_test
{

namespace
{

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
    if (!error.isSuccess()) {
        qFatal("%s", error.errorMsg().c_str());
    }
}

void logIn(QAV::ITransport& line)
{
    std::promise<boost::shared_ptr<nvservice::CUserInfo>> answer;
    line.logIn("admin", "admin123", [&](const utils::NVError& error, const auto& user) {
        require(error);
        answer.set_value(user);
    });
    const auto user = answer.get_future().get();
    utils::CSingletonT<QAV::CUserManager>::instance()->setUserInfo(user);
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes(
        service::categorySysTypesOf(user->rights));
}

} // namespace

QString moduleSwitches()
{
    QFile file(QStringLiteral(QAV_MODULE_FILE));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("no module switches");
    }
    return QString::fromUtf8(file.readAll());
}

bool waitUntil(const std::function<bool()>& isReached)
{
    constexpr qint64 Minutes = 3 * 60 * 1000;
    QTimer wakesUp;
    wakesUp.start(5);
    QElapsedTimer time;
    time.start();
    while (!isReached() && time.elapsed() < Minutes) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return isReached();
}

RealServers::RealServers(const service::SampleOptions& sample) : m_folder(folderTemplate())
{
    utils::NVError error;
    const auto options = service::StoreOptions::forCreating(m_folder.filePath(QStringLiteral("store.db")));
    m_store = service::Store::open(options, error);
    require(error);
    require(service::generateSampleData(*m_store, sample));
    const auto subSystems = m_store->subSystems(error);
    require(error);
    // Users are quicker here than anywhere else, and every refusal is counted.
    service::RefusedAttempts::Limits refusals;
    refusals.rows = std::numeric_limits<int>::max();
    refusals.bodyBytes = std::numeric_limits<int>::max();
    std::vector<service::DataEnginePtr> engines;
    for (const service::SubSystem& subSystem : subSystems) {
        engines.push_back(boost::make_shared<service::DataEngine>(m_store, subSystem, refusals));
    }
    for (std::size_t i = 0; i < engines.size(); ++i) {
        auto line = boost::make_shared<support::CUnsteadyTransport>(
            boost::make_shared<workbench::CEmbeddedTransport>(engines[i]));
        require(center().addServer(subSystems[i].name, subSystems[i].systemTag, line));
        logIn(*line);
        m_servers.push_back({subSystems[i], engines[i], line});
    }
}

RealServers::~RealServers()
{
    for (const Server& server : m_servers) {
        center().removeServer(server.subSystem.name);
    }
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({});
}

} // namespace panel_test
