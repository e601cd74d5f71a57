// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"

#include "service/engine/CategoryRights.h"
#include "service/sampledata/SampleData.h"
#include "service/sampledata/SampleNames.h"
#include "service/store/Query.h"
#include "support/TestProgram.h"

#include <nvservice/CCategoryInfo.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/CSecurityInfo.h>

using namespace testservice;
using service::SampleOptions;

namespace
{

/// The service on sample data.
class Sample : private TestDatabase, public support::RealService
{
public:
    explicit Sample(const SampleOptions& options) : RealService(filled(location(), options)) {}

private:
    static QString filled(const QString& location, const SampleOptions& options)
    {
        support::makeSampleDatabase(location, options);
        return location;
    }
};

} // namespace

class SampleDataTest : public QObject
{
    Q_OBJECT

private slots:
    void sameOptionsGiveTheSameContentAndAnotherSeedGivesAnother()
    {
        SampleOptions options;
        options.groups = 200;
        Sample one(options);
        Sample two(options);
        QVERIFY(contentOf(one.store()).size() > 10000);
        QCOMPARE(contentOf(one.store()), contentOf(two.store()));
        options.seed = 2;
        Sample three(options);
        QVERIFY(contentOf(one.store()) != contentOf(three.store()));
    }

    void countsAreThoseThatWereAskedFor()
    {
        SampleOptions options;
        options.servers = 4;
        options.groups = 1001;
        options.accounts = 403;
        options.categories = 801;
        options.securities = 1234;
        options.membersPerGroup = 4;
        Sample sample(options);
        int groups = 0;
        int accounts = 0;
        for (const auto& engine : sample.engines()) {
            const auto session = engine->logIn("admin", "admin123").session;
            groups += query(*engine, session, nvservice::DataType::AccountGroup).totalCount;
            accounts += query(*engine, session, nvservice::DataType::Account).totalCount;
            QCOMPARE(query(*engine, session, nvservice::DataType::Category, "-1_-1").totalCount, 801);
            QCOMPARE(query(*engine, session, nvservice::DataType::Security).totalCount, 1234);
        }
        QCOMPARE(static_cast<int>(sample.engines().size()), 4);
        QCOMPARE(groups, 1001);
        QCOMPARE(accounts, 403);
        QVERIFY(sample.store().checkIntegrity().isSuccess());
    }

    void everyServerHasEveryCase()
    {
        SampleOptions options;
        options.accounts = 180;
        Sample sample(options);
        for (const auto& engine : sample.engines()) {
            const auto session = engine->logIn("admin", "admin123").session;
            std::set<int> types;
            std::set<std::string> withoutProduct;
            int units = 0;
            int closed = 0;
            int excluded = 0;
            int leadingZeros = 0;
            for (const auto& data : query(*engine, session, nvservice::DataType::Account).records) {
                const auto record = boost::dynamic_pointer_cast<nvservice::CKolmAccountInfo>(data);
                types.insert(static_cast<int>(record->account->brokerType));
                withoutProduct.insert(record->getKey());
                units += record->account->unitId.empty() ? 0 : 1;
                closed += record->stateCode == nvservice::CKolmAccountInfo::ClosedState ? 1 : 0;
                excluded += record->excluded ? 1 : 0;
                leadingZeros += record->account->accountId.front() == '0' ? 1 : 0;
            }
            QCOMPARE(types, (std::set<int>{1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 1001, 1002, 15002}));
            QVERIFY(units > 0 && closed > 0 && excluded > 0 && leadingZeros > 0);

            const auto list = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(
                query(*engine, session, nvservice::DataType::Product).records.at(0));
            int excludedProducts = 0;
            for (const auto& data : list->products) {
                const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(data);
                excludedProducts += product->excluded ? 1 : 0;
                QVERIFY(!product->accounts.empty());
                for (const auto& member : product->accounts) {
                    withoutProduct.erase(member->getKey());
                }
            }
            QVERIFY(excludedProducts > 0);
            QVERIFY(!withoutProduct.empty());

            std::set<int> institutions;
            for (const auto& data : query(*engine, session, nvservice::DataType::AccountGroup).records) {
                const auto record = boost::dynamic_pointer_cast<CAccountGroup>(data);
                institutions.insert(record->institutionId);
                QVERIFY(!record->accounts.empty());
                for (const auto& member : record->accounts) {
                    QVERIFY(record->institutionId == None || member->institutionId == record->institutionId);
                    QCOMPARE(member->getSystemTag(), engine->systemTag());
                }
            }
            QVERIFY(institutions.count(None) == 1 && institutions.size() > 5);
        }
    }

    void productsOfManyAccountsComeInRecordsThatCanBeSent()
    {
        SampleOptions options;
        options.servers = 1;
        options.groups = 1;
        options.accounts = 16000;
        Sample sample(options);
        const auto session = sample.engines().at(0)->logIn("admin", "admin123").session;
        const service::Reply reply = query(*sample.engines().at(0), session, nvservice::DataType::Product);
        QVERIFY(reply.records.size() > 1);
        QCOMPARE(reply.totalCount, static_cast<int>(reply.records.size()));
        std::set<std::string> products;
        std::size_t accounts = 0;
        for (const auto& data : reply.records) {
            const auto list = boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(data);
            QCOMPARE(list->getSystemTag(), sample.engines().at(0)->systemTag());
            std::size_t listed = 0;
            for (const auto& product : list->products) {
                QVERIFY(products.insert(product->getKey()).second);
                listed += boost::dynamic_pointer_cast<nvservice::CProductInfo>(product)->accounts.size();
            }
            QVERIFY(listed > 0 && listed <= 10000);
            accounts += listed;
        }
        service::Connection& connection = sample.store().connection();
        service::Query count(connection, QStringLiteral("SELECT (SELECT count(*) FROM product), count(*)"
                                                        " FROM product_account"));
        QVERIFY(count.runAndNext());
        QCOMPARE(static_cast<std::int64_t>(products.size()), count.integer(0));
        QCOMPARE(static_cast<std::int64_t>(accounts), count.integer(1));
    }

    void categoriesAreATreeWithEveryCase()
    {
        Sample sample({});
        const auto& engine = sample.engines().back();
        const service::LogInReply admin = engine->logIn("admin", "admin123");
        const std::set<int> allowed = service::categorySysTypesOf(admin.user->rights);
        std::map<int, int> depths = {{-1, 0}};
        std::map<std::string, int> names;
        int internal = 0;
        int forbidden = 0;
        int deepest = 0;
        for (const auto& data : query(*engine, admin.session, nvservice::DataType::Category).records) {
            const auto category = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(data);
            QVERIFY(depths.count(category->parentId) == 1 && depths.count(category->categoryId) == 0);
            depths[category->categoryId] = depths[category->parentId] + 1;
            deepest = std::max(deepest, depths[category->categoryId]);
            internal += category->categoryType == nvservice::CCategoryInfo::InternalCategoryType ? 1 : 0;
            forbidden += allowed.count(category->sysType) == 0 ? 1 : 0;
            ++names[category->categoryName];
        }
        QCOMPARE(deepest, 3);
        QVERIFY(internal > 3 && forbidden > 3);
        QCOMPARE(names["国债"], 2);
        QVERIFY(depths.size() > 300);
    }

    void everyTradeTypeHasSecuritiesAndTwoMarketsShareACode()
    {
        Sample sample({});
        const auto& engine = sample.engines().front();
        const auto session = engine->logIn("admin", "admin123").session;
        std::map<std::string, int> markets;
        std::map<int, int> types;
        for (const auto& data : query(*engine, session, nvservice::DataType::Security).records) {
            const auto security = boost::dynamic_pointer_cast<nvservice::CSecurityInfo>(data);
            ++types[static_cast<int>(security->traderType)];
            ++markets[security->securityCode];
            QVERIFY(!security->securityName.empty());
        }
        QCOMPARE(types.size(), std::size_t{9});
        QVERIFY(types[0] > 0 && types[1] > 1000 && types[2] > 100);
        QCOMPARE(markets["000001"], 2);
    }

    void everySampleConfigurationCanBeSavedAsItIs()
    {
        Sample sample({});
        const auto& engine = sample.engines().front();
        const auto session = engine->logIn("admin", "admin123").session;
        int withLists = 0;
        int withUnknown = 0;
        int withRules = 0;
        for (const auto& data : query(*engine, session, nvservice::DataType::AccountGroup).records) {
            const int id = boost::dynamic_pointer_cast<CAccountGroup>(data)->groupId;
            const auto reply = query(*engine, session, nvservice::DataType::GroupRiskConfig, std::to_string(id));
            QCOMPARE(reply.totalCount, 1);
            const auto config = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(reply.records[0]);
            withLists += config->rcRule.lists.empty() ? 0 : 1;
            withRules += config->emailRCs.empty() ? 0 : 1;
            const auto& exempt = config->ratProofSetting.washTradeExemptCategoryIds;
            withUnknown += !exempt.empty() && exempt.back() == 990002 ? 1 : 0;
            const auto saved =
                operateOn(nvservice::DataType::GroupRiskConfig, *engine, session, EZvDataOperation::Modify, config);
            COMPARE_CODE(saved, EErrorCode::Success);
        }
        QVERIFY(withLists > 10 && withLists < 40);
        QVERIFY(withUnknown > 0 && withRules > 0);
    }

    void documentedLogInsWork()
    {
        Sample sample({});
        const std::size_t servers = sample.engines().size();
        std::size_t next = 0;
        for (const service::SampleUser& user : service::sampleUsers()) {
            const auto& engine = sample.engines().at(next++ % servers);
            const service::LogInReply reply = engine->logIn(user.login, user.password);
            COMPARE_CODE(reply, user.login == "disabled" ? EErrorCode::NotLoggedIn : EErrorCode::Success);
            if (reply.user) {
                QCOMPARE(reply.user->institutionId, user.institutionId == 0 ? None : user.institutionId);
            }
        }
    }

    void everySampleGroupCanBeSavedAsItIs()
    {
        Sample sample({});
        const auto& engine = sample.engines().front();
        const auto session = engine->logIn("admin", "admin123").session;
        for (const auto& data : query(*engine, session, nvservice::DataType::AccountGroup).records) {
            COMPARE_CODE(operate(*engine, session, EZvDataOperation::Modify, data), EErrorCode::Success);
        }
        const auto added = group("新增组", 1, {future("800010000")});
        COMPARE_CODE(operate(*engine, session, EZvDataOperation::Add, added), EErrorCode::Success);
    }

    void storeInUseAndOptionsOutOfRangeAreRefused()
    {
        ServiceFixture fixture;
        const QStringList before = fixture.content();
        QCOMPARE(static_cast<int>(service::generateSampleData(fixture.store(), {}).code()),
                 static_cast<int>(EErrorCode::Duplicate));
        QCOMPARE(fixture.content(), before);
        const auto codeOf = [](auto change) {
            SampleOptions options;
            change(options);
            const TestDatabase database;
            const auto store = support::openStore(database.location());
            return static_cast<int>(service::generateSampleData(*store, options).code());
        };
        const int invalid = static_cast<int>(EErrorCode::InvalidValue);
        QCOMPARE(codeOf([](SampleOptions& options) { options.servers = 0; }), invalid);
        QCOMPARE(codeOf([](SampleOptions& options) { options.groups = -1; }), invalid);
        QCOMPARE(codeOf([](SampleOptions& options) { options.accounts = 100; }), invalid);
        QCOMPARE(codeOf([](SampleOptions& options) { options.membersPerGroup = 0; }), invalid);
        QCOMPARE(codeOf([](SampleOptions& options) { options.categories = 20001; }), invalid);
        QCOMPARE(codeOf([](SampleOptions& options) { options.securities = -1; }), invalid);
        QCOMPARE(codeOf([](SampleOptions& options) { options.groups = options.categories = options.securities = 0; }),
                 0);
    }

    void numeralsAreChinese_data()
    {
        const support::DataRows<int, QString> row("number", "text");
        for (const QString pair :
             {"1 一", "10 十", "11 十一", "20 二十", "21 二十一", "100 一百", "101 一百零一", "110 一百一十",
              "999 九百九十九", "1000 一千", "1001 一千零一", "1010 一千零一十", "4167 四千一百六十七", "10000 一万",
              "10001 一万零一", "12345 一万二千三百四十五", "120000 十二万"}) {
            row(pair, pair.section(' ', 0, 0).toInt(), pair.section(' ', 1));
        }
    }
    void numeralsAreChinese()
    {
        QFETCH(int, number);
        QFETCH(QString, text);
        QCOMPARE(QString::fromStdString(service::chineseNumeral(number)), text);
    }
};

TEST_WITHOUT_WIDGETS(SampleDataTest)
#include "tst_sample_data.moc"
