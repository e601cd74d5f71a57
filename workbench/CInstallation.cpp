// SPDX-License-Identifier: Apache-2.0
#include "CInstallation.h"

#include "CEmbeddedTransport.h"
#include "ClientCentre.h"

#include "service/engine/DataEngine.h"
#include "service/sampledata/SampleData.h"

#include <QAV/CNetworkTransport.h>
#include <WQ/StringConversion.h>
#include <utils/Translation.h>

#include <boost/make_shared.hpp>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace workbench
{

namespace
{

void removeDatabase(const QString& file)
{
    for (const char* suffix : {"", "-wal", "-shm"}) {
        QFile::remove(file + QLatin1String(suffix));
    }
}

} // namespace

CInstallation::CInstallation() = default;

CInstallation::~CInstallation()
{
    for (const std::string& server : m_servers) {
        clientCentre().removeServer(server);
    }
}

utils::NVError CInstallation::open(const QString& file, const SampleSize& sampleSize, const Progress& progress)
{
    const bool isNew = !QFileInfo::exists(file);
    if (isNew && !QDir().mkpath(QFileInfo(file).absolutePath())) {
        return {utils::EErrorCode::StorageFailure, utils::filled(utils::text("workbench", "无法创建数据目录：%1"),
                                                                 QFileInfo(file).absolutePath().toStdString())};
    }
    utils::NVError error;
    service::StorePtr store = service::Store::open(service::StoreOptions::forCreating(file), error);
    if (!store) {
        return error;
    }
    // A client that was killed while it filled its database has left an empty one.
    if (store->subSystems(error).empty() && error.isSuccess()) {
        service::SampleOptions sample;
        sample.groups = sampleSize.groups;
        sample.accounts = sampleSize.accounts;
        sample.progress = progress;
        error = service::generateSampleData(*store, sample);
        if (isNew && !error.isSuccess()) {
            store.reset();
            removeDatabase(file);
        }
    }
    if (!error.isSuccess()) {
        return error;
    }
    for (const service::DataEnginePtr& engine : service::DataEngine::openAll(store, error)) {
        error = add(engine->serverName(), engine->systemTag(), boost::make_shared<CEmbeddedTransport>(engine));
        if (!error.isSuccess()) {
            break;
        }
    }
    return error;
}

utils::NVError CInstallation::connectTo(const std::vector<ServerSetting>& servers)
{
    for (const ServerSetting& server : servers) {
        const utils::NVError error = add(WQ::qsToS(server.name), server.address.systemTag,
                                         boost::make_shared<QAV::CNetworkTransport>(server.address));
        if (!error.isSuccess()) {
            return error;
        }
    }
    return {};
}

utils::NVError CInstallation::add(const std::string& name, const std::string& systemTag,
                                  boost::shared_ptr<QAV::ITransport> transport)
{
    utils::NVError error = clientCentre().addServer(name, systemTag, std::move(transport));
    if (error.isSuccess()) {
        m_servers.push_back(name);
    }
    return error;
}

} // namespace workbench
