// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataEngine.h"

#include "platform/wire/Protocol.h"
#include "service/engine/Password.h"
#include "service/engine/Refusal.h"
#include "service/engine/Requests.h"

#include <utils/Translation.h>

#include <QCryptographicHash>
#include <QDateTime>

namespace service
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

constexpr std::size_t MaxLogInBytes = 256;

std::string digestOf(const nvservice::COperateDataReq& request, const bson::BSONObj& document)
{
    const std::int32_t head[] = {request.dataType, static_cast<std::int32_t>(request.operation)};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(reinterpret_cast<const char*>(head), sizeof head);
    hash.addData(document.objdata(), document.objsize());
    return hash.result().toHex().toStdString();
}

Reply answered(const NVError& outcome, std::int64_t newId)
{
    Reply reply;
    reply.error = outcome;
    reply.newId = newId;
    return reply;
}

Reply failed(const NVError& error)
{
    return answered(error, 0);
}

bson::BSONObj cursorDocument(const std::string& next)
{
    bson::BSONObjBuilder document;
    document.append("next", next);
    return document.obj();
}

void requireLoggedIn(const StoredUser& user, const Session& session)
{
    if (!user.enabled || user.passwordHash != session.passwordHash()) {
        throw Refusal(EErrorCode::NotLoggedIn, utils::text("wire", wire::NotLoggedInText));
    }
}

} // namespace

DataEngine::DataEngine(StorePtr store, SubSystem subSystem, RefusedAttempts::Limits refusals)
    : m_store(std::move(store)), m_server(std::move(subSystem)),
      m_refused([this](const std::vector<AuditRow>& rows) { return writeAudit(rows); }, refusals)
{
}

std::vector<boost::shared_ptr<DataEngine>> DataEngine::openAll(const StorePtr& store)
{
    std::vector<boost::shared_ptr<DataEngine>> engines;
    for (SubSystem& server : store->subSystems()) {
        engines.push_back(boost::make_shared<DataEngine>(store, std::move(server)));
    }
    return engines;
}

std::vector<boost::shared_ptr<DataEngine>> DataEngine::openAll(const StorePtr& store, NVError& error)
{
    try {
        error = NVError();
        return openAll(store);
    } catch (const StoreError& failure) {
        error = failure.fullError();
        return {};
    }
}

LogInReply DataEngine::logIn(const std::string& user, const std::string& password)
{
    LogInReply reply;
    std::optional<StoredUser> stored;
    bool isRight = false;
    try {
        if (user.size() <= MaxLogInBytes && user.find('\0') == std::string::npos) {
            m_store->read([&](Connection& connection) { stored = findUser({connection, m_server}, user); });
        }
        isRight = verifyPassword(stored ? stored->passwordHash : std::string(), password);
    } catch (const std::exception& failure) {
        reply.error = m_store->errorForClient(failure);
        return reply;
    }
    if (!isRight || !stored->enabled) {
        reply.error = NVError(EErrorCode::NotLoggedIn, utils::text("service", "用户名或密码错误"));
        return reply;
    }
    reply.session = boost::make_shared<Session>(*stored, m_server.id);
    reply.user = boost::make_shared<nvservice::CUserInfo>();
    reply.user->userId = stored->login;
    reply.user->userName = stored->displayName;
    if (stored->institution) {
        reply.user->institutionId = static_cast<std::int32_t>(*stored->institution);
    }
    reply.user->rights = stored->rights;
    reply.user->setSystemTag(m_server.systemTag);
    return reply;
}

Reply DataEngine::query(const SessionPtr& session, const nvservice::CKolmQueryDataReq& request,
                        const std::function<bool()>& isUnwanted)
{
    try {
        Reply reply;
        m_store->read([&](Connection& connection) {
            const StoredUser user = requireKnownUser(connection, session);
            requireLoggedIn(user, *session);
            RequestContext context{{connection, m_server}, user};
            context.isUnwanted = isUnwanted;
            QueryAnswer answer = answerQuery(context, request);
            reply.records = std::move(answer.records);
            reply.totalCount = static_cast<int>(reply.records.size());
            reply.document = answer.next.empty() ? bson::BSONObj() : cursorDocument(answer.next);
        });
        return reply;
    } catch (const Refusal& refusal) {
        return failed(refusal.error());
    } catch (const std::exception& failure) {
        return failed(m_store->errorForClient(failure));
    }
}

Reply DataEngine::operate(const SessionPtr& session, const nvservice::COperateDataReq& request)
{
    Reply reply;
    Attempt attempt{session, request, {}, {}};
    WriteJob job;
    job.server = m_server.id;
    job.isRepeatable = !request.operationId.empty();
    job.work = [&](Connection& connection) {
        try {
            reply = operateInTransaction(connection, attempt);
        } catch (const Refusal& refusal) {
            reply = failed(refusal.error());
        }
    };
    const NVError failure = m_store->write(job);
    if (!failure.isSuccess()) {
        return failed(failure);
    }
    if (attempt.share == RefusedAttempts::EShare::Nothing) {
        m_refused.count(attempt.row);
    }
    return reply;
}

ChangeBatch DataEngine::readChanges(const std::optional<ChangePosition>& from, const ChangeLimit& limit) const
{
    ChangeBatch batch;
    m_store->read([&](Connection& connection) { batch = service::readChanges({connection, m_server}, from, limit); });
    return batch;
}

std::shared_ptr<void> DataEngine::watchCommits(std::function<void()> committed) const
{
    return m_store->watchCommits(std::move(committed));
}

StoredUser DataEngine::requireKnownUser(Connection& connection, const SessionPtr& session) const
{
    if (session && session->server() == m_server.id) {
        std::optional<StoredUser> user = findUser({connection, m_server}, session->userRow());
        if (user) {
            return std::move(*user);
        }
    }
    throw Refusal(EErrorCode::NotLoggedIn, utils::text("wire", wire::NotLoggedInText));
}

Reply DataEngine::operateInTransaction(Connection& connection, Attempt& attempt)
{
    const StoredUser user = requireKnownUser(connection, attempt.session);
    AuditRow& row = attempt.row;
    row = AuditRow();
    row.at = QDateTime::currentMSecsSinceEpoch();
    row.login = user.login;
    row.operation = static_cast<int>(attempt.request.operation);
    row.dataType = attempt.request.dataType;
    row.recordKey = attemptKey(m_server, attempt.request);
    return carryOut({{connection, m_server}, user, row.at, attempt.session->id()}, attempt);
}

Reply DataEngine::carryOut(const RequestContext& context, Attempt& attempt)
{
    const nvservice::COperateDataReq& request = attempt.request;
    AuditRow& row = attempt.row;
    bool isNew = !request.operationId.empty();
    std::string digest;
    std::int64_t newId = 0;
    std::vector<AuditRow> further;
    try {
        requireLoggedIn(context.user, *attempt.session);
        row.after = checkRequest(request);
        row.operationId = request.operationId;
        digest = digestOf(request, row.after);
        if (isNew) {
            const auto logged = findOperation(context, context.user.login, request.operationId);
            if (logged && logged->digest == digest) {
                context.connection.requireDurableReads();
                return answered(logged->outcome, logged->newId);
            }
            isNew = !logged;
            if (logged) {
                throw Refusal(EErrorCode::InvalidValue, utils::text("service", "操作编号已用于其他操作"));
            }
        }
        const AppliedChange change = applyOperation(context, request.dataType, request.operation, *request.data);
        for (const AppliedChange& each : change.more) {
            further.push_back(auditRowOf(row, each));
        }
        row = auditRowOf(row, change);
        newId = change.newId;
    } catch (const Refusal& refusal) {
        context.connection.undoOperation();
        row.outcome = refusal.error();
        if (!attempt.share) {
            attempt.share = m_refused.take(row);
        }
        if (attempt.share == RefusedAttempts::EShare::Nothing) {
            return failed(row.outcome);
        }
        if (attempt.share == RefusedAttempts::EShare::RowWithoutBody) {
            row.after = bson::BSONObj();
        }
    }
    insertAudit(context, row);
    for (const AuditRow& each : further) {
        insertAudit(context, each);
    }
    if (isNew && !digest.empty()) {
        insertOperation(context, context.user.login, request.operationId, {digest, row.outcome, newId}, row.at);
    }
    return answered(row.outcome, newId);
}

bool DataEngine::writeAudit(const std::vector<AuditRow>& rows) const
{
    WriteJob job;
    job.server = m_server.id;
    job.work = [&](Connection& connection) {
        for (const AuditRow& row : rows) {
            insertAudit({connection, m_server}, row);
        }
    };
    return m_store->write(job).isSuccess();
}

} // namespace service
