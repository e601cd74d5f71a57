// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClientCenter.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/NoInstitutionId.h>

#include <set>
#include <string>

namespace support
{

/// The client centre of the process.
QAV::CKolmClientCenter& centre();

boost::shared_ptr<nvservice::CUserInfo> makeUser(const std::string& id, const std::set<int>& rights,
                                                 int institutionId = nvservice::NoInstitutionId);
/// Makes this the user of the process; null: nobody is logged in.
void logInAs(const boost::shared_ptr<nvservice::CUserInfo>& user);

} // namespace support
