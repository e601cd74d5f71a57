// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <utils/CSingletonT.h>

#include <mutex>
#include <set>

namespace QAV
{

/// What the logged-in user may use in this installation. One per process:
/// `utils::CSingletonT<QAV::CConfigService>::instance()`. Thread-safe.
class QAV_EXPORT CConfigService
{
public:
    /// True if the user may use security categories of this system type (`nvservice::CCategoryInfo::sysType`). False
    /// for all types until the host has set the allowed ones.
    bool testAuthByCategorySysType(int sysType) const;

    /// For the host, after each log-in: replaces the system types that the user may use.
    void setAllowedCategorySysTypes(std::set<int> sysTypes);

private:
    mutable std::mutex m_mutex;
    std::set<int> m_allowedCategorySysTypes;
};

} // namespace QAV
