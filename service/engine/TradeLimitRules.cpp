// SPDX-License-Identifier: Apache-2.0
#include "service/engine/TradeLimitRules.h"
#include "service/engine/Objections.h"
#include "service/engine/TextRules.h"
#include "service/store/Securities.h"

#include <nvservice/TypeManager.h>
#include <utils/Translation.h>

#include <QString>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace service
{

namespace
{

using nvservice::CTradeLimitEntry;
using nvservice::CTradeLimitList;
using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;
using nvservice::EZvTraderType;
using utils::EErrorCode;

bool isKnown(EZvTraderType type)
{
    switch (type) {
    case EZvTraderType::Stock:
    case EZvTraderType::Future:
    case EZvTraderType::StockOption:
    case EZvTraderType::ShanghaiHongKong:
    case EZvTraderType::Neeq:
    case EZvTraderType::FutureOption:
    case EZvTraderType::ShenzhenHongKong:
    case EZvTraderType::Interbank:
        return true;
    case EZvTraderType::None:
        break;
    }
    return false;
}

bool isKnown(EZVRCDirection direction)
{
    return direction == EZVRCDirection::Both || direction == EZVRCDirection::Buy || direction == EZVRCDirection::Sell;
}

bool isKnown(EZVRCListKind kind)
{
    return kind == EZVRCListKind::Black || kind == EZVRCListKind::White;
}

bool isCodeLetter(char letter)
{
    return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') ||
           letter == '.' || letter == '-' || letter == '_' || letter == '&';
}

std::string valueProblem(const CTradeLimitEntry& entry)
{
    if (!isKnown(entry.listKind)) {
        return utils::filled(utils::text("service", "名单类别（%1）无效"), static_cast<int>(entry.listKind));
    }
    if (!isKnown(entry.direction)) {
        return utils::filled(utils::text("service", "方向（%1）无效"), static_cast<int>(entry.direction));
    }
    return {};
}

/// The entries of a stored list by code, indexed at the first unknown value.
class StoredEntries
{
public:
    explicit StoredEntries(const CTradeLimitList* list) : m_list(list) {}

    bool hasValuesOf(const CTradeLimitEntry& entry)
    {
        if (m_list && m_byCode.empty()) {
            for (const CTradeLimitEntry& stored : m_list->entries) {
                m_byCode.emplace(stored.securityCode, &stored);
            }
        }
        const auto stored = m_byCode.find(entry.securityCode);
        return stored != m_byCode.end() && stored->second->direction == entry.direction &&
               stored->second->listKind == entry.listKind;
    }

private:
    const CTradeLimitList* m_list;
    std::unordered_map<std::string, const CTradeLimitEntry*> m_byCode;
};

void requireValidList(const CTradeLimitList& list, const CTradeLimitList* stored)
{
    findTradeLimitProblems(list, stored, [&list](const TradeLimitProblem& problem) {
        throw Refusal(EErrorCode::InvalidValue,
                      utils::filled(utils::text("service", "%1黑白名单第%2条：%3"), nameOfTraderType(list.traderType),
                                    problem.place + 1, problem.why));
    });
}

/// The codes that a list of the trade type may have. Empty if the server has no securities of that type, because then
/// codes cannot be checked.
std::unordered_set<std::string> knownCodes(const RequestContext& context, EZvTraderType type)
{
    std::unordered_set<std::string> codes;
    bool hasOwn = false;
    for (const auto& security : loadSecurities(context, static_cast<std::int64_t>(type))) {
        hasOwn = hasOwn || security->traderType == type;
        codes.insert(foldedSecurityCode(security->securityCode));
    }
    return hasOwn ? codes : std::unordered_set<std::string>();
}

} // namespace

std::string nameOfTraderType(EZvTraderType type)
{
    return utils::text("nvservice", wordOfTraderType(type).c_str());
}

std::string wordOfTraderType(EZvTraderType type)
{
    return nvservice::TypeManager::getEnumItemName("nvservice::EZvTraderType", static_cast<int>(type), 0);
}

std::string foldedSecurityCode(std::string code)
{
    for (char& letter : code) {
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    }
    return code;
}

std::string securityCodeProblem(const std::string& code)
{
    if (code.find_first_not_of(' ') == std::string::npos) {
        return utils::text("service", "证券代码不能为空");
    }
    if (static_cast<std::size_t>(QString::fromStdString(code.substr(0, 4 * MaxSecurityCodeLength + 1)).size()) >
        MaxSecurityCodeLength) {
        return utils::filled(utils::text("service", "证券代码不能超过%1个字符"), MaxSecurityCodeLength);
    }
    if (!std::all_of(code.begin(), code.end(), isCodeLetter)) {
        return utils::filled(utils::text("service", "%1不是证券代码，代码只能由字母、数字和 . - _ & 组成"),
                             quoted(code));
    }
    return {};
}

std::string securityNameProblem(const std::string& name)
{
    const QString text = QString::fromStdString(name);
    if (text.size() > MaxSecurityNameLength) {
        return utils::filled(utils::text("service", "证券名称不能超过%1个字符"), MaxSecurityNameLength);
    }
    if (std::any_of(text.begin(), text.end(), [](QChar letter) { return letter.category() == QChar::Other_Control; })) {
        return utils::text("service", "证券名称含有控制字符");
    }
    return {};
}

void findTradeLimitProblems(const CTradeLimitList& list, const CTradeLimitList* stored,
                            const std::function<void(const TradeLimitProblem&)>& found)
{
    using EKind = TradeLimitProblem::EKind;
    StoredEntries present(stored);
    std::unordered_map<std::string, EZVRCListKind> kinds;
    kinds.reserve(list.entries.size());
    for (std::size_t i = 0; i < list.entries.size(); ++i) {
        const CTradeLimitEntry& entry = list.entries[i];
        for (const std::string& problem :
             {securityCodeProblem(entry.securityCode), securityNameProblem(entry.securityName)}) {
            if (!problem.empty()) {
                found({EKind::BadValue, i, problem});
            }
        }
        const std::string unknown = valueProblem(entry);
        if (!unknown.empty() && !present.hasValuesOf(entry)) {
            found({EKind::BadValue, i, unknown});
        }
        const auto [first, isNew] = kinds.emplace(foldedSecurityCode(entry.securityCode), entry.listKind);
        if (!isNew && first->second != entry.listKind) {
            found({EKind::OnBothLists, i,
                   utils::filled(utils::text("service", "证券%1同时在黑名单和白名单中，请只保留一个"),
                                 entry.securityCode)});
        } else if (!isNew) {
            found({EKind::Repeated, i, utils::filled(utils::text("service", "证券%1重复"), entry.securityCode)});
        }
    }
}

void requireValidTradeLimits(const nvservice::CAccountGroupRCRule& sent, const nvservice::CAccountGroupRCRule& stored)
{
    std::set<EZvTraderType> seen;
    for (const CTradeLimitList& list : sent.lists) {
        const CTradeLimitList* const present = stored.findList(list.traderType);
        if (!isKnown(list.traderType) && !present) {
            throw Refusal(EErrorCode::InvalidValue,
                          utils::filled(utils::text("service", "黑白名单的交易类型（%1）无效"),
                                        static_cast<int>(list.traderType)));
        }
        if (!seen.insert(list.traderType).second) {
            throw Refusal(EErrorCode::InvalidValue,
                          utils::filled(utils::text("service", "%1黑白名单重复"), nameOfTraderType(list.traderType)));
        }
        requireValidList(list, present);
    }
}

void requireKnownSecurities(const RequestContext& context, const nvservice::CAccountGroupRCRule& sent,
                            const nvservice::CAccountGroupRCRule& stored)
{
    for (const CTradeLimitList& list : sent.lists) {
        if (!isKnown(list.traderType)) {
            continue;
        }
        std::unordered_set<std::string> present;
        if (const CTradeLimitList* const before = stored.findList(list.traderType)) {
            for (const CTradeLimitEntry& entry : before->entries) {
                present.insert(foldedSecurityCode(entry.securityCode));
            }
        }
        std::optional<std::unordered_set<std::string>> known;
        for (std::size_t i = 0; i < list.entries.size(); ++i) {
            const std::string code = foldedSecurityCode(list.entries[i].securityCode);
            if (present.count(code) != 0) {
                continue;
            }
            if (!known) {
                known = knownCodes(context, list.traderType);
            }
            if (known->empty() || known->count(code) != 0) {
                continue;
            }
            require(context, [&] {
                throw Refusal(EErrorCode::InvalidValue,
                              utils::filled(utils::text("service",
                                                        "%1黑白名单第%2条：证券列表中没有%3，只能使用列表中的证券代码"),
                                            nameOfTraderType(list.traderType), i + 1,
                                            quoted(list.entries[i].securityCode)));
            });
        }
    }
}

} // namespace service
