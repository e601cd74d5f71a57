// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>
#include <nvservice/CUserInfo.h>
#include <utils/CSingletonT.h>

#include <boost/shared_ptr.hpp>

#include <mutex>

namespace QAV
{

/// The logged-in user and their rights. One per process: `utils::CSingletonT<QAV::CUserManager>::instance()`.
/// Thread-safe. With these rights the client hides what would be refused; the servers enforce them.
class QAV_EXPORT CUserManager
{
public:
    /// True if a user is logged in and has the right (see nvservice/UserRight.h).
    bool checkUserAuth(int right) const;

    /// The logged-in user; null if there is none. The record belongs to the manager and must not be changed. It does
    /// not change when another user logs in.
    boost::shared_ptr<nvservice::CUserInfo> getUserInfoPtr() const;

    /// For the host: stores a copy of `user`; null means logged out.
    void setUserInfo(const boost::shared_ptr<nvservice::CUserInfo>& user);

private:
    mutable std::mutex m_mutex;
    boost::shared_ptr<nvservice::CUserInfo> m_user;
};

} // namespace QAV
