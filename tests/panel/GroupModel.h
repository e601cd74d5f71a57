// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountInfo.h>
#include <nvservice/CRatProofSetting.h>
#include <utils/EErrorCode.h>

#include <QStringList>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace service
{
class Store;
struct SubSystem;
} // namespace service

namespace panel_test
{

constexpr int NoInstitution = 0;

/// What the user can set on the two pages of exempt categories, but for the categories.
struct TradeChecks {
    bool reverseOrderCheck = false;
    bool reverseOrderWarnOnly = false;
    bool notCountCancelledOrders = false;
    bool washTradeForbidden = false;

    bool operator==(const TradeChecks& other) const;
};
TradeChecks checksOf(const nvservice::CRatProofSetting& setting);

/// What the user puts into the group dialog.
struct GroupInput {
    std::string name;
    int institution = NoInstitution;
    std::vector<std::int64_t> accounts; ///< in the order of the table
};

/// A group as the server has it.
struct ModelGroup {
    int id = 0;
    std::int64_t revision = 0;
    GroupInput input;
    std::int64_t riskRevision = 1;
    std::int64_t foreignRiskRevision = 0; ///< of the last change of the settings that somebody else has made
    TradeChecks checks;
};
using ModelGroups = std::map<int, ModelGroup>;

struct ModelAccount {
    std::int64_t row = 0;
    nvservice::CAccountInfo info; ///< with the system tag of its server
    bool isOffered = false;
};

/// What the database of one server has to hold, computed without the service: each operation says how it has to end and
/// is applied when it succeeds. The user may do everything and belongs to no institution.
class GroupModel
{
public:
    /// Starts from what the database holds.
    GroupModel(service::Store& store, const service::SubSystem& server);

    utils::EErrorCode add(const GroupInput& input);
    /// @param revision  of the state that the user has seen
    utils::EErrorCode modify(int id, std::int64_t revision, const GroupInput& input);
    utils::EErrorCode remove(int id, std::int64_t revision);
    utils::EErrorCode saveRisk(int id, std::int64_t revision, const TradeChecks& checks, bool byColleague);

    const ModelGroups& groups() const { return m_groups; }
    const std::map<int, std::string>& institutions() const { return m_institutions; }
    const std::vector<ModelAccount>& accounts() const { return m_accounts; }
    const ModelAccount& account(std::int64_t row) const;

    /// The whole state as lines; the same of the database.
    QStringList lines() const;
    static QStringList linesOf(service::Store& store, const service::SubSystem& server);

private:
    utils::EErrorCode check(int id, const GroupInput& input) const;
    void noteOperation() { ++m_audits; }

    ModelGroups m_groups;
    int m_nextId = 1;
    std::int64_t m_audits = 0;
    std::int64_t m_histories = 0;
    std::map<int, std::string> m_institutions;
    std::vector<ModelAccount> m_accounts;
};

} // namespace panel_test
