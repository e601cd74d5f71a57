// SPDX-License-Identifier: Apache-2.0
#include <QAV/CUserManager.h>

#include <utils/CSingletonTImpl.h>

template class QAV_EXPORT utils::CSingletonT<QAV::CUserManager>;

namespace QAV
{

bool CUserManager::checkUserAuth(int right) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_user && m_user->rights.count(right) > 0;
}

boost::shared_ptr<nvservice::CUserInfo> CUserManager::getUserInfoPtr() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_user;
}

void CUserManager::setUserInfo(const boost::shared_ptr<nvservice::CUserInfo>& user)
{
    boost::shared_ptr<nvservice::CUserInfo> copy;
    if (user) {
        copy = boost::dynamic_pointer_cast<nvservice::CUserInfo>(user->copy());
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_user.swap(copy);
}

} // namespace QAV
