// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RefusedAttempts.h"
#include "service/engine/Session.h"
#include "service/store/Store.h"

#include <nvservice/Bson.h>
#include <nvservice/CKolmQueryDataReq.h>
#include <nvservice/COperateDataReq.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/IData.h>
#include <utils/NVError.h>

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>
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
    std::vector<nvservice::IDataPtr>
        records; ///< stamped with the system tag, nested records too; nobody else holds them
    int totalCount = 0;
    bson::BSONObj document; ///< empty on success
    std::int64_t newId = 0; ///< of the record that an operation has added, also when it is answered again; 0 otherwise
};

/// What a request to one sub-system means: rights, institution scope, rules, revisions, audit.
///
/// Synchronous; every operation may be called on any thread, several at once, but never on one that must not wait for
/// a disk. Several engines may share one store. Texts of errors are for the user.
class DataEngine : private boost::noncopyable
{
public:
    DataEngine(StorePtr store, SubSystem subSystem, RefusedAttempts::Limits refusals = {});
    ~DataEngine();

    /// One engine for each sub-system of the store, in the order of their ids.
    static std::vector<boost::shared_ptr<DataEngine>> openAll(const StorePtr& store, utils::NVError& error);

    const std::string& serverName() const;
    const std::string& systemTag() const;

    /// Wrong password, unknown and disabled user: `NotLoggedIn` with the same text after the same work. At most four
    /// log-ins of the process are checked at a time (each takes 64 MB for a moment); further ones wait.
    LogInReply logIn(const std::string& user, const std::string& password);

    /// A user who is bound to an institution gets that institution's records only, and of the accounts those whose
    /// types the user has the right to; in a group, the others are stand-ins (`accountShownTo`). A risk configuration
    /// needs the right 10719 (`PermissionDenied`). Every record carries the system tag.
    ///
    /// | code  | records                         | `queryKey`                                                        |
    /// |-------|---------------------------------|-------------------------------------------------------------------|
    /// | 625   | `CAccountGroup`                 | empty: all; decimal id: that group                                |
    /// | 7131  | one `CAccountGroupRCConfig`     | decimal group id. `NotFound`, `OutOfScope` instead of nothing     |
    /// | 12203 | `CKolmAccountInfo`              | not looked at                                                     |
    /// | 12224 | `CKolmProductsResp`, at least 1 | not looked at                                                     |
    /// | 614   | `CCategoryInfo`, of every right | empty or "-1_-1": all                                             |
    /// | 12231 | `CInstitutionInfo`              | empty: all                                                        |
    /// | 12237 | `CSecurityInfo`                 | empty: all; decimal `EZvTraderType`: what that trade type trades  |
    ///
    /// Products come in one record, unless they have more than 10 000 accounts together: one record of all could pass
    /// the size that can be sent. Any other code is `Unsupported`, any other key `InvalidValue`.
    Reply query(const SessionPtr& session, const nvservice::CKolmQueryDataReq& request);

    /// Add, modify, delete of account groups (625), modify of a risk configuration (7131), modify and delete of the
    /// e-mail rules of a group (23460); any other code or operation is `Unsupported`. Data, revision, history, audit
    /// and the operation id are one transaction; after an error nothing of the change is stored, and a refusal is
    /// audited, under the key of this server; also one to a user who was disabled meanwhile. Of many refusals in a
    /// short time the later ones are only counted (`RefusedAttempts`), and not remembered by their operation id. A
    /// request that comes again with the same operation id by the same user gets the first one's answer and changes
    /// nothing; an empty operation id asks for no such protection. A failed reply always has a text, a successful one
    /// never.
    ///
    /// Errors: `NotLoggedIn`, `PermissionDenied` (right 10717 add and modify, 10721 delete, 10719 risk settings; the
    /// right of the account type for an account that enters or leaves the group, of the system type for a category that
    /// enters a configuration), `OutOfScope` (institution of the user, other sub-system), `InvalidValue`, `Duplicate`
    /// (name), `NotFound` (group is gone), `Conflict` (changed since it was read: by whom and when), `Malformed`,
    /// `ResourceExhausted`, `StorageFailure`.
    Reply operate(const SessionPtr& session, const nvservice::COperateDataReq& request);

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

using DataEnginePtr = boost::shared_ptr<DataEngine>;

} // namespace service
