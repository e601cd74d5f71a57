// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Groups.h"

#include <string>

namespace service
{

/// The right that reading and choosing accounts of a type needs.
struct AccountRight {
    nvservice::EZVBrokerType type;
    int right;
    const char* key; ///< for command lines and files
};
/// Types that are not among them need none.
const std::vector<AccountRight>& accountRights();
/// "期货账号", as messages call it.
std::string nameOfAccountType(nvservice::EZVBrokerType type);
bool mayRead(const StoredUser& user, nvservice::EZVBrokerType type);
/// The accounts of the user's institution whose types the user may read.
std::vector<StoredAccount> readableAccounts(const RequestContext& context);

/// What the user gets of an account in a group: the account, or a stand-in when its type may not be read. A stand-in
/// counts as an account and keeps its place when the group is saved, but tells only type and server. Its account id is
/// "无权查看#" and the number of the account's row.
boost::shared_ptr<nvservice::CAccountInfo> accountShownTo(const StoredUser& user, std::int64_t row,
                                                          const boost::shared_ptr<nvservice::CAccountInfo>& account);
/// No account may be called like a stand-in.
bool isStandInId(const std::string& accountId);
/// The sent group with the members of the stored one in place of their stand-ins.
nvservice::CAccountGroup withoutStandIns(const nvservice::CAccountGroup& sent, const StoredGroup& stored);

} // namespace service
