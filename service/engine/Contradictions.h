// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/engine/ConsistencyCheck.h"
#include "service/store/Groups.h"

#include <nvservice/CAccountGroupRCRule.h>

#include <unordered_map>

namespace service
{

/// Collects the black and white lists of all groups of a server and finds pairs of groups that share an account and
/// contradict each other: a security is on the white list of one and on the black list of the other, for the same trade
/// type and direction.
class Contradictions
{
public:
    explicit Contradictions(const CheckOptions& options) : m_options(options) {}

    void add(const GroupPtr& group, const nvservice::CAccountGroupRCRule& rule);
    /// Returns one finding per pair and trade type, if the viewer may see both groups.
    std::vector<Finding> find() const;

private:
    struct Entry {
        std::int32_t security; ///< number of trade type and code
        bool isBlack;
        nvservice::EZVRCDirection direction;
    };
    struct ListedGroup {
        GroupPtr group;
        std::vector<Entry> entries; ///< by security
    };
    struct Security {
        nvservice::EZvTraderType traderType;
        std::string code;
        bool isBlackSomewhere = false;
        bool isWhiteSomewhere = false;
    };

    std::int32_t numberOf(nvservice::EZvTraderType traderType, const nvservice::CTradeLimitEntry& entry);
    void compare(const ListedGroup& a, const ListedGroup& b, std::vector<Finding>& findings) const;
    bool isDisputed(const Entry& entry) const;

    const CheckOptions& m_options;
    std::vector<ListedGroup> m_groups;
    std::vector<Security> m_securities;
    std::unordered_map<std::string, std::int32_t> m_numbers;
};

} // namespace service
