// SPDX-License-Identifier: Apache-2.0
#include "NetworkDesk.h"

#include "service/sampledata/SampleData.h"

#include <nvservice/DataType.h>

#include <future>
#include <stdexcept>
#include <utility>

namespace bench
{

void require(const utils::NVError& error)
{
    if (!error.isSuccess()) {
        throw std::runtime_error(error.errorMsg());
    }
}

void makeDatabase(const QString& file, int groups, int accounts)
{
    utils::NVError error;
    const service::StorePtr store = service::Store::open(service::StoreOptions::forCreating(file), error);
    require(error);
    service::SampleOptions sample;
    sample.servers = 1;
    sample.groups = groups;
    sample.accounts = accounts;
    require(service::generateSampleData(*store, sample));
}

service::DataEnginePtr openEngine(const QString& file)
{
    utils::NVError error;
    service::StoreOptions options;
    options.location = file;
    const service::StorePtr store = service::Store::open(options, error);
    require(error);
    const auto engines = service::DataEngine::openAll(store, error);
    require(error);
    return engines.at(0);
}

nvservice::CKolmQueryDataReq allGroups()
{
    nvservice::CKolmQueryDataReq request;
    request.dataType = nvservice::DataType::AccountGroup;
    return request;
}

NetworkDesk::NetworkDesk(const QString& file, support::TestCertificates& certificates)
{
    service::daemon::Configuration configuration = testservice::plainConfiguration(file, {});
    configuration.listen.front().plaintext = false;
    configuration.tls = {certificates.certificate(), certificates.key()};
    m_daemon = std::make_unique<testservice::DaemonThread>(configuration);
    require(m_daemon->startError());
    QAV::NetworkServer address;
    address.host = "127.0.0.1";
    address.port = static_cast<std::uint16_t>(m_daemon->port());
    address.caFile = certificates.authority().toStdString();
    m_transport = std::make_unique<QAV::CNetworkTransport>(address);
    std::promise<utils::NVError> promise;
    m_transport->logIn(User, Password, [&](const utils::NVError& error, const auto&) { promise.set_value(error); });
    require(promise.get_future().get());
}

std::vector<nvservice::IDataPtr> NetworkDesk::queryAllGroups()
{
    std::promise<QAV::ITransport::Reply> promise;
    m_transport->query(allGroups(), [&](QAV::ITransport::Reply reply) { promise.set_value(std::move(reply)); });
    QAV::ITransport::Reply reply = promise.get_future().get();
    require(reply.error);
    return std::move(reply.records);
}

} // namespace bench
