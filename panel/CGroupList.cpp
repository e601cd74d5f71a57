// SPDX-License-Identifier: Apache-2.0
#include "panel/CGroupList.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <typeinfo>

namespace QAV
{

using nvservice::CAccountGroup;
using nvservice::CAccountInfo;

namespace
{

/// False for a record with fields that only its class or its service knows.
template <typename Record>
bool isPlain(const Record& record)
{
    return typeid(record) == typeid(Record) && record.unknownFields.isEmpty();
}

bool canBePacked(const CAccountGroup& group)
{
    return isPlain(group) && std::all_of(group.accounts.begin(), group.accounts.end(),
                                         [](const auto& account) { return account && isPlain(*account); });
}

/// The size of a text. A record is smaller than nvservice::MaxRecordBytes.
std::uint32_t sizeOf(const std::string& text)
{
    return static_cast<std::uint32_t>(text.size());
}

} // namespace

void CGroupList::append(const boost::shared_ptr<CAccountGroup>& group)
{
    const std::size_t at = m_groups.size();
    m_groups.push_back({m_text.size(), sizeOf(group->groupName), group->groupId, m_members.size(), originOf(*group)});
    m_text += group->groupName;
    if (!canBePacked(*group)) {
        m_unpacked[at] = group;
        return;
    }
    for (const auto& account : group->accounts) {
        m_members.push_back(position(account));
    }
}

boost::shared_ptr<CAccountGroup> CGroupList::at(std::size_t position) const
{
    const auto unpacked = m_unpacked.find(position);
    if (unpacked != m_unpacked.end()) {
        return unpacked->second;
    }
    const Group& packed = m_groups[position];
    const auto group = boost::make_shared<CAccountGroup>();
    group->groupId = packed.id;
    group->groupName = nameAt(position);
    setOrigin(*group, packed.origin);
    const std::size_t end = position + 1 < m_groups.size() ? m_groups[position + 1].firstMember : m_members.size();
    for (std::size_t member = packed.firstMember; member < end; ++member) {
        const Account& known = m_accounts[m_members[member]];
        const auto account = boost::make_shared<CAccountInfo>();
        const char* const texts = m_text.data() + known.texts;
        account->accountId.assign(texts, known.idSize);
        account->unitId.assign(texts + known.idSize, known.unitSize);
        account->accountName.assign(texts + known.idSize + known.unitSize, known.nameSize);
        account->brokerType = known.brokerType;
        setOrigin(*account, known.origin);
        group->accounts.push_back(account);
    }
    return group;
}

std::uint32_t CGroupList::position(const std::string& name)
{
    const auto [place, isNew] = m_namePositions.try_emplace(name, static_cast<std::uint32_t>(m_names.size()));
    if (isNew) {
        m_names.push_back(name);
    }
    return place->second;
}

template <typename Record>
CGroupList::Origin CGroupList::originOf(const Record& record)
{
    return {record.revision(), position(record.getSystemTag()), position(record.institutionName), record.institutionId};
}

template <typename Record>
void CGroupList::setOrigin(Record& record, const Origin& origin) const
{
    record.setRevision(origin.revision);
    record.setSystemTag(m_names[origin.systemTag]);
    record.institutionName = m_names[origin.institutionName];
    record.institutionId = origin.institutionId;
}

std::uint32_t CGroupList::position(const boost::shared_ptr<CAccountInfo>& account)
{
    const auto [known, isNew] = m_known.try_emplace(account, static_cast<std::uint32_t>(m_accounts.size()));
    if (isNew) {
        m_accounts.push_back({m_text.size(), sizeOf(account->accountId), sizeOf(account->unitId),
                              sizeOf(account->accountName), account->brokerType, originOf(*account)});
        m_text += account->accountId;
        m_text += account->unitId;
        m_text += account->accountName;
    }
    return known->second;
}

} // namespace QAV
