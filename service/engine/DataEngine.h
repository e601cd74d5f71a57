// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/ChangeFeed.h"
#include "service/engine/RefusedAttempts.h"
#include "service/engine/RequestContext.h"
#include "service/engine/Session.h"

#include <nvservice/Bson.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/IData.h>
#include <utils/NVError.h>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace service
{

struct LogInReply {
    utils::NVError error;
    SessionPtr session;                           ///< null unless the log-in succeeded
    boost::shared_ptr<nvservice::CUserInfo> user; ///< rights, institution, system tag; null unless it succeeded
};

struct Reply {
    utils::NVError error;
    std::vector<nvservice::IDataPtr> records; ///< with the system tag, nested records too; nobody else holds them
    int totalCount = 0;
    bson::BSONObj document; ///< of a query: the cursor `next` if there is another page; otherwise empty
    std::int64_t newId = 0; ///< of the record that an operation has added, also in a repeated answer; 0 otherwise
};

/// Carries out the requests to one server: rights, institution scope, rules, revisions, audit.
///
/// Synchronous and thread-safe. Functions wait for the database, so do not call them on a thread that must not wait.
/// Several engines may share one store. Texts of errors are for the user.
class DataEngine : private boost::noncopyable
{
public:
    DataEngine(StorePtr store, SubSystem subSystem, RefusedAttempts::Limits refusals = {});

    /// One engine for each server of the store, in the order of their ids.
    static std::vector<boost::shared_ptr<DataEngine>> openAll(const StorePtr& store, utils::NVError& error);
    /// The same; throws `StoreError`.
    static std::vector<boost::shared_ptr<DataEngine>> openAll(const StorePtr& store);

    const std::string& serverName() const { return m_server.name; }
    const std::string& systemTag() const { return m_server.systemTag; }

    /// A wrong password, an unknown user and a disabled user get the same error (`NotLoggedIn`), text and delay. The
    /// process checks at most four passwords at a time (each takes 64 MB for a moment); further ones wait.
    LogInReply logIn(const std::string& user, const std::string& password);

    /// A user who is bound to an institution gets only the records of that institution. A user gets only accounts of
    /// types that the user has the right to; in a group, stand-ins replace the others (`accountShownTo`). A risk
    /// configuration needs the right 10719 (`PermissionDenied`). Every record carries the system tag.
    ///
    /// | code  | records                         | `queryKey`                                                        |
    /// |-------|---------------------------------|-------------------------------------------------------------------|
    /// | 625   | `CAccountGroup`                 | empty: all; decimal id: that group                                |
    /// | 7131  | one `CAccountGroupRCConfig`     | decimal group id. `NotFound`, `OutOfScope` instead of nothing     |
    /// | 12203 | `CKolmAccountInfo`              | ignored                                                           |
    /// | 12224 | `CKolmProductsResp`, at least 1 | ignored                                                           |
    /// | 614   | `CCategoryInfo`, of every right | empty or "-1_-1": all                                             |
    /// | 12231 | `CInstitutionInfo`              | empty: all                                                        |
    /// | 12237 | `CSecurityInfo`                 | empty: all; decimal `EZvTraderType`: what that trade type trades  |
    /// | 90001 to 90005                          | conditions; see nvservice/DataType.h                              |
    ///
    /// Audit and findings need the right 10723. Lists of those come in pages: the document of the reply has the cursor
    /// `next`. What is past belongs to the institution of its moment.
    ///
    /// Products come in one record unless they have more than 10 000 accounts together, because one record of all could
    /// be too large to be sent. Any other code is `Unsupported`, any other key `InvalidValue`.
    ///
    /// @param isUnwanted  asked now and then, on the calling thread: true ends a long query with `Cancelled`
    Reply query(const SessionPtr& session, const nvservice::CKolmQueryDataReq& request,
                const std::function<bool()>& isUnwanted = {});

    /// Adds, modifies and deletes account groups (625), modifies a risk configuration (7131), modifies and deletes the
    /// e-mail rules of a group (23460), restores past states of a group (90005); any other code or operation is
    /// `Unsupported`. Data, revision, history, audit
    /// and operation id are stored in one transaction; after an error nothing of the change is stored. A refusal is
    /// audited under the key of this server, also that of a user who was disabled meanwhile. If there are many refusals
    /// in a short time, the later ones are only counted (`RefusedAttempts`) and their operation ids are not stored. A
    /// request that the same user repeats with the same operation id gets the first answer and changes nothing; an
    /// empty operation id gives no such protection. A failed reply always has a text, a successful one never.
    ///
    /// Errors: `NotLoggedIn`, `PermissionDenied` (right 10717 add and modify, 10721 delete, 10719 risk settings; the
    /// right to the type of an account that is added to or removed from a group; the right to the system type of a
    /// category that is new in a configuration), `OutOfScope` (institution of the user, other server), `InvalidValue`,
    /// `Duplicate` (name), `NotFound` (the group was deleted), `Conflict` (changed since it was read; the text says by
    /// whom and when), `Malformed`, `ResourceExhausted`, `StorageFailure`.
    Reply operate(const SessionPtr& session, const nvservice::COperateDataReq& request);

    /// See `readChanges` and `Store::watchCommits`; UnreadChanges holds what a session may hear of. Throws
    /// `StoreError`.
    ChangeBatch readChanges(const std::optional<ChangePosition>& from, const ChangeLimit& limit = {}) const;
    [[nodiscard]] std::shared_ptr<void> watchCommits(std::function<void()> committed) const;

private:
    /// An operation. It may be carried out again after a lost connection.
    struct Attempt {
        const SessionPtr& session;
        const nvservice::COperateDataReq& request;
        AuditRow row;
        std::optional<RefusedAttempts::EShare> share; ///< of the audit, once it was refused
    };

    /// The user of the session, even if the user was disabled meanwhile. Throws `Refusal` (NotLoggedIn).
    StoredUser requireKnownUser(Connection& connection, const SessionPtr& session) const;
    Reply operateInTransaction(Connection& connection, Attempt& attempt);
    Reply carryOut(const RequestContext& context, Attempt& attempt);
    bool writeAudit(const std::vector<AuditRow>& rows) const;

    StorePtr m_store;
    SubSystem m_server;
    RefusedAttempts m_refused;
};

using DataEnginePtr = boost::shared_ptr<DataEngine>;

} // namespace service
