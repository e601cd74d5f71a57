// SPDX-License-Identifier: Apache-2.0
#include "support/qav/Client.h"

#include <QAV/CUserManager.h>
#include <utils/CSingletonT.h>

#include <boost/make_shared.hpp>

namespace support
{

QAV::CKolmClientCenter& centre()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

boost::shared_ptr<nvservice::CUserInfo> makeUser(const std::string& id, const std::set<int>& rights, int institutionId)
{
    auto user = boost::make_shared<nvservice::CUserInfo>();
    user->userId = id;
    user->rights = rights;
    user->institutionId = institutionId;
    return user;
}

void logInAs(const boost::shared_ptr<nvservice::CUserInfo>& user)
{
    utils::CSingletonT<QAV::CUserManager>::instance()->setUserInfo(user);
}

} // namespace support
