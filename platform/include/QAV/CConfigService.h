#pragma once

#include <QAV/Export.h>
#include <utils/CSingletonT.h>

#include <mutex>
#include <set>

namespace QAV
{

/// What the installation lets the logged-in user work with. One per process:
/// `utils::CSingletonT<QAV::CConfigService>::instance()`. Thread-safe.
class QAV_EXPORT CConfigService
{
public:
    CConfigService();
    ~CConfigService();
    CConfigService(const CConfigService&) = delete;
    CConfigService& operator=(const CConfigService&) = delete;

    /// Whether the user may use security categories of this system type (`nvservice::CCategoryInfo::sysType`). Until
    /// the host has said which, none.
    bool testAuthByCategorySysType(int sysType) const;

    /// For the host, at each log-in: replaces the system types that the user may use.
    void setAllowedCategorySysTypes(std::set<int> sysTypes);

private:
    mutable std::mutex m_mutex;
    std::set<int> m_allowedCategorySysTypes;
};

} // namespace QAV
