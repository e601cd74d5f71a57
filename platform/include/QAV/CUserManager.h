#pragma once

#include <QAV/Export.h>
#include <nvservice/CUserInfo.h>
#include <utils/CSingletonT.h>

#include <boost/shared_ptr.hpp>

#include <mutex>

namespace QAV
{

/// Who is logged in and what he may do. One per process: `utils::CSingletonT<QAV::CUserManager>::instance()`.
/// Thread-safe. The rights here let the client hide what would be refused; the servers decide.
class QAV_EXPORT CUserManager
{
public:
    CUserManager();
    ~CUserManager();
    CUserManager(const CUserManager&) = delete;
    CUserManager& operator=(const CUserManager&) = delete;

    /// True when a user is logged in and holds the right (see nvservice/UserRight.h). Without a user nothing is
    /// allowed.
    bool checkUserAuth(int right) const;

    /// The logged-in user, null when there is none. The record is the manager's own copy and is not to be changed; it
    /// stays as it is when another user logs in.
    boost::shared_ptr<nvservice::CUserInfo> getUserInfoPtr() const;

    /// For the host: keeps a copy of `user`; null logs out.
    void setUserInfo(const boost::shared_ptr<nvservice::CUserInfo>& user);

private:
    mutable std::mutex m_mutex;
    boost::shared_ptr<nvservice::CUserInfo> m_user;
};

} // namespace QAV
