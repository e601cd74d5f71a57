// SPDX-License-Identifier: Apache-2.0
#include "history/Requests.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAuditEntry.h>
#include <nvservice/QueryCondition.h>

#include <boost/make_shared.hpp>

namespace QAV
{

namespace QueryCondition = nvservice::QueryCondition;

void sendQuery(const QString& serverName, std::int32_t dataType, const nvservice::CQueryKey& key,
               const QueryCallback& callback)
{
    const auto request = boost::make_shared<nvservice::CKolmQueryDataReq>();
    request->dataType = dataType;
    request->queryKey = key.text();
    utils::CSingletonT<CKolmClientCenter>::instance()
        ->getClientByName(WQ::qsToS(serverName))
        ->queryData_async(request, callback);
}

void cancelQueries(const QString& serverName, std::int32_t dataType)
{
    auto& centre = *utils::CSingletonT<CKolmClientCenter>::instance();
    const std::string server = centre.getClientByName(WQ::qsToS(serverName))->serverName();
    for (const CKolmClientCenter::RequestUnderWay& request : centre.requestsUnderWay()) {
        if (request.serverName == server && request.dataType == dataType && !request.isOperation) {
            centre.cancelRequest(request.number);
        }
    }
}

std::string nextCursor(const bson::BSONObj& document)
{
    return std::string(document.getField("next").str());
}

void CJointQuery::ask(const QString& serverName, const std::vector<QueryPart>& parts, Handler handler)
{
    ++m_number;
    m_answers.assign(parts.size(), {});
    m_open = parts.size();
    m_handler = std::move(handler);
    for (std::size_t index = 0; index < parts.size(); ++index) {
        send(serverName, index, parts[index]);
    }
}

void CJointQuery::send(const QString& serverName, std::size_t index, QueryPart part)
{
    const nvservice::CQueryKey key = part.key;
    const std::int32_t dataType = part.dataType;
    sendQuery(
        serverName, dataType, key,
        m_gate.queued(QueryCallback([this, number = m_number, serverName, index,
                                     part](const utils::NVError& error, const std::vector<nvservice::IDataPtr>& records,
                                           int, const bson::BSONObj& document) {
            if (number != m_number) {
                return;
            }
            if (part.entryId == 0 || !error.isSuccess()) {
                return take(index, {error, records});
            }
            for (const nvservice::IDataPtr& record : records) {
                const auto entry = boost::dynamic_pointer_cast<nvservice::CAuditEntry>(record);
                if (entry && entry->entryId == part.entryId) {
                    return take(index, {error, {record}});
                }
            }
            const std::string cursor = nextCursor(document);
            if (cursor.empty()) {
                return take(index, {});
            }
            QueryPart next = part;
            next.key.set(QueryCondition::Cursor, cursor);
            send(serverName, index, next);
        })));
}

void CJointQuery::take(std::size_t index, QueryAnswer answer)
{
    m_answers[index] = std::move(answer);
    if (--m_open == 0) {
        const Handler handler = m_handler;
        handler(m_answers);
    }
}

void CPagedQuery::start(const QString& serverName, std::int32_t dataType, const nvservice::CQueryKey& key)
{
    m_serverName = serverName;
    m_dataType = dataType;
    m_key = key;
    m_cursor.clear();
    send();
}

void CPagedQuery::more()
{
    if (m_state == HasMore || m_state == Failed) {
        send();
    }
}

void CPagedQuery::stop()
{
    ++m_number;
    m_state = Idle;
}

void CPagedQuery::send()
{
    nvservice::CQueryKey key = m_key;
    if (!m_cursor.empty()) {
        key.set(QueryCondition::Cursor, m_cursor);
    }
    const int number = ++m_number;
    m_state = Loading;
    sendQuery(m_serverName, m_dataType, key,
              m_gate.queued(QueryCallback([this, number](const utils::NVError& error,
                                                         const std::vector<nvservice::IDataPtr>& records, int,
                                                         const bson::BSONObj& document) {
                  if (number != m_number) {
                      return;
                  }
                  if (error.isSuccess()) {
                      m_cursor = nextCursor(document);
                      m_state = m_cursor.empty() ? Complete : HasMore;
                  } else {
                      m_state = Failed;
                  }
                  m_handler({error, records});
              })));
}

} // namespace QAV
