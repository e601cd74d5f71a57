// SPDX-License-Identifier: Apache-2.0
#include "service/sampledata/SampleData.h"
#include "service/sampledata/SampleNames.h"
#include "service/sampledata/SampleRiskConfigs.h"
#include "service/sampledata/SampleSecurities.h"
#include "service/sampledata/SampleUsers.h"

#include "service/store/Groups.h"
#include "service/store/MasterData.h"
#include "service/store/Query.h"
#include "service/store/RiskConfigs.h"
#include "service/store/Securities.h"

#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/Codec.h>
#include <nvservice/DataType.h>
#include <nvservice/SystemTag.h>
#include <utils/Translation.h>

#include <QString>

#include <algorithm>
#include <random>
#include <set>

namespace service
{

namespace
{

using nvservice::CAccountInfo;
using nvservice::CKolmAccountInfo;
using utils::EErrorCode;
using utils::NVError;

constexpr std::int64_t FirstChange = 1767576600000; // 2026-01-05 09:30 in Shanghai
constexpr int MinAccountsPerServer = 60;

/// The share of server `index` in a total.
int shareOf(int total, int servers, int index)
{
    return total / servers + (index < total % servers ? 1 : 0);
}

/// Counts the records of all servers for the progress.
class Counter
{
public:
    explicit Counter(const SampleOptions& options)
        : m_progress(options.progress),
          m_total(std::int64_t{options.groups} + options.accounts +
                  std::int64_t{options.servers} * (options.categories + options.securities))
    {
    }

    /// Throws `StoreError` (Cancelled).
    void count()
    {
        ++m_done;
        if (m_progress && !m_progress(m_done, m_total)) {
            throw StoreError(EErrorCode::Cancelled, utils::text("service", "已取消创建示例数据"));
        }
    }

private:
    const std::function<bool(std::int64_t, std::int64_t)>& m_progress;
    std::int64_t m_total;
    std::int64_t m_done = 0;
};

class ServerGenerator
{
public:
    ServerGenerator(Connection& connection, const SampleOptions& options, int index, Counter& counter)
        : m_options(options), m_counter(counter), m_index(index), m_seed(static_cast<std::uint64_t>(options.seed)),
          m_random(m_seed * 1000003 + index),
          m_server(insertSubSystem(connection, sampleServer(index).name, sampleServer(index).systemTag)),
          m_data{connection, m_server}, m_categories(sampleCategories(options.categories)),
          m_securities(sampleSecurities(options.securities))
    {
    }

    void run()
    {
        const auto& institutions = sampleInstitutions();
        for (std::size_t i = 0; i < institutions.size(); ++i) {
            putInstitution(m_data, static_cast<std::int64_t>(i) + 1, institutions[i].name);
        }
        for (const StoredUser& user : sampleUserRows()) {
            insertUser(m_data, user);
        }
        m_usable.resize(institutions.size());
        m_closed.resize(institutions.size());
        generateAccounts();
        generateProducts();
        generateSecurities();
        generateGroups();
        generateRiskConfigs();
    }

private:
    // The distributions of the standard library differ between implementations; the engine itself does not.
    int below(int limit) { return static_cast<int>(m_random() % static_cast<std::uint64_t>(limit)); }
    bool chance(int percent) { return below(100) < percent; }

    const SampleAccountType& chooseType(int number)
    {
        const auto& types = sampleAccountTypes();
        if (number < static_cast<int>(types.size())) {
            return types[static_cast<std::size_t>(number)];
        }
        int weight = below(100);
        for (const SampleAccountType& type : types) {
            if (weight < type.weight) {
                return type;
            }
            weight -= type.weight;
        }
        return types.front();
    }

    void generateAccounts()
    {
        const int count = shareOf(m_options.accounts, m_options.servers, m_index);
        const int institutions = static_cast<int>(m_usable.size());
        int made = 0;
        for (int number = 0; made < count; ++number) {
            const SampleAccountType& type = chooseType(number);
            // The first accounts go to each institution in turn, so that none is left without.
            const int institution = number < 2 * institutions ? number % institutions : below(institutions);
            CAccountInfo account;
            account.brokerType = type.type;
            account.accountId = type.prefix + QString::number(10000 + number * 7).rightJustified(7, '0').toStdString();
            account.institutionId = institution + 1;
            account.accountName = sampleInstitutions()[static_cast<std::size_t>(institution)].shortName +
                                  type.shortName + "户" + chineseNumeral(number / institutions + 1);
            const bool isClosed = number == 20 || (number > 30 && chance(2));
            const bool isExcluded = !isClosed && (number == 21 || (number > 30 && chance(3)));
            const int units = number == 1 || number == 12 || (number > 30 && chance(25)) ? 1 + below(3) : 0;
            const std::string name = account.accountName;
            for (int unit = 0; unit <= units && made < count; ++unit, ++made) {
                if (unit > 0) {
                    account.unitId = "0" + std::to_string(unit);
                    account.accountName = name + "单元" + chineseNumeral(unit);
                }
                addAccount(account, isClosed, isExcluded);
            }
        }
    }

    void addAccount(const CAccountInfo& account, bool isClosed, bool isExcluded)
    {
        m_counter.count();
        const std::int64_t row = putAccount(m_data, account, isClosed ? CKolmAccountInfo::ClosedState : 0, isExcluded);
        const auto institution = static_cast<std::size_t>(account.institutionId - 1);
        if (isClosed) {
            m_closed[institution].push_back(row);
        } else if (!isExcluded) {
            m_usable[institution].push_back(row);
        }
    }

    /// About six accounts for each product; every ninth account belongs to none.
    void generateProducts()
    {
        std::int32_t id = 0;
        for (std::size_t institution = 0; institution < m_usable.size(); ++institution) {
            StoredProduct product;
            int left = 0;
            int number = 0;
            for (const std::int64_t account : m_usable[institution]) {
                if (++number % 9 == 0) {
                    continue;
                }
                if (left == 0) {
                    ++id;
                    left = 3 + below(7);
                    product.id = id;
                    product.name = sampleInstitutions()[institution].shortName + sampleStrategyName(id);
                    product.institution = static_cast<std::int64_t>(institution) + 1;
                    product.excluded = id % 11 == 3;
                    putProduct(m_data, product);
                }
                --left;
                putProductAccount(m_data, id, account);
            }
        }
    }

    void generateSecurities()
    {
        for (const nvservice::CCategoryInfo& category : m_categories) {
            putCategory(m_data, category);
            m_counter.count();
        }
        for (const nvservice::CSecurityInfo& security : m_securities) {
            putSecurity(m_data, security);
            m_counter.count();
        }
    }

    void generateGroups()
    {
        const int count = shareOf(m_options.groups, m_options.servers, m_index);
        for (int number = 0; number < count; ++number) {
            nvservice::CAccountGroup group;
            group.groupId = number + 1;
            group.groupName = sampleStrategyName(number + m_index * 13) + "组";
            group.setRevision(1);
            // Every fortieth group is the prime broker's own and crosses institutions.
            const bool isPrimeBroker = number % 40 == 5;
            const std::size_t institution = static_cast<std::size_t>(below(static_cast<int>(m_usable.size())));
            if (!isPrimeBroker) {
                group.institutionId = static_cast<std::int32_t>(institution) + 1;
            }
            const int wanted = 1 + below(2 * m_options.membersPerGroup - 1);
            const std::vector<std::int64_t> members =
                isPrimeBroker ? membersOfAll(wanted) : membersOf(institution, wanted, number % 50 == 7);
            const Change change{number % 3 == 0 ? "editor" : "admin", FirstChange + number * std::int64_t{61000}};
            insertGroup(m_data, group, members, change);
            m_counter.count();
        }
        Query update(m_data.connection, QStringLiteral("UPDATE sub_system SET next_group_id = ? WHERE id = ?"));
        update.bind(count + 1, m_server.id).run();
    }

    void generateRiskConfigs()
    {
        const int count = shareOf(m_options.groups, m_options.servers, m_index);
        SampleRiskConfigs configs(m_categories, m_securities, m_seed * 7919 + m_index);
        std::int64_t nextRuleId = 1;
        for (int number = 0; number < count; ++number) {
            if (!SampleRiskConfigs::hasConfig(number)) {
                continue;
            }
            nvservice::CAccountGroupRCConfig config = configs.make(number, number + 1, nextRuleId);
            nvservice::setSystemTagOfAll(config, m_server.systemTag);
            config.setRevision(2);
            const Change change{"risk", FirstChange + (count + number) * std::int64_t{61000}};
            updateRiskConfig(m_data, config, nvservice::encodeRecord(config),
                             {change, {}, nvservice::DataType::GroupRiskConfig});
        }
        Query update(m_data.connection, QStringLiteral("UPDATE sub_system SET next_rule_id = ? WHERE id = ?"));
        update.bind(nextRuleId, m_server.id).run();
    }

    /// Different accounts of one institution; with `old` also one that was closed after it joined.
    std::vector<std::int64_t> membersOf(std::size_t institution, int wanted, bool old)
    {
        const std::vector<std::int64_t>& usable = m_usable[institution];
        const int count = std::min(wanted, static_cast<int>(usable.size()));
        const int start = below(static_cast<int>(usable.size()));
        std::vector<std::int64_t> members;
        members.reserve(static_cast<std::size_t>(count) + 1);
        for (int i = 0; i < count; ++i) {
            members.push_back(usable[static_cast<std::size_t>(start + i) % usable.size()]);
        }
        if (old && !m_closed[institution].empty()) {
            members.push_back(m_closed[institution].front());
        }
        return members;
    }

    std::vector<std::int64_t> membersOfAll(int wanted)
    {
        std::set<std::int64_t> members;
        for (int i = 0; i < wanted; ++i) {
            const std::vector<std::int64_t>& usable = m_usable[static_cast<std::size_t>(i) % m_usable.size()];
            members.insert(usable[static_cast<std::size_t>(below(static_cast<int>(usable.size())))]);
        }
        return {members.begin(), members.end()};
    }

    const SampleOptions& m_options;
    Counter& m_counter;
    int m_index;
    std::uint64_t m_seed;
    std::mt19937_64 m_random;
    SubSystem m_server;
    ServerData m_data;
    std::vector<nvservice::CCategoryInfo> m_categories;
    std::vector<nvservice::CSecurityInfo> m_securities;
    std::vector<std::vector<std::int64_t>> m_usable; ///< account rows by institution
    std::vector<std::vector<std::int64_t>> m_closed;
};

} // namespace

NVError generateSampleData(Store& store, const SampleOptions& options)
{
    if (options.servers < 1 || options.servers > 20 || options.groups < 0 || options.groups > 10000000 ||
        options.accounts < options.servers * MinAccountsPerServer || options.accounts > 10000000 ||
        options.membersPerGroup < 1 || options.membersPerGroup > 1000 || options.categories < 0 ||
        options.categories > 20000 || options.securities < 0 || options.securities > 100000) {
        return {EErrorCode::InvalidValue,
                utils::text("service", "示例数据的数量超出范围：分系统1至20个，每个分系统至少60个账号，"
                                       "证券分类最多20000个，证券最多100000只")};
    }
    try {
        Connection& connection = store.connection();
        const std::lock_guard<std::mutex> turn(store.writeMutex());
        Transaction transaction(connection, Transaction::EKind::Write);
        if (!loadSubSystems(connection).empty()) {
            return {EErrorCode::Duplicate, utils::text("service", "数据库中已有数据，不能再生成示例数据")};
        }
        Counter counter(options);
        for (int index = 0; index < options.servers; ++index) {
            ServerGenerator(connection, options, index, counter).run();
        }
        transaction.commit();
    } catch (const StoreError& failure) {
        return failure.fullError();
    }
    return {};
}

} // namespace service
