// SPDX-License-Identifier: Apache-2.0
#include "service/import/CsvValues.h"
#include "service/engine/AccountRights.h"
#include "service/engine/TradeLimitRules.h"

#include <nvservice/CKolmAccountInfo.h>

#include <vector>

namespace service
{

using nvservice::CKolmAccountInfo;
using nvservice::EZVBrokerType;
using nvservice::EZvTraderType;

namespace
{

constexpr char Closed[] = "已销户";
constexpr char AnyTraderType[] = "任意";

const std::vector<EZVBrokerType>& accountTypes()
{
    static const std::vector<EZVBrokerType> types = {EZVBrokerType::Future,           EZVBrokerType::Stock,
                                                     EZVBrokerType::Credit,           EZVBrokerType::Gold,
                                                     EZVBrokerType::FutureOption,     EZVBrokerType::StockOption,
                                                     EZVBrokerType::ShanghaiHongKong, EZVBrokerType::Neeq,
                                                     EZVBrokerType::ShenzhenHongKong, EZVBrokerType::AllBusiness,
                                                     EZVBrokerType::WealthManagement, EZVBrokerType::OverseasFuture,
                                                     EZVBrokerType::IbOverseas,       EZVBrokerType::Interbank};
    return types;
}

} // namespace

std::optional<bool> readFlag(const QString& text)
{
    const QString plain = text.toLower();
    if (plain.isEmpty() || plain == "0" || plain == "否" || plain == "no" || plain == "false") {
        return false;
    }
    if (plain == "1" || plain == "是" || plain == "yes" || plain == "true") {
        return true;
    }
    return std::nullopt;
}

std::string textOfFlag(bool flag)
{
    return flag ? "是" : "否";
}

std::optional<int> readState(const QString& text)
{
    if (text.isEmpty() || text == "正常") {
        return 0;
    }
    if (text == Closed || text == "销户") {
        return CKolmAccountInfo::ClosedState;
    }
    bool isNumber = false;
    const int state = text.toInt(&isNumber);
    return isNumber && state >= 0 ? std::optional<int>(state) : std::nullopt;
}

std::string textOfState(int state)
{
    return state == 0 ? "正常" : state == CKolmAccountInfo::ClosedState ? Closed : std::to_string(state);
}

std::optional<EZVBrokerType> readAccountType(const QString& text)
{
    const std::string wanted = text.toStdString();
    for (const EZVBrokerType type : accountTypes()) {
        if (wanted == std::to_string(static_cast<int>(type)) || wanted == wordOfAccountType(type)) {
            return type;
        }
    }
    return std::nullopt;
}

std::optional<EZvTraderType> readTraderType(const QString& text)
{
    const std::string wanted = text.toStdString();
    if (wanted.empty() || wanted == "0" || wanted == AnyTraderType) {
        return EZvTraderType::None;
    }
    for (int bit = 0; bit < 31; ++bit) {
        const auto type = static_cast<EZvTraderType>(1 << bit);
        if (wanted == std::to_string(1 << bit) || wanted == textOfTraderType(type)) {
            return type;
        }
    }
    return std::nullopt;
}

std::string textOfTraderType(EZvTraderType type)
{
    return type == EZvTraderType::None ? AnyTraderType : wordOfTraderType(type);
}

} // namespace service
