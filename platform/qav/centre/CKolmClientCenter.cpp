// SPDX-License-Identifier: Apache-2.0
#include <QAV/CKolmClientCenter.h>

#include "centre/CClientCore.h"
#include "centre/CMergedReply.h"
#include "centre/ReplyCallbacks.h"

#include <utils/CSingletonTImpl.h>
#include <utils/Translation.h>

#include <boost/make_shared.hpp>

#include <utility>

template class QAV_EXPORT utils::CSingletonT<QAV::CKolmClientCenter>;

namespace QAV
{

CKolmClientCenter::CKolmClientCenter() : m_core(std::make_shared<CClientCore>()) {}

CKolmClientCenter::~CKolmClientCenter()
{
    m_core->stop();
}

void CKolmClientCenter::queryData_async(const boost::shared_ptr<nvservice::CKolmQueryDataReq>& request,
                                        const QueryCallback& callback, unsigned char)
{
    if (!request) {
        m_core->refuse(utils::EErrorCode::InvalidValue, utils::text("QAV", "查询请求为空"), answerTo(callback));
        return;
    }
    const std::vector<CClientCore::EntryPtr> servers = m_core->servers();
    if (servers.empty()) {
        m_core->refuse(utils::EErrorCode::NotConnected, utils::text("QAV", "没有已连接的分系统"), answerTo(callback));
        return;
    }
    std::vector<std::string> names;
    names.reserve(servers.size());
    for (const CClientCore::EntryPtr& server : servers) {
        names.push_back(server->name);
    }
    const auto merged = std::make_shared<CMergedReply>(std::move(names), answerTo(callback));
    const auto call = [copy = *request](ITransport& transport, ITransport::ReplyHandler handler) {
        return transport.query(copy, std::move(handler));
    };
    for (std::size_t i = 0; i < servers.size(); ++i) {
        m_core->send(
            servers[i], {false, request->dataType}, call,
            [merged, i](ITransport::Reply reply, bool namesServer) { merged->take(i, std::move(reply), namesServer); });
    }
}

boost::shared_ptr<CKolmClient> CKolmClientCenter::getClientByName(std::string serverName) const
{
    CClientCore::EntryPtr server = m_core->byName(serverName);
    if (!server) {
        server = std::make_shared<ServerEntry>();
        server->name = std::move(serverName);
    }
    return boost::make_shared<CKolmClient>(m_core, server);
}

boost::shared_ptr<CKolmClient> CKolmClientCenter::getClientBySystemTag(std::string systemTag) const
{
    CClientCore::EntryPtr server = m_core->bySystemTag(systemTag);
    return boost::make_shared<CKolmClient>(m_core, server ? server : std::make_shared<ServerEntry>());
}

std::string CKolmClientCenter::getServerNameBySystemTag(std::string systemTag) const
{
    const CClientCore::EntryPtr server = m_core->bySystemTag(systemTag);
    return server ? server->name : std::string();
}

std::string CKolmClientCenter::getSystemTagByServerName(std::string serverName) const
{
    const CClientCore::EntryPtr server = m_core->byName(serverName);
    return server ? server->systemTag : std::string();
}

void CKolmClientCenter::setCurrentServer(const std::string& serverName)
{
    m_core->setCurrentServer(serverName);
}

bool CKolmClientCenter::isMultiServers() const
{
    return m_core->servers().size() > 1;
}

std::map<std::string, boost::shared_ptr<CKolmClient>> CKolmClientCenter::getAllClients() const
{
    std::map<std::string, boost::shared_ptr<CKolmClient>> clients;
    for (const CClientCore::EntryPtr& server : m_core->servers()) {
        clients.emplace(server->name, boost::make_shared<CKolmClient>(m_core, server));
    }
    return clients;
}

utils::NVError CKolmClientCenter::addServer(const std::string& name, const std::string& systemTag,
                                            boost::shared_ptr<ITransport> transport)
{
    return m_core->addServer(name, systemTag, std::move(transport));
}

void CKolmClientCenter::removeServer(const std::string& name)
{
    m_core->removeServer(name);
}

void CKolmClientCenter::cancelRequests()
{
    m_core->cancelRequests();
}

std::vector<CKolmClientCenter::RequestUnderWay> CKolmClientCenter::requestsUnderWay() const
{
    return m_core->requestsUnderWay();
}

void CKolmClientCenter::cancelRequest(std::uint64_t number)
{
    m_core->cancelRequest(number);
}

void CKolmClientCenter::shutDown()
{
    m_core->shutDown();
}

void CKolmClientCenter::setDeadline(std::chrono::milliseconds deadline)
{
    m_core->setDeadline(deadline);
}

void CKolmClientCenter::setDeadline(const std::string& serverName, std::chrono::milliseconds deadline)
{
    m_core->setDeadline(serverName, deadline);
}

CKolmClientCenter::StateSubscription CKolmClientCenter::listenToStates(StateCallback callback)
{
    return m_core->listenToStates(std::move(callback));
}

CKolmClientCenter::ChangeSubscription CKolmClientCenter::listenToChanges(ChangeCallback callback)
{
    return m_core->listenToChanges(std::move(callback));
}

bool CKolmClientCenter::isOwnChange(const nvservice::CChangeInfo& change) const
{
    return m_core->ownOperations().contains(change.operationId);
}

} // namespace QAV
