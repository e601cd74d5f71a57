// SPDX-License-Identifier: Apache-2.0
#include <QAV/CConfigService.h>

#include <utils/CSingletonTImpl.h>

template class QAV_EXPORT utils::CSingletonT<QAV::CConfigService>;

namespace QAV
{

bool CConfigService::testAuthByCategorySysType(int sysType) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_allowedCategorySysTypes.count(sysType) > 0;
}

void CConfigService::setAllowedCategorySysTypes(std::set<int> sysTypes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_allowedCategorySysTypes.swap(sysTypes);
}

} // namespace QAV
