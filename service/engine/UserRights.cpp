// SPDX-License-Identifier: Apache-2.0
#include "service/engine/UserRights.h"
#include "service/engine/AccountRights.h"
#include "service/engine/CategoryRights.h"

#include <nvservice/UserRight.h>
#include <utils/Translation.h>

#include <algorithm>

namespace service
{

namespace
{

std::vector<NamedRight> makeRights(utils::ELanguage language)
{
    const utils::CLanguageScope scope(language);
    namespace UserRight = nvservice::UserRight;
    std::vector<NamedRight> rights = {
        {UserRight::EditAccountGroup, "edit-account-group", utils::text("service", "添加和编辑账号组")},
        {UserRight::SetAccountGroupRisk, "set-account-group-risk", utils::text("service", "设置账号组风控")},
        {UserRight::DeleteAccountGroup, "delete-account-group", utils::text("service", "删除账号组")},
        {UserRight::ReadAudit, "read-audit", utils::text("service", AuditRightName)}};
    for (const AccountRight& each : accountRights()) {
        rights.push_back({each.right, each.key, nameOfAccountType(each.type)});
    }
    for (int sysType = 0; sysType < CategorySysTypes; ++sysType) {
        const std::string number = std::to_string(sysType);
        rights.push_back({rightOfCategorySysType(sysType), "category-" + number,
                          utils::filled(utils::text("service", "系统类型%1的证券分类"), number)});
    }
    std::sort(rights.begin(), rights.end(), [](const NamedRight& a, const NamedRight& b) { return a.id < b.id; });
    return rights;
}

} // namespace

const std::vector<NamedRight>& namedRights()
{
    static const std::vector<NamedRight> chinese = makeRights(utils::ELanguage::Chinese);
    static const std::vector<NamedRight> english = makeRights(utils::ELanguage::English);
    return utils::language() == utils::ELanguage::English ? english : chinese;
}

const NamedRight* findRight(const std::string& text)
{
    const auto found = std::find_if(namedRights().begin(), namedRights().end(), [&text](const NamedRight& right) {
        return right.key == text || right.name == text || std::to_string(right.id) == text;
    });
    return found == namedRights().end() ? nullptr : &*found;
}

std::string nameOfRight(int id)
{
    const NamedRight* const right = findRight(std::to_string(id));
    return right ? right->name : std::to_string(id);
}

bool seesEverything(const StoredUser& user)
{
    const std::vector<AccountRight>& types = accountRights();
    return !user.institution && user.has(nvservice::UserRight::SetAccountGroupRisk) &&
           std::all_of(types.begin(), types.end(), [&user](const AccountRight& each) { return user.has(each.right); });
}

StoredUser userWithEveryRight(const std::string& login)
{
    StoredUser user;
    user.login = login;
    user.enabled = true;
    for (const NamedRight& right : namedRights()) {
        user.rights.insert(right.id);
    }
    return user;
}

} // namespace service
