// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroup.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace QAV
{

/// The groups of the table, in the order of arrival. Each is kept whole, but in a fraction of its record's memory:
/// the records of 100 000 groups with ten accounts each would take half of the client's.
class CGroupList
{
public:
    /// Not null. An account that several groups share is packed once.
    void append(const boost::shared_ptr<nvservice::CAccountGroup>& group);
    /// To be called when no group follows. Returns what only append() uses; to destroy it takes a while.
    auto finish() { return std::exchange(m_known, {}); }
    std::size_t size() const { return m_groups.size(); }
    bool empty() const { return m_groups.empty(); }
    /// A record with all that the appended one held.
    boost::shared_ptr<nvservice::CAccountGroup> at(std::size_t position) const;

    // What is looked for among all groups.
    std::int32_t idAt(std::size_t position) const { return m_groups[position].id; }
    std::string_view nameAt(std::size_t position) const
    {
        return {m_text.data() + m_groups[position].name, m_groups[position].nameSize};
    }
    const std::string& systemTagAt(std::size_t position) const { return m_names[m_groups[position].origin.systemTag]; }

private:
    /// What groups and accounts have in common. The names are positions in `m_names`.
    struct Origin {
        std::int64_t revision = 0;
        std::uint32_t systemTag = 0;
        std::uint32_t institutionName = 0;
        std::int32_t institutionId = 0;
    };
    struct Account {
        std::size_t texts = 0; ///< where they begin in `m_text`: id, unit and name
        std::uint32_t idSize = 0;
        std::uint32_t unitSize = 0;
        std::uint32_t nameSize = 0;
        nvservice::EZVBrokerType brokerType = nvservice::EZVBrokerType::Unknown;
        Origin origin;
    };
    struct Group {
        std::size_t name = 0; ///< where it begins in `m_text`
        std::uint32_t nameSize = 0;
        std::int32_t id = 0;
        std::size_t firstMember = 0; ///< position in `m_members`; the last is before the first one of the next group
        Origin origin;
    };

    std::uint32_t position(const std::string& name);
    template <typename Record>
    Origin originOf(const Record& record);
    template <typename Record>
    void setOrigin(Record& record, const Origin& origin) const;
    std::uint32_t position(const boost::shared_ptr<nvservice::CAccountInfo>& account);

    std::vector<Group> m_groups;
    std::vector<std::uint32_t> m_members; ///< positions in `m_accounts`
    std::vector<Account> m_accounts;
    /// The positions of the accounts that were packed. The pointers keep their addresses from being used again.
    std::unordered_map<boost::shared_ptr<nvservice::CAccountInfo>, std::uint32_t> m_known;
    std::string m_text;
    std::vector<std::string> m_names; ///< those that many records share
    std::unordered_map<std::string, std::uint32_t> m_namePositions;
    /// The groups that cannot be packed, by position.
    std::unordered_map<std::size_t, boost::shared_ptr<nvservice::CAccountGroup>> m_unpacked;
};

} // namespace QAV
