// SPDX-License-Identifier: Apache-2.0
#include "RealServers.h"

#include "support/Paths.h"
#include "support/qav/Client.h"

#include "service/engine/CategoryRights.h"
#include "workbench/CEmbeddedTransport.h"

#include <QAV/CConfigService.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

#include <boost/make_shared.hpp>

#include <future>
#include <limits>

namespace panel_test
{

namespace
{

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
    support::logInAs(user);
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes(
        service::categorySysTypesOf(user->rights));
}

} // namespace

QString moduleSwitches()
{
    QFile file(support::sourceFile("data/modules.lua"));
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

RealServers::RealServers(const service::SampleOptions& sample)
{
    support::makeSampleDatabase(m_database.location(), sample);
    // Users are quicker here than anywhere else, and every refusal is counted.
    service::RefusedAttempts::Limits refusals;
    refusals.rows = std::numeric_limits<int>::max();
    refusals.bodyBytes = std::numeric_limits<int>::max();
    m_service.emplace(m_database.location(), service::StoreOptions(), refusals);
    for (std::size_t i = 0; i < m_service->engines().size(); ++i) {
        const service::SubSystem& subSystem = m_service->servers()[i];
        const service::DataEnginePtr& engine = m_service->engines()[i];
        auto line =
            boost::make_shared<support::CUnsteadyTransport>(boost::make_shared<workbench::CEmbeddedTransport>(engine));
        require(support::centre().addServer(subSystem.name, subSystem.systemTag, line));
        logIn(*line);
        m_servers.push_back({subSystem, engine, line});
    }
}

RealServers::~RealServers()
{
    for (const Server& server : m_servers) {
        support::centre().removeServer(server.subSystem.name);
    }
    utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({});
}

} // namespace panel_test
