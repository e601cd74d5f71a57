// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/CSecurityInfo.h>

#include <random>
#include <vector>

namespace service
{

/// Generates configurations from the securities and categories of a server.
class SampleRiskConfigs
{
public:
    SampleRiskConfigs(const std::vector<nvservice::CCategoryInfo>& categories,
                      const std::vector<nvservice::CSecurityInfo>& securities, std::uint64_t seed);

    /// True if the group with this number (from 0) gets a configuration: every third of the first three thousand.
    static bool hasConfig(int number) { return number % 3 == 1 && number < 3000; }
    /// Generates lists, limits and exempt categories that the service accepts. Some configurations name categories that
    /// do not exist, some have e-mail rules. The ids of limits start at `nextRuleId`, which is advanced.
    nvservice::CAccountGroupRCConfig make(int number, std::int32_t groupId, std::int64_t& nextRuleId);

private:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<std::uint64_t>(limit)); }
    void addList(nvservice::CAccountGroupRCConfig& config, nvservice::EZvTraderType type);
    void addLimits(nvservice::CAccountGroupRCConfig& config, std::int64_t& nextRuleId);
    std::vector<std::int32_t> exemptCategories(int count);

    std::vector<const nvservice::CCategoryInfo*> m_categories;              ///< those that users may choose
    std::vector<std::vector<const nvservice::CSecurityInfo*>> m_securities; ///< by trade type, in the order of `Types`
    std::mt19937_64 m_random;
};

} // namespace service
