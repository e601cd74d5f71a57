// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/SampleNames.h"

#include <array>

namespace service
{

using nvservice::EZVBrokerType;

SampleServer sampleServer(int index)
{
    static const std::vector<SampleServer> known = {
        {"上海分系统", "SH01"}, {"深圳分系统", "SZ01"}, {"北京分系统", "BJ01"}, {"广州分系统", "GZ01"},
        {"重庆分系统", "CQ01"}, {"厦门分系统", "XM01"}, {"长沙分系统", "CS01"}, {"成都分系统", "CD01"}};
    if (index < static_cast<int>(known.size())) {
        return known[static_cast<std::size_t>(index)];
    }
    return {"分系统" + chineseNumeral(index + 1), "SYS" + std::to_string(index + 1)};
}

const std::vector<SampleInstitution>& sampleInstitutions()
{
    static const std::vector<SampleInstitution> institutions = {
        {"砚池证券股份有限公司", "砚池证券"},     {"栖梧基金管理有限公司", "栖梧基金"},
        {"霁川资产管理有限公司", "霁川资产"},     {"沐岚期货有限责任公司", "沐岚期货"},
        {"朔原证券有限责任公司", "朔原证券"},     {"鹭屿信托有限公司", "鹭屿信托"},
        {"澹宁投资管理合伙企业", "澹宁投资"},     {"槿湖资产管理有限公司", "槿湖资产"},
        {"蓼汀基金管理股份有限公司", "蓼汀基金"}, {"屺山期货股份有限公司", "屺山期货"},
        {"重岚私募基金管理有限公司", "重岚私募"}, {"长汐银行资产管理部", "长汐银行"}};
    return institutions;
}

const std::vector<SampleAccountType>& sampleAccountTypes()
{
    static const std::vector<SampleAccountType> types = {{EZVBrokerType::Future, "期货", "80", 26},
                                                         {EZVBrokerType::Stock, "证券", "0100", 24},
                                                         {EZVBrokerType::Credit, "信用", "0600", 9},
                                                         {EZVBrokerType::Gold, "贵金属", "9", 3},
                                                         {EZVBrokerType::FutureOption, "期货期权", "85", 6},
                                                         {EZVBrokerType::StockOption, "股票期权", "A0", 7},
                                                         {EZVBrokerType::ShanghaiHongKong, "沪港通", "H0", 5},
                                                         {EZVBrokerType::Neeq, "全国股转", "0400", 3},
                                                         {EZVBrokerType::ShenzhenHongKong, "深港通", "Z0", 5},
                                                         {EZVBrokerType::AllBusiness, "全业务", "000", 3},
                                                         {EZVBrokerType::WealthManagement, "理财", "LC0", 3},
                                                         {EZVBrokerType::OverseasFuture, "外盘期货", "OF", 3},
                                                         {EZVBrokerType::IbOverseas, "IB外盘", "U", 1},
                                                         {EZVBrokerType::Interbank, "银行间", "00B", 2}};
    return types;
}

std::string sampleStrategyName(int number)
{
    static const std::vector<std::string> strategies = {
        "量化对冲", "股票多头", "CTA趋势",  "期现套利", "可转债轮动",  "指数增强",  "市场中性", "宏观配置",
        "黑色产业", "能源化工", "贵金属",   "股指期权", "银行间债券",  "长期价值",  "重点监控", "农产品跨期",
        "国债期货", "沪深港通", "打新增强", "事件驱动", "Alpha多因子", "FOF母基金", "日内回转", "波动率套利"};
    const int count = static_cast<int>(strategies.size());
    return strategies[static_cast<std::size_t>(number % count)] + chineseNumeral(number / count + 1) + "号";
}

std::string chineseNumeral(int number)
{
    static const std::array<const char*, 10> digits = {"零", "一", "二", "三", "四", "五", "六", "七", "八", "九"};
    if (number >= 10000) {
        const int rest = number % 10000;
        return chineseNumeral(number / 10000) + "万" +
               (rest == 0     ? ""
                : rest < 1000 ? "零"
                              : "") +
               (rest == 0 ? "" : chineseNumeral(rest));
    }
    static const std::array<const char*, 4> places = {"千", "百", "十", ""};
    std::string text;
    bool zeroPending = false;
    int divisor = 1000;
    for (const char* place : places) {
        const int digit = number / divisor % 10;
        divisor /= 10;
        if (digit == 0) {
            zeroPending = !text.empty();
            continue;
        }
        if (zeroPending) {
            text += digits[0];
        }
        zeroPending = false;
        // Ten to nineteen drop the leading one.
        if (!(digit == 1 && text.empty() && divisor == 1)) {
            text += digits[static_cast<std::size_t>(digit)];
        }
        text += place;
    }
    return text;
}

} // namespace service
