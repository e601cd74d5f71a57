// SPDX-License-Identifier: Apache-2.0
#include "service/RiskSamples.h"

#include "service/engine/RiskConfigRules.h"
#include "service/store/Securities.h"
#include "support/TestProgram.h"

#include <functional>
#include <limits>

using namespace testservice;
using namespace nvservice;

namespace
{

using Change = std::function<void(CAccountGroupRCConfig&)>;

struct Case {
    const char* name;
    Change change;
    EErrorCode code;
    const char* text; ///< what the message has to say
};

constexpr EErrorCode Invalid = EErrorCode::InvalidValue;
constexpr EErrorCode Fine = EErrorCode::Success;

std::vector<CTradeLimitEntry>& stocks(CAccountGroupRCConfig& config)
{
    return config.rcRule.list(EZvTraderType::Stock).entries;
}

/// One entry of the stock list.
Change withEntry(const CTradeLimitEntry& made)
{
    return [made](CAccountGroupRCConfig& config) { stocks(config) = {entry("600000"), made}; };
}

Change withLimit(const std::function<void(CAssetsRC&)>& change)
{
    return [change](CAccountGroupRCConfig& config) {
        config.assetsRCs = {stockLimit()};
        change(config.assetsRCs[0]);
    };
}

Change withRule(const std::function<void(CEmailRC&)>& change)
{
    return [change](CAccountGroupRCConfig& config) {
        config.emailRCs = {emailRule(config.groupId, "rule")};
        change(config.emailRCs[0]);
    };
}

CTradeLimitEntry named(const std::string& name)
{
    CTradeLimitEntry made = entry("600001");
    made.securityName = name;
    return made;
}

std::string repeated(const char* text, int count)
{
    return QString::fromUtf8(text).repeated(count).toStdString();
}

std::vector<Case> listCases()
{
    const auto both = [](CAccountGroupRCConfig& config) {
        stocks(config) = {entry("600000", EZVRCListKind::Black), entry("600000", EZVRCListKind::White)};
    };
    const auto twice = [](CAccountGroupRCConfig& config) { stocks(config) = {entry("a1"), entry("A1")}; };
    const auto twoTypes = [](CAccountGroupRCConfig& config) {
        stocks(config) = {entry("600000", EZVRCListKind::Black)};
        config.rcRule.list(EZvTraderType::Future).entries = {entry("600000", EZVRCListKind::White)};
    };
    const auto twoParts = [](CAccountGroupRCConfig& config) {
        config.rcRule.lists.resize(2);
        config.rcRule.lists[0].traderType = config.rcRule.lists[1].traderType = EZvTraderType::Future;
    };
    CTradeLimitEntry direction = entry("600001");
    direction.direction = static_cast<EZVRCDirection>(3);
    return {
        {"code of 32 characters", withEntry(entry(std::string(32, '9'))), Fine, ""},
        {"code of 33 characters", withEntry(entry(std::string(33, '9'))), Invalid, "第2条：证券代码不能超过32个字符"},
        {"code of 10 000 characters", withEntry(entry(std::string(10000, '9'))), Invalid, "不能超过32个字符"},
        {"empty code", withEntry(entry("")), Invalid, "证券黑白名单第2条：证券代码不能为空"},
        {"blank code", withEntry(entry("  ")), Invalid, "证券代码不能为空"},
        {"code with a blank before", withEntry(entry(" 1")), Invalid, "“ 1”不是证券代码，代码只能由字母"},
        {"code with a blank behind", withEntry(entry("1 ")), Invalid, "不是证券代码"},
        {"code with a blank inside", withEntry(entry("60 0000")), Invalid, "“60 0000”不是证券代码"},
        {"Chinese code", withEntry(entry("贵州")), Invalid, "“贵州”不是证券代码"},
        {"code with a line break", withEntry(entry("60\n")), Invalid, "不是证券代码"},
        {"code that isn't UTF-8", withEntry(entry("60\xff")), EErrorCode::Malformed, "securityCode"},
        {"name of 64 characters", withEntry(named(repeated("名", 64))), Fine, ""},
        {"name of 65 characters", withEntry(named(repeated("名", 65))), Invalid, "证券名称不能超过64个字符"},
        {"name with a control character", withEntry(named("a\tb")), Invalid, "证券名称含有控制字符"},
        {"name that isn't UTF-8", withEntry(named("a\xff")), EErrorCode::Malformed, "securityName"},
        {"unknown list kind", withEntry(entry("1", static_cast<EZVRCListKind>(7))), Invalid, "名单类别（7）无效"},
        {"unknown direction", withEntry(direction), Invalid, "方向（3）无效"},
        {"on both lists", both, Invalid, "证券600000同时在黑名单和白名单中"},
        {"twice, in another case", twice, Invalid, "证券A1重复"},
        {"on lists of different trade types", twoTypes, Fine, ""},
        {"two parts of a trade type", twoParts, Invalid, "期货黑白名单重复"},
        {"unknown trade type", [](auto& c) { c.rcRule.list(static_cast<EZvTraderType>(64)); }, Invalid,
         "交易类型（64）无效"},
        {"no trade type", [](auto& c) { c.rcRule.list(EZvTraderType::None); }, Invalid, "交易类型（0）无效"}};
}

std::vector<Case> limitCases()
{
    const double infinite = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto threshold = [](double value) {
        return withLimit([value](CAssetsRC& limit) { limit.threshold = value; });
    };
    const auto inYuan = [](double value) {
        return withLimit([value](CAssetsRC& limit) {
            limit.base = EZVRCQuantity::None;
            limit.unit = EZVRCUnit::Yuan;
            limit.threshold = value;
        });
    };
    const auto profit = withLimit([](CAssetsRC& limit) {
        limit.measured = EZVRCQuantity::FloatingProfit;
        limit.threshold = -5;
    });
    const auto ofCategory = [](int id) {
        return withLimit([id](CAssetsRC& limit) {
            limit.assetClass = EZVRCAssetClass::ByCategory;
            limit.categoryId = id;
        });
    };
    const auto set = [](auto member, int value) {
        return withLimit([member, value](CAssetsRC& limit) {
            limit.*member = static_cast<std::remove_reference_t<decltype(limit.*member)>>(value);
        });
    };
    return {{"threshold 0", threshold(0), Fine, ""},
            {"threshold 10000 %", threshold(10000), Fine, ""},
            {"threshold above 10000 %", threshold(10000.01), Invalid, "资产组合风控第1条：阈值不能超过10000%"},
            {"negative threshold", threshold(-0.01), Invalid, "阈值不能小于0"},
            {"negative profit", profit, Fine, ""},
            {"infinite threshold", threshold(infinite), Invalid, "阈值不是有效的数字"},
            {"no number", threshold(nan), Invalid, "阈值不是有效的数字"},
            {"amount of 10 000 billion", inYuan(1e13), Fine, ""},
            {"amount beyond", inYuan(1.1e13), Invalid, "阈值过大"},
            {"percent of nothing", set(&CAssetsRC::base, 0), Invalid, "请选择比较基准"},
            {"yuan against a base", set(&CAssetsRC::unit, 1), Invalid, "单位只能是%"},
            {"value against share capital", set(&CAssetsRC::base, 7), Invalid, "只有数量能与总股本比较"},
            {"shares against value", set(&CAssetsRC::measured, 3), Invalid, "数量只能与总股本比较"},
            {"known category", ofCategory(StocksCategory), Fine, ""},
            {"internal category", ofCategory(InternalCategory), Fine, ""},
            {"no category", ofCategory(-1), Invalid, "请选择证券分类"},
            {"unknown category", ofCategory(4711), Invalid, "证券分类（编号4711）不存在"},
            {"category without right", ofCategory(FuturesCategory), EErrorCode::PermissionDenied, "“期货”的权限"},
            {"unknown scope", set(&CAssetsRC::scope, 3), Invalid, "监控范围（3）无效"},
            {"unknown class", set(&CAssetsRC::assetClass, 99), Invalid, "资产类别（99）无效"},
            {"unknown quantity", set(&CAssetsRC::measured, 0), Invalid, "监控指标（0）无效"},
            {"unknown base", set(&CAssetsRC::base, 9), Invalid, "比较基准（9）无效"},
            {"unknown comparison", set(&CAssetsRC::comparison, -1), Invalid, "比较方式（-1）无效"},
            {"unknown unit", set(&CAssetsRC::unit, 4), Invalid, "单位（4）无效"},
            {"unknown action", set(&CAssetsRC::action, 2), Invalid, "触发动作（2）无效"},
            {"long remark", withLimit([](CAssetsRC& limit) { limit.remark = repeated("长", 201); }), Invalid,
             "备注不能超过200个字符"},
            {"remark with a line break", withLimit([](CAssetsRC& limit) { limit.remark = "a\nb"; }), Invalid,
             "备注含有控制字符"}};
}

std::vector<Case> otherCases()
{
    const auto reverse = [](std::vector<std::int32_t> ids) {
        return [ids](CAccountGroupRCConfig& config) { config.ratProofSetting.reverseOrderExemptCategoryIds = ids; };
    };
    const auto wash = [](std::vector<std::int32_t> ids) {
        return [ids](CAccountGroupRCConfig& config) { config.ratProofSetting.washTradeExemptCategoryIds = ids; };
    };
    const auto address = [](const std::string& text) {
        return withRule([text](CEmailRC& rule) { rule.recipients = {text}; });
    };
    const auto twice = [](CAccountGroupRCConfig& config) {
        config.emailRCs = {emailRule(config.groupId, "rule"), emailRule(config.groupId, "rule")};
    };
    return {
        {"exempt category", reverse({StocksCategory}), Fine, ""},
        {"unknown exempt category", reverse({StocksCategory, 4711}), Invalid,
         "反向单交易设置：证券分类（编号4711）不存在"},
        {"unknown exempt category of the other control", wash({-1}), Invalid, "对敲交易设置：证券分类（编号-1）不存在"},
        {"internal exempt category", wash({InternalCategory}), Invalid, "“内部”是内部分类，不能豁免"},
        {"exempt category without right", reverse({FuturesCategory}), EErrorCode::PermissionDenied, "“期货”的权限"},
        {"too many exempt categories", reverse(std::vector<std::int32_t>(50001, StocksCategory)),
         EErrorCode::ResourceExhausted, "豁免分类最多50000条"},
        {"too many limits", [](auto& c) { c.assetsRCs.resize(10001, stockLimit()); }, EErrorCode::ResourceExhausted,
         "资产组合风控最多10000条"},
        {"too many entries", [](auto& c) { stocks(c).resize(200001, entry("1")); }, EErrorCode::ResourceExhausted,
         "黑白名单最多200000条"},
        {"too many e-mail rules", [](auto& c) { c.emailRCs.resize(1001); }, EErrorCode::ResourceExhausted,
         "邮件规则最多1000条"},
        {"e-mail rule", withRule([](CEmailRC&) {}), Fine, ""},
        {"e-mail rule of another group", withRule([](CEmailRC& rule) { rule.accountKey = "99"; }), Invalid,
         "邮件规则“rule”不属于该账号组"},
        {"e-mail rule of another kind", withRule([](CEmailRC& rule) { rule.ruleKind = "1"; }), Invalid,
         "不属于该账号组"},
        {"e-mail rule without key", withRule([](CEmailRC& rule) { rule.ruleKey.clear(); }), Invalid,
         "邮件规则的标识不能为空"},
        {"e-mail rule twice", twice, Invalid, "邮件规则“rule”重复"},
        {"no address", address("nobody"), Invalid, "“nobody”不是邮件地址"},
        {"address with a blank", address("a b@c"), Invalid, "不是邮件地址"},
        {"address with a line break", address("a@b\n"), Invalid, "不是邮件地址"},
        {"plain address", address("first.last_1%2+3-4@mail-1.Example.com"), Fine, ""},
        {"address on the own network", address("risk@mail"), Fine, ""},
        {"two addresses", address("a@b.c,evil"), Invalid,
         "“a@b.c,evil”不是邮件地址，每个收件人只能是一个地址，如 name@"},
        {"two whole addresses", address("a@b.c;d@e.f"), Invalid, "不是邮件地址"},
        {"address with a name", address("<a@b.c>"), Invalid, "不是邮件地址"},
        {"address in quotation marks", address("\"a\"@b.c"), Invalid, "不是邮件地址"},
        {"address with a comment", address("a(b)@c.d"), Invalid, "不是邮件地址"},
        {"address without a host", address("a@"), Invalid, "不是邮件地址"},
        {"address without a name", address("@b.c"), Invalid, "不是邮件地址"},
        {"address of a number of dots", address("a..b@c.d"), Invalid, "不是邮件地址"},
        {"host that ends with a dot", address("a@b.c."), Invalid, "不是邮件地址"},
        {"host that begins with a dash", address("a@-b.c"), Invalid, "不是邮件地址"},
        {"address with a letter that looks like another", address("a@b.с"), Invalid, "不是邮件地址"},
        {"endless address", address(std::string(300, 'a') + "@b"), Invalid, "不是邮件地址"},
        {"long subject", withRule([](CEmailRC& rule) { rule.subject = repeated("长", 201); }), Invalid,
         "邮件主题不能超过200个字符"},
        {"text that isn't UTF-8", withLimit([](CAssetsRC& limit) { limit.serverName = "\xff"; }), EErrorCode::Malformed,
         "serverName"}};
}

/// 600000 (stock), rb2501 (future), 000300 (any) on the east server; 600002 (stock) on the west server.
void putSecurities(ServiceFixture& fixture)
{
    const auto put = [&fixture](int server, const char* code, EZvTraderType type) {
        CSecurityInfo security;
        security.market = "M";
        security.securityCode = code;
        security.securityName = code;
        security.traderType = type;
        service::putSecurity({fixture.store().connection(), fixture.server(server)}, security);
    };
    put(0, "600000", EZvTraderType::Stock);
    put(0, "rb2501", EZvTraderType::Future);
    put(0, "000300", EZvTraderType::None);
    put(1, "600002", EZvTraderType::Stock);
}

const std::vector<Case>& cases()
{
    static const std::vector<Case> all = [] {
        std::vector<Case> made = listCases();
        for (const auto& more : {limitCases(), otherCases()}) {
            made.insert(made.end(), more.begin(), more.end());
        }
        return made;
    }();
    return all;
}

} // namespace

class RiskRulesTest : public ServiceTest
{
    Q_OBJECT

private slots:
    void valuesThatMakeNoSenseAreRefusedWithTheirText_data()
    {
        const support::DataRows<int> row("index");
        for (std::size_t i = 0; i < cases().size(); ++i) {
            row(cases()[i].name, static_cast<int>(i));
        }
    }
    void valuesThatMakeNoSenseAreRefusedWithTheirText()
    {
        QFETCH(int, index);
        const Case& tried = cases()[static_cast<std::size_t>(index)];
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        tried.change(*config);
        const service::Reply reply = m_fixture->save(config, "once");
        COMPARE_CODE(reply, tried.code);
        const QString text = QString::fromStdString(reply.error.errorMsg());
        QVERIFY2(text.contains(tried.text), qPrintable(text));
        QVERIFY(text.size() < 200);
        QCOMPARE(text.isEmpty(), tried.code == Fine);
        QCOMPARE(m_fixture->config(id)->revision(), std::int64_t{tried.code == Fine ? 2 : 1});
        QCOMPARE(m_fixture->number("SELECT count(*) FROM group_risk_config_history"), tried.code == Fine ? 1 : 0);
        QCOMPARE(m_fixture->number("SELECT outcome FROM audit"), static_cast<int>(tried.code));
        if (tried.code == Fine) {
            QCOMPARE(contentOf(*m_fixture->config(id)), contentOf(*config));
        }
    }

    void codesThatEnterAListAreKnownToTheServer_data()
    {
        const support::DataRows<int, QString, bool> add("type", "code", "isKnown");
        const auto row = [&add](const char* name, EZvTraderType type, const char* code, bool isKnown) {
            add(name, static_cast<int>(type), code, isKnown);
        };
        row("of the trade type", EZvTraderType::Stock, "600000", true);
        row("in another case", EZvTraderType::Future, "RB2501", true);
        row("of any trade type", EZvTraderType::Stock, "000300", true);
        row("unknown", EZvTraderType::Stock, "600001", false);
        row("of another trade type", EZvTraderType::Stock, "rb2501", false);
        row("of another server", EZvTraderType::Stock, "600002", false);
        row("where there are none of the trade type", EZvTraderType::Interbank, "600001", true);
    }
    void codesThatEnterAListAreKnownToTheServer()
    {
        QFETCH(int, type);
        QFETCH(QString, code);
        QFETCH(bool, isKnown);
        putSecurities(*m_fixture);
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        config->rcRule.list(static_cast<EZvTraderType>(type)).entries = {entry("000300"), entry(code.toStdString())};
        if (code == "000300") {
            config->rcRule.list(static_cast<EZvTraderType>(type)).entries.pop_back();
        }
        const service::Reply reply = m_fixture->save(config);
        COMPARE_CODE(reply, isKnown ? Fine : Invalid);
        const QString text = QString::fromStdString(reply.error.errorMsg());
        QCOMPARE(text, isKnown ? QString()
                               : QString("证券黑白名单第2条：证券列表中没有“%1”，只能使用列表中的证券代码").arg(code));
    }

    void unknownCodeThatIsOnTheListMayStay()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        stocks(*config) = {entry("gone1"), entry("gone2")};
        COMPARE_CODE(m_fixture->save(config), Fine);
        putSecurities(*m_fixture);
        stocks(*config) = {entry("600000"), entry("GONE2")};
        COMPARE_CODE(m_fixture->save(config), Fine);
        stocks(*config) = {entry("600000"), entry("gone1")};
        COMPARE_CODE(m_fixture->save(config), Invalid);
        stocks(*config) = {entry("600000")};
        config->rcRule.list(EZvTraderType::Future).entries = {entry("gone2")};
        COMPARE_CODE(m_fixture->save(config), Invalid);
    }

    void listsOfAHundredThousandEntriesAreSaved()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        for (int i = 0; i < 100000; ++i) {
            stocks(*config).push_back(entry(std::to_string(100000 + i)));
        }
        COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        QCOMPARE(contentOf(*m_fixture->loaded(id)), contentOf(*config));
    }

    void recordBeyondTheSizeOfADocumentIsRefused()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const RiskConfigPtr config = m_fixture->loaded(id);
        stocks(*config) = {entry(std::string(17 * 1024 * 1024, '1'))};
        const service::Reply reply = m_fixture->save(config);
        COMPARE_CODE(reply, EErrorCode::ResourceExhausted);
        QVERIFY(!reply.error.errorMsg().empty());
        QVERIFY(m_fixture->number("SELECT length(after_body) FROM audit") <= 0);
    }
};

TEST_WITHOUT_WIDGETS(RiskRulesTest)
#include "tst_risk_rules.moc"
