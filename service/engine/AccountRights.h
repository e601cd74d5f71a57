// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/RequestContext.h"
#include "service/store/Groups.h"

#include <string>

namespace service
{

/// The right to read and choose accounts of a type.
struct AccountRight {
    nvservice::EZVBrokerType type;
    int right;
    const char* key; ///< for command lines and files
};
/// Other types need no right.
const std::vector<AccountRight>& accountRights();
/// For messages: "期货账号".
std::string nameOfAccountType(nvservice::EZVBrokerType type);
/// The Chinese name, for files.
std::string wordOfAccountType(nvservice::EZVBrokerType type);
bool mayRead(const StoredUser& user, nvservice::EZVBrokerType type);
/// The accounts of the user's institution whose types the user may read.
std::vector<StoredAccount> readableAccounts(const RequestContext& context);

/// The account, or a stand-in if the user may not read its type. A stand-in keeps the account's place when the group is
/// saved, but shows only its type and server. Its account id is "无权查看#" and the account's row.
boost::shared_ptr<nvservice::CAccountInfo> accountShownTo(const StoredUser& user, std::int64_t row,
                                                          const boost::shared_ptr<nvservice::CAccountInfo>& account);
/// The stand-in for an account.
boost::shared_ptr<nvservice::CAccountInfo> standInFor(std::int64_t row, const nvservice::CAccountInfo& account);
/// True for the id of a stand-in, which no account may have.
bool isStandInId(const std::string& accountId);
/// The sent group, with the accounts of the stored one in place of their stand-ins.
nvservice::CAccountGroup withoutStandIns(const nvservice::CAccountGroup& sent, const StoredGroup& stored);

} // namespace service
