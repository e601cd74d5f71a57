// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/SampleSecurities.h"
#include "service/sampledata/SampleNames.h"

#include <QString>

#include <algorithm>
#include <string>

namespace service
{

namespace
{

using nvservice::CCategoryInfo;
using nvservice::CSecurityInfo;
using nvservice::EZvTraderType;

using Texts = std::vector<std::string>;

struct Top {
    std::string name;
    int sysType;
    int categoryType;
    Texts sectors;
};

const std::vector<Top>& tops()
{
    static const std::vector<Top> all = {
        {"A股", 1, 0, {"农林牧渔", "基础化工", "钢铁",     "有色金属", "电子",     "汽车",     "家用电器", "食品饮料",
                       "纺织服饰", "轻工制造", "医药生物", "公用事业", "交通运输", "房地产",   "商贸零售", "社会服务",
                       "银行",     "非银金融", "建筑材料", "建筑装饰", "电力设备", "机械设备", "国防军工", "计算机",
                       "传媒",     "通信",     "煤炭",     "石油石化", "环保",     "美容护理"}},
        {"商品期货",
         2,
         0,
         {"黑色金属", "有色金属期货", "贵金属", "能源", "化工", "油脂油料", "谷物", "软商品", "建材"}},
        {"金融期货", 2, 0, {"股指", "国债"}},
        {"期权", 3, 0, {"个股期权", "ETF期权", "股指期权", "商品期权"}},
        {"债券",
         4,
         0,
         {"国债", "地方政府债", "政策性金融债", "企业债", "公司债", "可转债", "可交换债", "短期融资券", "中期票据",
          "同业存单", "资产支持证券"}},
        {"港股通", 5, 0, {"港股大型股", "港股中型股", "港股小型股", "港股红利"}},
        {"基金", 6, 0, {"货币型", "股票型", "混合型", "债券型", "指数型", "ETF", "LOF", "REITs", "QDII", "FOF"}},
        {"全国股转", 1, 0, {"基础层", "创新层"}},
        {"自定义分类", 1, 1, {"重点监控股票", "限制交易池", "风险警示股票", "次新股"}},
        {"内部研究分类", 1, CCategoryInfo::InternalCategoryType, {"核心池", "观察池", "回避池"}},
        {"场外衍生品", ForbiddenSampleSysType, 0, {"收益互换", "场外期权", "远期合约"}}};
    return all;
}

const Texts Subdivisions = {"大盘", "中盘", "小盘", "成长", "价值", "高股息", "低波动", "长期持有", "重仓", "行业龙头"};

struct Board {
    const char* market;
    EZvTraderType traderType;
    int sysType;
    int firstCode;
    int digits;
    int weight; ///< of a hundred securities
};

const std::vector<Board>& boards()
{
    static const std::vector<Board> all = {{"SH", EZvTraderType::Stock, 1, 600000, 6, 28},
                                           {"SZ", EZvTraderType::Stock, 1, 1, 6, 27},
                                           {"SH", EZvTraderType::Stock, 6, 510000, 6, 5},
                                           {"BJ", EZvTraderType::Neeq, 1, 830000, 6, 6},
                                           {"SHHK", EZvTraderType::ShanghaiHongKong, 5, 1, 5, 6},
                                           {"SZHK", EZvTraderType::ShenzhenHongKong, 5, 1, 5, 6},
                                           {"IB", EZvTraderType::Interbank, 4, 240001, 6, 4},
                                           {"SHOP", EZvTraderType::StockOption, 3, 10006001, 8, 4},
                                           {"FUT", EZvTraderType::Future, 2, 0, 0, 8},
                                           {"FUTOP", EZvTraderType::FutureOption, 3, 0, 0, 6}};
    return all;
}

std::string paddedNumber(int number, int digits)
{
    return QString::number(number).rightJustified(digits, '0').toStdString();
}

struct Product {
    const char* code;
    const char* name;
};

const std::vector<Product>& products()
{
    static const std::vector<Product> all = {
        {"cu", "铜"},   {"al", "铝"},     {"zn", "锌"},     {"au", "黄金"},       {"ag", "白银"},  {"rb", "螺纹钢"},
        {"hc", "热卷"}, {"ru", "橡胶"},   {"bu", "沥青"},   {"fu", "燃料油"},     {"i", "铁矿石"}, {"j", "焦炭"},
        {"jm", "焦煤"}, {"m", "豆粕"},    {"y", "豆油"},    {"p", "棕榈油"},      {"c", "玉米"},   {"cs", "玉米淀粉"},
        {"l", "塑料"},  {"v", "PVC"},     {"pp", "聚丙烯"}, {"TA", "PTA"},        {"MA", "甲醇"},  {"SR", "白糖"},
        {"CF", "棉花"}, {"RM", "菜籽粕"}, {"OI", "菜籽油"}, {"IF", "沪深300股指"}};
    return all;
}

const Product& productOf(int number)
{
    return products()[static_cast<std::size_t>(number) % products().size()];
}

/// The delivery month of contract `number`: "2603".
std::string deliveryMonth(int number)
{
    const int month = number / static_cast<int>(products().size()) + 2;
    return std::to_string(26 + month / 12) + paddedNumber(month % 12 + 1, 2);
}

std::string invented(int number)
{
    static const Texts first = {"砚", "栖", "霁", "沐", "朔", "鹭", "澹", "槿",
                                "蓼", "屺", "重", "长", "乐", "翊", "岱", "澜"};
    static const Texts second = {"池", "梧", "川", "原", "屿", "宁", "湖", "汀", "山", "桥", "石", "林", "阳"};
    static const Texts last = {"股份", "科技", "电子", "医药", "能源", "银行", "证券", "重工", "食品", "环保", "材料"};
    const auto pick = [](const Texts& texts, int index) {
        return texts[static_cast<std::size_t>(index) % texts.size()];
    };
    return pick(first, number) + pick(second, number / 3 + number) + pick(last, number / 7);
}

void describe(CSecurityInfo& security, const Board& board, int number)
{
    security.market = board.market;
    security.traderType = board.traderType;
    security.sysType = board.sysType;
    security.securityName = invented(number);
    if (board.traderType == EZvTraderType::Future) {
        security.securityCode = productOf(number).code + deliveryMonth(number);
        security.securityName = productOf(number).name + deliveryMonth(number);
    } else if (board.traderType == EZvTraderType::FutureOption) {
        // Six options for each contract: calls and puts of three strikes.
        const int contract = number / 6;
        const bool isCall = number % 2 == 0;
        const std::string strike = std::to_string(4000 + 100 * (number % 6 / 2));
        security.securityCode = productOf(contract).code + deliveryMonth(contract) + (isCall ? "C" : "P") + strike;
        security.securityName = productOf(contract).name + deliveryMonth(contract) + (isCall ? "购" : "沽") + strike;
    } else {
        security.securityCode = paddedNumber(board.firstCode + number, board.digits);
    }
}

CSecurityInfo index(const char* market, const char* code, const char* name)
{
    CSecurityInfo security;
    security.market = market;
    security.securityCode = code;
    security.securityName = name;
    security.sysType = 1;
    return security;
}

} // namespace

std::vector<CCategoryInfo> sampleCategories(int count)
{
    std::vector<CCategoryInfo> categories;
    const auto isFull = [&] { return static_cast<int>(categories.size()) >= count; };
    const auto add = [&](const std::string& name, const Top& top, std::int32_t parent) {
        if (isFull()) {
            return;
        }
        CCategoryInfo category;
        category.categoryId = 1001 + static_cast<std::int32_t>(categories.size());
        category.categoryName = name;
        category.categoryType = top.categoryType;
        category.sysType = top.sysType;
        category.parentId = parent;
        categories.push_back(category);
    };
    for (const Top& top : tops()) {
        add(top.name, top, -1);
    }
    std::int32_t topId = 1001;
    for (const Top& top : tops()) {
        for (const std::string& sector : top.sectors) {
            add(sector, top, topId);
        }
        ++topId;
    }
    for (int round = 0; !isFull(); ++round) {
        std::int32_t sectorId = 1001 + static_cast<std::int32_t>(tops().size());
        const auto size = static_cast<int>(Subdivisions.size());
        const std::string part = Subdivisions[static_cast<std::size_t>(round % size)] +
                                 (round < size ? std::string() : chineseNumeral(round / size + 1));
        for (const Top& top : tops()) {
            for (const std::string& sector : top.sectors) {
                add(sector + "-" + part, top, sectorId++);
            }
        }
    }
    return categories;
}

std::vector<CSecurityInfo> sampleSecurities(int count)
{
    std::vector<CSecurityInfo> securities = {index("SH", "000001", "上证指数"), index("SH", "000300", "沪深300"),
                                             index("SZ", "399001", "深证成指")};
    securities.resize(static_cast<std::size_t>(std::min(count, 3)));
    // Boards in turn, so that even the first few securities have every board.
    std::vector<int> made(boards().size());
    for (int step = 0; static_cast<int>(securities.size()) < count; ++step) {
        const int place = step % 28;
        for (std::size_t i = 0; i < boards().size() && static_cast<int>(securities.size()) < count; ++i) {
            if (place >= boards()[i].weight) {
                continue;
            }
            securities.emplace_back();
            describe(securities.back(), boards()[i], made[i]++);
        }
    }
    return securities;
}

} // namespace service
