// SPDX-License-Identifier: Apache-2.0
#include <QAV/CKolmClient.h>
#include <utils/Translation.h>

#include "centre/CClientCore.h"
#include "centre/ReplyCallbacks.h"

#include <QUuid>

#include <utility>

namespace QAV
{

CKolmClient::CKolmClient(std::shared_ptr<CClientCore> core, std::shared_ptr<ServerEntry> server)
    : m_core(std::move(core)), m_server(std::move(server))
{
}

CKolmClient::~CKolmClient() = default;

void CKolmClient::queryData_async(const boost::shared_ptr<nvservice::CKolmQueryDataReq>& request,
                                  const QueryCallback& callback, unsigned char)
{
    if (!request) {
        m_core->refuse(utils::EErrorCode::InvalidValue, utils::text("QAV", "查询请求为空"), answerTo(callback));
        return;
    }
    m_core->send(
        m_server, {false, request->dataType},
        [copy = *request](ITransport& transport, ITransport::ReplyHandler handler) {
            return transport.query(copy, std::move(handler));
        },
        answerTo(callback));
}

void CKolmClient::operateData_async(const boost::shared_ptr<nvservice::COperateDataReq>& request,
                                    const OperateCallback& callback, unsigned char)
{
    if (!request || !request->data) {
        m_core->refuse(utils::EErrorCode::InvalidValue, utils::text("QAV", "操作请求没有记录"), answerTo(callback));
        return;
    }
    const auto copy = boost::static_pointer_cast<nvservice::COperateDataReq>(request->copy());
    if (copy->operationId.empty()) {
        copy->operationId = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
    }
    m_core->ownOperations().add(copy->operationId);
    m_core->send(
        m_server, {true, copy->dataType},
        [copy](ITransport& transport, ITransport::ReplyHandler handler) {
            return transport.operate(*copy, std::move(handler));
        },
        answerTo(callback));
}

void CKolmClient::logIn_async(const std::string& user, const std::string& password, const LogInCallback& callback)
{
    m_core->send(
        m_server, {},
        [user, password](ITransport& transport, ITransport::ReplyHandler handler) {
            return transport.logIn(user, password,
                                   [handler = std::move(handler)](const utils::NVError& error,
                                                                  const boost::shared_ptr<nvservice::CUserInfo>& info) {
                                       ITransport::Reply reply;
                                       reply.error = error;
                                       reply.records.push_back(info);
                                       handler(std::move(reply));
                                   });
        },
        answerTo(callback));
}

const std::string& CKolmClient::serverName() const
{
    return m_server->name;
}

const std::string& CKolmClient::systemTag() const
{
    return m_server->systemTag;
}

EConnectionState CKolmClient::state() const
{
    return m_core->stateOf(m_server);
}

std::string CKolmClient::stateReason() const
{
    return m_core->stateReasonOf(m_server);
}

} // namespace QAV
