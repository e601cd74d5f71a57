#include "service/engine/UserRights.h"
#include "service/engine/CategoryRights.h"

#include <nvservice/UserRight.h>

#include <algorithm>

namespace service
{

namespace
{

std::vector<NamedRight> makeRights()
{
    namespace UserRight = nvservice::UserRight;
    std::vector<NamedRight> rights = {{UserRight::EditAccountGroup, "edit-account-group", "添加和编辑账号组"},
                                      {UserRight::SetAccountGroupRisk, "set-account-group-risk", "设置账号组风控"},
                                      {UserRight::DeleteAccountGroup, "delete-account-group", "删除账号组"},
                                      {UserRight::FutureAccount, "future-account", "期货账号"},
                                      {UserRight::StockAccount, "stock-account", "证券账号"},
                                      {UserRight::CreditAccount, "credit-account", "信用账号"},
                                      {UserRight::GoldAccount, "gold-account", "贵金属账号"},
                                      {UserRight::FutureOptionAccount, "future-option-account", "期货期权账号"},
                                      {UserRight::StockOptionAccount, "stock-option-account", "股票期权账号"},
                                      {UserRight::ShanghaiHongKongAccount, "shanghai-hong-kong-account", "沪港通账号"},
                                      {UserRight::NeeqAccount, "neeq-account", "全国股转账号"},
                                      {UserRight::ShenzhenHongKongAccount, "shenzhen-hong-kong-account", "深港通账号"},
                                      {UserRight::OverseasFutureAccount, "overseas-future-account", "外盘期货账号"},
                                      {UserRight::IbOverseasAccount, "ib-overseas-account", "IB外盘账号"},
                                      {UserRight::InterbankAccount, "interbank-account", "银行间账号"}};
    for (int sysType = 0; sysType < CategorySysTypes; ++sysType) {
        const std::string number = std::to_string(sysType);
        rights.push_back({rightOfCategorySysType(sysType), "category-" + number, "系统类型" + number + "的证券分类"});
    }
    std::sort(rights.begin(), rights.end(), [](const NamedRight& a, const NamedRight& b) { return a.id < b.id; });
    return rights;
}

} // namespace

const std::vector<NamedRight>& namedRights()
{
    static const std::vector<NamedRight> rights = makeRights();
    return rights;
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

StoredUser userWithEveryRight(const std::string& login)
{
    StoredUser user;
    user.login = login;
    user.enabled = true;
    for (const NamedRight& right : namedRights())
        user.rights.insert(right.id);
    return user;
}

} // namespace service
