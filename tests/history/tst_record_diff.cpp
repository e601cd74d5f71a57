// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/ListDiff.h"
#include "history/RecordText.h"
#include "support/TestProgram.h"

#include <nvservice/Codec.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <random>

using namespace history_test;
using nvservice::CAccountGroup;
using nvservice::CAccountGroupRCConfig;
using QAV::DiffLine;
using QAV::EArea;
using QAV::EChange;

namespace
{

/// What the lines of an area make of the list before: those that changed in any way are taken out, and those with a
/// place in the list after are put there.
template <typename Item>
std::vector<Item> applied(const std::vector<DiffLine>& lines, EArea area, const std::vector<Item>& before,
                          const std::vector<Item>& after,
                          nvservice::EZvTraderType type = nvservice::EZvTraderType::None)
{
    std::vector<bool> isTaken(before.size(), false);
    std::map<std::size_t, Item> placed;
    for (const DiffLine& line : lines) {
        if (line.area != area || line.traderType != type || line.change == EChange::Unchanged) {
            continue;
        }
        if (line.beforeRow >= 0) {
            isTaken[std::size_t(line.beforeRow)] = true;
        }
        if (line.afterRow >= 0) {
            placed[std::size_t(line.afterRow)] = after[std::size_t(line.afterRow)];
        }
    }
    std::vector<Item> kept;
    for (std::size_t row = 0; row < before.size(); ++row) {
        if (!isTaken[row]) {
            kept.push_back(before[row]);
        }
    }
    std::vector<Item> result;
    auto next = kept.begin();
    while (next != kept.end() || placed.count(result.size()) != 0) {
        const auto place = placed.find(result.size());
        result.push_back(place != placed.end() ? place->second : *next++);
    }
    return result;
}

bool isChanged(const std::vector<DiffLine>& lines, EArea area)
{
    return std::any_of(lines.begin(), lines.end(),
                       [area](const DiffLine& line) { return line.area == area && line.change != EChange::Unchanged; });
}

CAccountGroup applied(const std::vector<DiffLine>& lines, const CAccountGroup& before, const CAccountGroup& after)
{
    CAccountGroup result = before;
    if (isChanged(lines, EArea::GroupName)) {
        result.groupName = after.groupName;
    }
    if (isChanged(lines, EArea::Institution)) {
        result.institutionId = after.institutionId;
        result.institutionName = after.institutionName;
    }
    result.accounts = applied(lines, EArea::Accounts, before.accounts, after.accounts);
    return result;
}

CAccountGroupRCConfig applied(const std::vector<DiffLine>& lines, const CAccountGroupRCConfig& before,
                              const CAccountGroupRCConfig& after)
{
    CAccountGroupRCConfig result = before;
    result.rcRule.lists.clear();
    const auto entriesOf = [](const CAccountGroupRCConfig& config, nvservice::EZvTraderType type) {
        const auto* const list = config.rcRule.findList(type);
        return list ? list->entries : std::vector<nvservice::CTradeLimitEntry>();
    };
    for (const nvservice::CTradeLimitList& list : after.rcRule.lists) {
        result.rcRule.list(list.traderType).entries =
            applied(lines, EArea::TradeLimits, entriesOf(before, list.traderType), list.entries, list.traderType);
    }
    result.assetsRCs = applied(lines, EArea::AssetLimits, before.assetsRCs, after.assetsRCs);
    result.emailRCs = applied(lines, EArea::EmailRules, before.emailRCs, after.emailRCs);
    auto& setting = result.ratProofSetting;
    const auto& wanted = after.ratProofSetting;
    setting.reverseOrderExemptCategoryIds =
        applied(lines, EArea::ReverseOrderCategories, setting.reverseOrderExemptCategoryIds,
                wanted.reverseOrderExemptCategoryIds);
    setting.washTradeExemptCategoryIds = applied(lines, EArea::WashTradeCategories, setting.washTradeExemptCategoryIds,
                                                 wanted.washTradeExemptCategoryIds);
    const auto take = [&](EArea area, bool nvservice::CRatProofSetting::* field) {
        if (isChanged(lines, area)) {
            setting.*field = wanted.*field;
        }
    };
    take(EArea::ReverseOrderCheck, &nvservice::CRatProofSetting::reverseOrderCheck);
    take(EArea::ReverseOrderWarnOnly, &nvservice::CRatProofSetting::reverseOrderWarnOnly);
    take(EArea::NotCountCancelledOrders, &nvservice::CRatProofSetting::notCountCancelledOrders);
    take(EArea::WashTradeForbidden, &nvservice::CRatProofSetting::washTradeForbidden);
    return result;
}

/// Records with few different values, so that two of them have much in common.
class Randomness
{
public:
    explicit Randomness(unsigned seed) : m_random(seed) {}

    int below(int limit) { return int(m_random() % unsigned(limit)); }
    bool coin() { return below(2) == 0; }

    CAccountGroup group()
    {
        CAccountGroup group;
        group.groupId = 7;
        group.groupName = "组" + std::to_string(below(2));
        group.institutionId = below(2);
        for (int i = below(8); i > 0; --i) {
            const auto account = boost::make_shared<nvservice::CAccountInfo>();
            account->accountId = std::to_string(below(6));
            account->accountName = "名" + std::to_string(below(2));
            group.accounts.push_back(account);
        }
        return group;
    }

    CAccountGroupRCConfig config()
    {
        CAccountGroupRCConfig config;
        config.groupId = 7;
        for (const auto type : {nvservice::EZvTraderType::Stock, nvservice::EZvTraderType::Future}) {
            if (coin()) {
                auto& entries = config.rcRule.list(type).entries;
                for (int i = below(12); i > 0; --i) {
                    nvservice::CTradeLimitEntry entry;
                    entry.securityCode = std::to_string(below(8)); // also twice
                    entry.direction = nvservice::EZVRCDirection(below(3));
                    entries.push_back(entry);
                }
            }
        }
        for (int id = 0; id < 4; ++id) {
            if (coin()) {
                nvservice::CAssetsRC limit;
                limit.ruleId = id;
                limit.threshold = below(2);
                config.assetsRCs.push_back(limit);
                nvservice::CEmailRC rule;
                rule.ruleKey = std::to_string(id);
                rule.enabled = coin();
                config.emailRCs.push_back(rule);
                config.ratProofSetting.washTradeExemptCategoryIds.push_back(id);
                config.ratProofSetting.reverseOrderExemptCategoryIds.push_back(9 - id);
            }
        }
        std::shuffle(config.assetsRCs.begin(), config.assetsRCs.end(), m_random);
        std::shuffle(config.ratProofSetting.washTradeExemptCategoryIds.begin(),
                     config.ratProofSetting.washTradeExemptCategoryIds.end(), m_random);
        config.ratProofSetting.reverseOrderCheck = coin();
        config.ratProofSetting.reverseOrderWarnOnly = coin();
        config.ratProofSetting.notCountCancelledOrders = coin();
        config.ratProofSetting.washTradeForbidden = coin();
        return config;
    }

private:
    std::mt19937 m_random;
};

bool isEqual(const nvservice::IData& a, const nvservice::IData& b)
{
    return nvservice::encodeRecord(a).binaryEqual(nvservice::encodeRecord(b));
}

/// "新增 600001", for each line of the area that differs.
QStringList told(const nvservice::IData* before, const nvservice::IData* after, EArea area)
{
    QStringList texts;
    for (const DiffLine& line : QAV::diffOf(before, after)) {
        if (line.area == area && line.change != EChange::Unchanged) {
            texts << QAV::changeText(line.change) + '|' + QAV::valueText(line, before, line.beforeRow, {}) + '|' +
                         QAV::valueText(line, after, line.afterRow, {});
        }
    }
    return texts;
}

} // namespace

/// What two states of a record differ in.
class RecordDiffTest : public QObject
{
    Q_OBJECT

private slots:
    void whatDiffersMakesTheStateAfterOfTheStateBefore()
    {
        for (unsigned seed = 1; seed <= 3000; ++seed) {
            Randomness random(seed);
            const CAccountGroup groupBefore = random.group();
            const CAccountGroup groupAfter = random.group();
            const auto groupLines = QAV::diffOf(&groupBefore, &groupAfter);
            QVERIFY2(isEqual(applied(groupLines, groupBefore, groupAfter), groupAfter),
                     qPrintable(QString::number(seed)));

            const CAccountGroupRCConfig before = random.config();
            const CAccountGroupRCConfig after = random.config();
            const auto lines = QAV::diffOf(&before, &after);
            QVERIFY2(isEqual(applied(lines, before, after), after), qPrintable(QString::number(seed)));
        }
    }

    void everyItemHasOneLine()
    {
        for (unsigned seed = 1; seed <= 500; ++seed) {
            Randomness random(seed);
            const CAccountGroup before = random.group();
            const CAccountGroup after = random.group();
            std::multiset<int> rowsBefore;
            std::multiset<int> rowsAfter;
            int last = -1;
            for (const DiffLine& line : QAV::diffOf(&before, &after)) {
                if (line.area == EArea::Accounts) {
                    rowsBefore.insert(line.beforeRow);
                    rowsAfter.insert(line.afterRow);
                    QVERIFY(line.afterRow < 0 || line.afterRow > last);
                    last = std::max(last, line.afterRow);
                }
            }
            for (int row = 0; row < int(before.accounts.size()); ++row) {
                QCOMPARE(int(rowsBefore.count(row)), 1);
            }
            for (int row = 0; row < int(after.accounts.size()); ++row) {
                QCOMPARE(int(rowsAfter.count(row)), 1);
            }
        }
    }

    void equalStatesHaveOnlyUnchangedLines()
    {
        for (unsigned seed = 1; seed <= 200; ++seed) {
            const CAccountGroupRCConfig config = Randomness(seed).config();
            const auto copy = config.copy();
            const auto lines = QAV::diffOf(&config, copy.get());
            QVERIFY(lines.size() >= 4);
            for (const DiffLine& line : lines) {
                QCOMPARE(int(line.change), int(EChange::Unchanged));
            }
        }
    }

    void oneNewSecurityIsOneLine()
    {
        const auto before = makeConfig(7, {"600001", "600003", "600004"});
        const auto after = makeConfig(7, {"600001", "600002", "600003", "600004"});
        QCOMPARE(told(before.get(), after.get(), EArea::TradeLimits),
                 QStringList("新增||黑名单 600002 证券600002 双向"));
    }

    void aSecurityOnTheOtherListHasChanged()
    {
        const auto before = makeConfig(7, {"600001", "600002"});
        const auto after = makeConfig(7, {"600001", "600002"});
        after->rcRule.lists[0].entries[1].listKind = nvservice::EZVRCListKind::White;
        QCOMPARE(told(before.get(), after.get(), EArea::TradeLimits),
                 QStringList("修改|黑名单 600002 证券600002 双向|白名单 600002 证券600002 双向"));
    }

    void anAccountThatWasDraggedUpHasMovedAlone()
    {
        const auto before = makeGroup(7, "组", {"1", "2", "3", "4", "5"});
        const auto after = makeGroup(7, "组", {"5", "1", "2", "3", "4"});
        QCOMPARE(told(before.get(), after.get(), EArea::Accounts), QStringList("移动|证券账号 5 户5|证券账号 5 户5"));
    }

    void aNewGroupAndADeletedOneAreToldAsAWhole()
    {
        const auto group = makeGroup(7, "组", {"1"});
        QCOMPARE(told(nullptr, group.get(), EArea::GroupName), QStringList("新增||组"));
        QCOMPARE(told(nullptr, group.get(), EArea::Accounts), QStringList("新增||证券账号 1 户1"));
        QCOMPARE(told(group.get(), nullptr, EArea::GroupName), QStringList("移除|组|"));
        QCOMPARE(told(group.get(), nullptr, EArea::Accounts), QStringList("移除|证券账号 1 户1|"));
    }

    void whatNobodyCanReadIsToldIfItDiffers()
    {
        const auto before = makeGroup(7, "组");
        const auto after = makeGroup(7, "组");
        QVERIFY(told(before.get(), after.get(), EArea::Other).isEmpty());
        bson::BSONObjBuilder later;
        later.append("later", 1);
        after->unknownFields = later.obj();
        QCOMPARE(told(before.get(), after.get(), EArea::Other), QStringList("修改|见原始记录|见原始记录"));
    }

    void recordsOfDifferentClassesHaveNothingToCompare()
    {
        const auto group = makeGroup(7, "组");
        const auto config = makeConfig(7, {});
        QVERIFY(QAV::diffOf(group.get(), config.get()).empty());
        QVERIFY(QAV::diffOf(nullptr, nullptr).empty());
    }

    void theLongestIncreasingSequenceIsFound()
    {
        for (unsigned seed = 1; seed <= 300; ++seed) {
            Randomness random(seed);
            std::vector<int> values;
            for (int i = random.below(9); i > 0; --i) {
                values.push_back(random.below(10) - 1);
            }
            const std::vector<int> found = QAV::longestIncreasing(values);
            for (std::size_t i = 0; i < found.size(); ++i) {
                QVERIFY(values[std::size_t(found[i])] >= 0);
                QVERIFY(i == 0 ||
                        (found[i] > found[i - 1] && values[std::size_t(found[i])] > values[std::size_t(found[i - 1])]));
            }
            std::size_t longest = 0;
            for (unsigned chosen = 0; chosen < 1U << values.size(); ++chosen) {
                int last = -1;
                std::size_t length = 0;
                for (std::size_t i = 0; i < values.size(); ++i) {
                    if ((chosen >> i & 1U) == 0) {
                        continue;
                    }
                    if (values[i] <= last) {
                        length = 0;
                        break;
                    }
                    last = values[i];
                    ++length;
                }
                longest = std::max(longest, length);
            }
            QCOMPARE(found.size(), longest);
        }
    }
};

TEST_WITH_WIDGETS(RecordDiffTest)
#include "tst_record_diff.moc"
