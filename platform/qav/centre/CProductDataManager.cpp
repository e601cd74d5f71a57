// SPDX-License-Identifier: Apache-2.0
#include <QAV/CProductDataManager.h>

#include <nvservice/CAccountGroup.h>
#include <utils/CSingletonTImpl.h>

template class QAV_EXPORT utils::CSingletonT<QAV::CProductDataManager>;

namespace QAV
{

void CProductDataManager::initAccountGroupNameMap(const std::vector<nvservice::IDataPtr>& groups)
{
    decltype(m_groupNames) names;
    for (const nvservice::IDataPtr& record : groups) {
        if (const auto* group = dynamic_cast<const nvservice::CAccountGroup*>(record.get())) {
            auto& ofServer = names[group->getSystemTag()];
            if (ofServer.empty()) {
                ofServer.reserve(groups.size());
            }
            ofServer[group->groupId] = group->groupName;
        }
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_groupNames.swap(names);
}

std::string CProductDataManager::getAccountGroupName(const std::string& systemTag, int groupId) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto server = m_groupNames.find(systemTag);
    if (server == m_groupNames.end()) {
        return {};
    }
    const auto name = server->second.find(groupId);
    return name == server->second.end() ? std::string() : name->second;
}

} // namespace QAV
