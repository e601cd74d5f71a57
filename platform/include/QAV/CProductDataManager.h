// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <nvservice/IData.h>
#include <utils/CSingletonT.h>

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace QAV
{

/// Names of account groups by id, for code that knows only the id. One per process:
/// `utils::CSingletonT<QAV::CProductDataManager>::instance()`. Thread-safe.
class QAV_EXPORT CProductDataManager
{
public:
    /// Replaces all names by those of the `nvservice::CAccountGroup` records in `groups`; records of other classes and
    /// null pointers are skipped.
    void initAccountGroupNameMap(const std::vector<nvservice::IDataPtr>& groups);

    /// Empty for a group that was not in the last list.
    std::string getAccountGroupName(const std::string& systemTag, int groupId) const;

private:
    mutable std::mutex m_mutex;
    std::unordered_map<std::string, std::unordered_map<int, std::string>> m_groupNames; // by tag, by group id
};

} // namespace QAV
