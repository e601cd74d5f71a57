// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupRules.h"
#include "service/engine/AccountRights.h"
#include "service/engine/GroupScope.h"
#include "service/engine/Objections.h"
#include "service/engine/TextRules.h"

#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/NoInstitutionId.h>
#include <nvservice/TypeManager.h>
#include <utils/Translation.h>

#include <QString>

#include <set>

namespace service
{

namespace
{

using nvservice::CAccountInfo;
using utils::EErrorCode;

constexpr std::size_t MaxTextBytes = 4096;
constexpr int MaxUnknownFieldBytes = 64 * 1024;

std::string accountText(const boost::shared_ptr<CAccountInfo>& account)
{
    return utils::filled(utils::text("service", "账号%1"), quoted(nvservice::accountDisplayID(account)));
}

/// The same for a member; only the type if the user may not read it.
std::string memberText(const StoredUser& user, const boost::shared_ptr<CAccountInfo>& account)
{
    return mayRead(user, account->brokerType) ? accountText(account) : nameOfAccountType(account->brokerType);
}

void requireOwnSystem(const SubSystem& server, const boost::shared_ptr<CAccountInfo>& account)
{
    if (!account->getSystemTag().empty() && account->getSystemTag() != server.systemTag) {
        throw Refusal(EErrorCode::OutOfScope,
                      utils::filled(utils::text("service", "%1不属于分系统“%2”"), accountText(account), server.name));
    }
}

void requireChoosable(const StoredAccount& account, EMemberProblem problem)
{
    if (problem == EMemberProblem::Closed) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "%1已销户，不能加入账号组"), accountText(account.info)));
    }
    if (problem == EMemberProblem::Excluded) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "%1不允许加入账号组"), accountText(account.info)));
    }
}

/// Check this first: the user must not learn anything about an unreadable account, not even whether it exists.
void requireReadable(const StoredUser& user, const boost::shared_ptr<CAccountInfo>& account)
{
    if (!mayRead(user, account->brokerType)) {
        throw Refusal(EErrorCode::PermissionDenied,
                      utils::filled(utils::text("service", "您没有%1的权限，不能添加%2"),
                                    nameOfAccountType(account->brokerType), accountText(account)));
    }
}

/// One account of the group. `present` has the rows of its members, `seen` those of the accounts before this one.
void requireValidAccount(const RequestContext& context, const nvservice::CAccountGroup& group, std::size_t position,
                         const std::optional<StoredAccount>& stored, const std::set<std::int64_t>& present,
                         std::set<std::int64_t>& seen)
{
    const auto& account = group.accounts[position];
    requireOwnSystem(context.server, account);
    const bool isMember = stored && present.count(stored->row) != 0;
    if (!isMember) {
        requireReadable(context.user, account);
    }
    if (!stored) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "%1不存在"), accountText(account)));
    }
    if (!seen.insert(stored->row).second) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "%1重复"), memberText(context.user, account)));
    }
    const EMemberProblem problem = memberProblem(*stored, group.institutionId);
    if (problem == EMemberProblem::OtherInstitution) {
        throw Refusal(EErrorCode::OutOfScope, utils::filled(utils::text("service", "%1不属于账号组的所属机构"),
                                                            memberText(context.user, account)));
    }
    if (!isMember) {
        requireChoosable(*stored, problem);
    }
}

} // namespace

void requireReasonableSize(const nvservice::CAccountGroup& group)
{
    const auto isLong = [](const std::string& text) { return text.size() > MaxTextBytes; };
    if (isLong(group.groupName) || isLong(group.institutionName) || isLong(group.getSystemTag()) ||
        group.unknownFields.objsize() > MaxUnknownFieldBytes) {
        throw Refusal(EErrorCode::ResourceExhausted, utils::text("service", "账号组数据过大，已被拒绝"));
    }
    if (group.accounts.size() > MaxGroupAccounts) {
        throw Refusal(EErrorCode::ResourceExhausted,
                      utils::filled(utils::text("service", "账号组最多包含%1个账号"), MaxGroupAccounts));
    }
    for (const auto& account : group.accounts) {
        if (!account) {
            throw Refusal(EErrorCode::Malformed, utils::text("service", "账号组数据不完整，已被拒绝"));
        }
        if (isLong(account->accountId) || isLong(account->unitId) || isLong(account->accountName) ||
            isLong(account->institutionName) || isLong(account->getSystemTag()) ||
            account->unknownFields.objsize() > MaxUnknownFieldBytes) {
            throw Refusal(EErrorCode::ResourceExhausted, utils::text("service", "账号数据过大，已被拒绝"));
        }
    }
}

void requireValidName(const std::string& name)
{
    const QString text = QString::fromStdString(name);
    const std::string problem = visibleTextProblem(text);
    if (!problem.empty()) {
        throw Refusal(EErrorCode::InvalidValue, utils::filled(utils::text("service", "账号组名称%1"), problem));
    }
    if (text.toUcs4().size() > MaxGroupNameLength) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "账号组名称不能超过%1个字符"), MaxGroupNameLength));
    }
}

std::string requireValidInstitution(const RequestContext& context, const nvservice::CAccountGroup& group)
{
    requireInScope(context.user, group.institutionId);
    if (group.institutionId == nvservice::NoInstitutionId) {
        // A name without an id was typed, not chosen from the list.
        if (!group.institutionName.empty()) {
            throw Refusal(EErrorCode::InvalidValue,
                          utils::filled(utils::text("service", "所属机构%1不存在"), quoted(group.institutionName)));
        }
        return {};
    }
    const std::optional<std::string> name = findInstitutionName(context, group.institutionId);
    if (!name) {
        throw Refusal(EErrorCode::InvalidValue, utils::text("service", "所属机构不存在"));
    }
    return *name;
}

EMemberProblem memberProblem(const StoredAccount& account, std::int32_t institutionOfGroup)
{
    // A group of the prime broker itself (no institution) may hold accounts of every institution.
    if (institutionOfGroup != nvservice::NoInstitutionId && account.info->institutionId != institutionOfGroup) {
        return EMemberProblem::OtherInstitution;
    }
    if (account.stateCode == nvservice::CKolmAccountInfo::ClosedState) {
        return EMemberProblem::Closed;
    }
    return account.excluded ? EMemberProblem::Excluded : EMemberProblem::None;
}

std::vector<StoredAccount> requireValidAccounts(const RequestContext& context, const nvservice::CAccountGroup& group,
                                                const std::vector<std::int64_t>& present)
{
    require(context, [&] {
        if (group.accounts.empty()) {
            throw Refusal(EErrorCode::InvalidValue, utils::text("service", "账号组至少要包含一个账号"));
        }
    });
    const std::set<std::int64_t> already(present.begin(), present.end());
    std::set<std::int64_t> seen;
    std::vector<StoredAccount> accounts;
    accounts.reserve(group.accounts.size());
    std::vector<std::optional<StoredAccount>> found = findAccounts(context, group.accounts);
    for (std::size_t i = 0; i < found.size(); ++i) {
        require(context, [&] {
            requireValidAccount(context, group, i, found[i], already, seen);
            accounts.push_back(std::move(*found[i]));
        });
    }
    return accounts;
}

} // namespace service
