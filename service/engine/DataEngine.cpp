#include "service/engine/DataEngine.h"
#include "service/engine/GroupOperations.h"
#include "service/engine/GroupRules.h"
#include "service/engine/Password.h"
#include "service/store/Groups.h"
#include "service/store/Journal.h"
#include "service/store/Users.h"

#include <nvservice/CKolmProductsResp.h>
#include <nvservice/Codec.h>
#include <nvservice/DataType.h>

#include <QCryptographicHash>
#include <QDateTime>

#include <limits>

namespace service
{

namespace
{

using nvservice::EZvDataOperation;
using utils::EErrorCode;
using utils::NVError;

constexpr std::size_t MaxOperationIdBytes = 128;
constexpr std::size_t MaxLogInBytes = 256;
// What was asked for in vain is kept up to this size, so that refused attempts can't fill the disk.
constexpr int MaxRefusedBodyBytes = 1024 * 1024;

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

/// The decimal id that a query key names; empty for every other text.
std::optional<std::int64_t> idOfKey(const std::string& key)
{
    bool isNumber = false;
    const qlonglong id = QString::fromStdString(key).toLongLong(&isNumber);
    return isNumber && std::to_string(id) == key ? std::optional<std::int64_t>(id) : std::nullopt;
}

/// Throws `Refusal` for a record that no document can hold.
bson::BSONObj encoded(const nvservice::CAccountGroup& group)
{
    const bson::BSONObj document = nvservice::encodeRecord(group);
    if (document.isEmpty())
        throw Refusal(EErrorCode::ResourceExhausted, "账号组数据过大，已被拒绝");
    return document;
}

Reply failed(NVError error)
{
    Reply reply;
    reply.error = std::move(error);
    return reply;
}

} // namespace

struct DataEngine::Private {
    StorePtr store;
    SubSystem server;

    StoredUser requireUser(Connection& connection, const SessionPtr& session) const
    {
        if (session && session->server() == server.id) {
            std::optional<StoredUser> user = findUser(connection, server, session->userRow());
            if (user && user->enabled)
                return std::move(*user);
        }
        throw Refusal(EErrorCode::NotLoggedIn, "您尚未登录或登录已失效，请重新登录");
    }

    Reply queryGroups(Connection& connection, const StoredUser& user, const std::string& key) const;
    Reply queryProducts(Connection& connection, const StoredUser& user) const;
    Reply queryAccounts(Connection& connection, const StoredUser& user) const;

    const nvservice::CAccountGroup& requireGroup(const nvservice::COperateDataReq& request) const;
    NVError operateInTransaction(Connection& connection, const SessionPtr& session,
                                 const nvservice::COperateDataReq& request) const;
};

DataEngine::DataEngine(StorePtr store, SubSystem subSystem) : d(new Private{std::move(store), std::move(subSystem)}) {}

DataEngine::~DataEngine() = default;

std::vector<boost::shared_ptr<DataEngine>> DataEngine::openAll(const StorePtr& store, NVError& error)
{
    std::vector<boost::shared_ptr<DataEngine>> engines;
    for (SubSystem& server : store->subSystems(error))
        engines.push_back(boost::make_shared<DataEngine>(store, std::move(server)));
    return engines;
}

const std::string& DataEngine::serverName() const
{
    return d->server.name;
}

const std::string& DataEngine::systemTag() const
{
    return d->server.systemTag;
}

LogInReply DataEngine::logIn(const std::string& user, const std::string& password)
{
    LogInReply reply;
    std::optional<StoredUser> stored;
    try {
        if (user.size() <= MaxLogInBytes)
            stored = findUser(d->store->connection(), d->server, user);
    } catch (const StoreError& failure) {
        reply.error = failure.error();
        return reply;
    }
    const bool isRight = verifyPassword(stored ? stored->passwordHash : std::string(), password);
    if (!isRight || !stored->enabled) {
        reply.error = NVError(EErrorCode::NotLoggedIn, "用户名或密码错误");
        return reply;
    }
    reply.session = boost::make_shared<Session>(stored->row, d->server.id, stored->login);
    reply.user = boost::make_shared<nvservice::CUserInfo>();
    reply.user->userId = stored->login;
    reply.user->userName = stored->displayName;
    if (stored->institution)
        reply.user->institutionId = static_cast<std::int32_t>(*stored->institution);
    reply.user->rights = stored->rights;
    reply.user->setSystemTag(d->server.systemTag);
    return reply;
}

Reply DataEngine::query(const SessionPtr& session, const nvservice::CKolmQueryDataReq& request)
{
    try {
        Connection& connection = d->store->connection();
        Transaction snapshot(connection, Transaction::EKind::Read);
        const StoredUser user = d->requireUser(connection, session);
        switch (request.dataType) {
        case nvservice::DataType::AccountGroup:
            return d->queryGroups(connection, user, request.queryKey);
        case nvservice::DataType::Product:
            return d->queryProducts(connection, user);
        case nvservice::DataType::Account:
            return d->queryAccounts(connection, user);
        default:
            return failed({EErrorCode::Unsupported, "数据服务不支持查询数据类型 " + std::to_string(request.dataType)});
        }
    } catch (const Refusal& refusal) {
        return failed(refusal.error());
    } catch (const StoreError& failure) {
        return failed(failure.error());
    } catch (const std::exception& failure) {
        return failed({EErrorCode::Failed, std::string("数据服务内部错误：") + failure.what()});
    }
}

Reply DataEngine::Private::queryGroups(Connection& connection, const StoredUser& user, const std::string& key) const
{
    Reply reply;
    if (!key.empty()) {
        const std::optional<std::int64_t> id = idOfKey(key);
        if (!id)
            throw Refusal(EErrorCode::InvalidValue, "账号组查询条件无效");
        const std::optional<StoredGroup> group = findGroup(connection, server, *id);
        if (group && (!user.institution || group->record->institutionId == *user.institution))
            reply.records.push_back(group->record);
    } else {
        const AccountsByRow accounts = accountsByRow(loadAccounts(connection, server, std::nullopt));
        const std::vector<GroupPtr> groups = loadGroups(connection, server, user.institution, accounts);
        reply.records.assign(groups.begin(), groups.end());
    }
    reply.totalCount = static_cast<int>(reply.records.size());
    return reply;
}

Reply DataEngine::Private::queryProducts(Connection& connection, const StoredUser& user) const
{
    const AccountsByRow accounts = accountsByRow(loadAccounts(connection, server, user.institution));
    auto list = boost::make_shared<nvservice::CKolmProductsResp>();
    const auto products = loadProducts(connection, server, user.institution, accounts);
    list->products.assign(products.begin(), products.end());
    list->setSystemTag(server.systemTag);
    Reply reply;
    reply.records.push_back(list);
    reply.totalCount = 1;
    return reply;
}

Reply DataEngine::Private::queryAccounts(Connection& connection, const StoredUser& user) const
{
    Reply reply;
    for (const StoredAccount& account : loadAccounts(connection, server, user.institution)) {
        auto record = boost::make_shared<nvservice::CKolmAccountInfo>();
        record->account = account.info;
        record->stateCode = account.stateCode;
        record->excluded = account.excluded;
        record->setSystemTag(server.systemTag);
        reply.records.push_back(record);
    }
    reply.totalCount = static_cast<int>(reply.records.size());
    return reply;
}

Reply DataEngine::operate(const SessionPtr& session, const nvservice::COperateDataReq& request)
{
    try {
        Connection& connection = d->store->connection();
        const std::lock_guard<std::mutex> turn(d->store->writeMutex());
        Transaction transaction(connection, Transaction::EKind::Write);
        const NVError outcome = d->operateInTransaction(connection, session, request);
        transaction.commit();
        return failed(outcome);
    } catch (const Refusal& refusal) {
        return failed(refusal.error());
    } catch (const StoreError& failure) {
        return failed(failure.error());
    } catch (const std::exception& failure) {
        return failed({EErrorCode::Failed, std::string("数据服务内部错误：") + failure.what()});
    }
}

const nvservice::CAccountGroup& DataEngine::Private::requireGroup(const nvservice::COperateDataReq& request) const
{
    if (request.operationId.size() > MaxOperationIdBytes)
        throw Refusal(EErrorCode::InvalidValue, "操作编号过长");
    if (request.dataType != nvservice::DataType::AccountGroup)
        throw Refusal(EErrorCode::Unsupported, "数据服务不支持修改数据类型 " + std::to_string(request.dataType));
    const auto* group = dynamic_cast<const nvservice::CAccountGroup*>(request.data.get());
    if (!group)
        throw Refusal(EErrorCode::Malformed, "请求中没有账号组数据");
    requireReasonableSize(*group);
    return *group;
}

NVError DataEngine::Private::operateInTransaction(Connection& connection, const SessionPtr& session,
                                                  const nvservice::COperateDataReq& request) const
{
    const StoredUser user = requireUser(connection, session);
    AuditRow row;
    row.at = millisecondsNow();
    row.login = user.login;
    row.operation = static_cast<int>(request.operation);
    row.dataType = request.dataType;
    bool isNew = !request.operationId.empty();
    std::string digest;
    connection.exec(QStringLiteral("SAVEPOINT operation"));
    try {
        const nvservice::CAccountGroup& group = requireGroup(request);
        row.operationId = request.operationId;
        row.recordKey = group.getKey();
        row.after = encoded(group);
        digest = digestOf(request, row.after);
        if (isNew) {
            const auto logged = findOperation(connection, server, user.login, request.operationId);
            if (logged && logged->digest == digest)
                return logged->outcome;
            isNew = !logged;
            if (logged)
                throw Refusal(EErrorCode::InvalidValue, "操作编号已用于其他操作");
        }
        AppliedChange change = applyGroupOperation(connection, server, user, request.operation, group, row.at);
        row.recordKey = std::move(change.recordKey);
        row.before = change.before;
        row.after = change.after;
    } catch (const Refusal& refusal) {
        connection.exec(QStringLiteral("ROLLBACK TO operation"));
        row.outcome = refusal.error();
        if (row.after.objsize() > MaxRefusedBodyBytes)
            row.after = bson::BSONObj();
    }
    connection.exec(QStringLiteral("RELEASE operation"));
    AuditWriter(connection, server).insert(row);
    if (isNew && !digest.empty())
        insertOperation(connection, server, user.login, request.operationId, {digest, row.outcome}, row.at);
    return row.outcome;
}

} // namespace service
