// SPDX-License-Identifier: Apache-2.0
#include "CInstallation.h"

#include "CEmbeddedTransport.h"

#include "service/engine/DataEngine.h"
#include "service/sampledata/SampleData.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CNetworkTransport.h>
#include <WQ/StringConversion.h>

#include <boost/make_shared.hpp>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace workbench
{

namespace
{

QAV::CKolmClientCenter& centre()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

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
        centre().removeServer(server);
    }
}

utils::NVError CInstallation::open(const QString& file, const SampleSize& sampleSize)
{
    const bool isNew = !QFileInfo::exists(file);
    if (isNew && !QDir().mkpath(QFileInfo(file).absolutePath())) {
        return {utils::EErrorCode::StorageFailure, "无法创建数据目录：" + QFileInfo(file).absolutePath().toStdString()};
    }
    utils::NVError error;
    service::StorePtr store = service::Store::open(service::StoreOptions::forCreating(file), error);
    if (!store) {
        return error;
    }
    if (isNew) {
        service::SampleOptions sample;
        sample.groups = sampleSize.groups;
        sample.accounts = sampleSize.accounts;
        error = service::generateSampleData(*store, sample);
        if (!error.isSuccess()) {
            store.reset();
            removeDatabase(file);
            return error;
        }
    }
    const auto engines = service::DataEngine::openAll(store, error);
    if (!error.isSuccess()) {
        return error;
    }
    for (const service::DataEnginePtr& engine : engines) {
        error = add(engine->serverName(), engine->systemTag(), boost::make_shared<CEmbeddedTransport>(engine));
        if (!error.isSuccess()) {
            return error;
        }
    }
    if (engines.empty()) {
        return {utils::EErrorCode::NotFound, "数据库中没有分系统：" + file.toStdString()};
    }
    return {};
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
    utils::NVError error = centre().addServer(name, systemTag, std::move(transport));
    if (error.isSuccess()) {
        m_servers.push_back(name);
    }
    return error;
}

} // namespace workbench
