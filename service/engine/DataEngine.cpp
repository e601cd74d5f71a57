// SPDX-License-Identifier: Apache-2.0
#include "service/engine/DataEngine.h"

#include "platform/wire/Protocol.h"
#include "service/engine/Password.h"
#include "service/engine/Refusal.h"
#include "service/engine/RefusedAttempts.h"
#include "service/engine/Requests.h"
#include "service/store/Journal.h"
#include "service/store/Users.h"

#include <QCryptographicHash>
#include <QDateTime>

namespace service
{

namespace
{

using utils::EErrorCode;
using utils::NVError;

constexpr std::size_t MaxLogInBytes = 256;

std::int64_t millisecondsNow()
{
    return QDateTime::currentMSecsSinceEpoch();
}

std::string digestOf(const nvservice::COperateDataReq& request, const bson::BSONObj& document)
{
    const std::int32_t head[] = {request.dataType, static_cast<std::int32_t>(request.operation)};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(reinterpret_cast<const char*>(head), sizeof head);
    hash.addData(document.objdata(), document.objsize());
    return hash.result().toHex().toStdString();
}

Reply answered(NVError outcome, std::int64_t newId)
{
    Reply reply;
    reply.error = std::move(outcome);
    reply.newId = newId;
    return reply;
}

Reply failed(NVError error)
{
    return answered(std::move(error), 0);
}

} // namespace

struct DataEngine::Private {
    /// An operation, which may be carried out anew after a lost connection.
    struct Attempt {
        const SessionPtr& session;
        const nvservice::COperateDataReq& request;
        AuditRow row;
        std::optional<RefusedAttempts::EShare> share; ///< of the audit, once it was refused
    };

    Private(StorePtr theStore, SubSystem subSystem, RefusedAttempts::Limits refusals)
        : store(std::move(theStore)), server(std::move(subSystem)),
          refused([this](const std::vector<AuditRow>& rows) { return writeAudit(rows); }, refusals)
    {
    }

    /// Whose session it is, although the user may have been disabled since.
    StoredUser requireKnownUser(Connection& connection, const SessionPtr& session) const;
    static void requireLoggedIn(const StoredUser& user, const Session& session);

    Reply operateInTransaction(Connection& connection, Attempt& attempt);
    Reply carryOut(const RequestContext& context, Attempt& attempt);
    bool writeAudit(const std::vector<AuditRow>& rows) const;

    StorePtr store;
    SubSystem server;
    RefusedAttempts refused;
};

DataEngine::DataEngine(StorePtr store, SubSystem subSystem, RefusedAttempts::Limits refusals)
    : m_d(new Private(std::move(store), std::move(subSystem), refusals))
{
}

DataEngine::~DataEngine() = default;

std::vector<boost::shared_ptr<DataEngine>> DataEngine::openAll(const StorePtr& store, NVError& error)
{
    std::vector<boost::shared_ptr<DataEngine>> engines;
    for (SubSystem& server : store->subSystems(error)) {
        engines.push_back(boost::make_shared<DataEngine>(store, std::move(server)));
    }
    return engines;
}

const std::string& DataEngine::serverName() const
{
    return m_d->server.name;
}

const std::string& DataEngine::systemTag() const
{
    return m_d->server.systemTag;
}

LogInReply DataEngine::logIn(const std::string& user, const std::string& password)
{
    LogInReply reply;
    std::optional<StoredUser> stored;
    bool isRight = false;
    try {
        if (user.size() <= MaxLogInBytes && user.find('\0') == std::string::npos) {
            m_d->store->read([&](Connection& connection) { stored = findUser(connection, m_d->server, user); });
        }
        isRight = verifyPassword(stored ? stored->passwordHash : std::string(), password);
    } catch (const std::exception& failure) {
        reply.error = m_d->store->errorForClient(failure);
        return reply;
    }
    if (!isRight || !stored->enabled) {
        reply.error = NVError(EErrorCode::NotLoggedIn, "用户名或密码错误");
        return reply;
    }
    reply.session = boost::make_shared<Session>(*stored, m_d->server.id);
    reply.user = boost::make_shared<nvservice::CUserInfo>();
    reply.user->userId = stored->login;
    reply.user->userName = stored->displayName;
    if (stored->institution) {
        reply.user->institutionId = static_cast<std::int32_t>(*stored->institution);
    }
    reply.user->rights = stored->rights;
    reply.user->setSystemTag(m_d->server.systemTag);
    return reply;
}

Reply DataEngine::query(const SessionPtr& session, const nvservice::CKolmQueryDataReq& request)
{
    try {
        Reply reply;
        m_d->store->read([&](Connection& connection) {
            const StoredUser user = m_d->requireKnownUser(connection, session);
            m_d->requireLoggedIn(user, *session);
            reply.records = answerQuery({connection, m_d->server, user}, request);
            reply.totalCount = static_cast<int>(reply.records.size());
        });
        return reply;
    } catch (const Refusal& refusal) {
        return failed(refusal.error());
    } catch (const std::exception& failure) {
        return failed(m_d->store->errorForClient(failure));
    }
}

Reply DataEngine::operate(const SessionPtr& session, const nvservice::COperateDataReq& request)
{
    Reply reply;
    Private::Attempt attempt{session, request, {}, {}};
    WriteJob job;
    job.server = m_d->server.id;
    job.isRepeatable = !request.operationId.empty();
    job.work = [&](Connection& connection) {
        try {
            reply = m_d->operateInTransaction(connection, attempt);
        } catch (const Refusal& refusal) {
            reply = failed(refusal.error());
        }
    };
    const NVError failure = m_d->store->write(job);
    if (!failure.isSuccess()) {
        return failed(failure);
    }
    if (attempt.share == RefusedAttempts::EShare::Nothing) {
        m_d->refused.count(attempt.row);
    }
    return reply;
}

StoredUser DataEngine::Private::requireKnownUser(Connection& connection, const SessionPtr& session) const
{
    if (session && session->server() == server.id) {
        std::optional<StoredUser> user = findUser(connection, server, session->userRow());
        if (user) {
            return std::move(*user);
        }
    }
    throw Refusal(EErrorCode::NotLoggedIn, wire::NotLoggedInText);
}

void DataEngine::Private::requireLoggedIn(const StoredUser& user, const Session& session)
{
    if (!user.enabled || user.passwordHash != session.passwordHash()) {
        throw Refusal(EErrorCode::NotLoggedIn, wire::NotLoggedInText);
    }
}

Reply DataEngine::Private::operateInTransaction(Connection& connection, Attempt& attempt)
{
    const StoredUser user = requireKnownUser(connection, attempt.session);
    AuditRow& row = attempt.row;
    row = AuditRow();
    row.at = millisecondsNow();
    row.login = user.login;
    row.operation = static_cast<int>(attempt.request.operation);
    row.dataType = attempt.request.dataType;
    row.recordKey = attemptKey(server, attempt.request);
    return carryOut({connection, server, user, row.at, attempt.session->id()}, attempt);
}

Reply DataEngine::Private::carryOut(const RequestContext& context, Attempt& attempt)
{
    const nvservice::COperateDataReq& request = attempt.request;
    AuditRow& row = attempt.row;
    bool isNew = !request.operationId.empty();
    std::string digest;
    std::int64_t newId = 0;
    try {
        requireLoggedIn(context.user, *attempt.session);
        row.after = checkRequest(request);
        row.operationId = request.operationId;
        digest = digestOf(request, row.after);
        if (isNew) {
            const auto logged = findOperation(context.connection, server, context.user.login, request.operationId);
            if (logged && logged->digest == digest) {
                context.connection.confirmWhatIsRead();
                return answered(logged->outcome, logged->newId);
            }
            isNew = !logged;
            if (logged) {
                throw Refusal(EErrorCode::InvalidValue, "操作编号已用于其他操作");
            }
        }
        AppliedChange change = applyOperation(context, request.dataType, request.operation, *request.data);
        row.recordKey = std::move(change.recordKey);
        row.before = change.before;
        row.after = change.after;
        newId = change.newId;
    } catch (const Refusal& refusal) {
        context.connection.undoOperation();
        row.outcome = refusal.error();
        if (!attempt.share) {
            attempt.share = refused.take(row);
        }
        if (attempt.share == RefusedAttempts::EShare::Nothing) {
            return failed(row.outcome);
        }
        if (attempt.share == RefusedAttempts::EShare::RowWithoutBody) {
            row.after = bson::BSONObj();
        }
    }
    AuditWriter(context.connection, server).insert(row);
    if (isNew && !digest.empty()) {
        insertOperation(context.connection, server, context.user.login, request.operationId,
                        {digest, row.outcome, newId}, row.at);
    }
    return answered(row.outcome, newId);
}

bool DataEngine::Private::writeAudit(const std::vector<AuditRow>& rows) const
{
    WriteJob job;
    job.server = server.id;
    job.work = [&](Connection& connection) {
        AuditWriter writer(connection, server);
        for (const AuditRow& row : rows) {
            writer.insert(row);
        }
    };
    return store->write(job).isSuccess();
}

} // namespace service
