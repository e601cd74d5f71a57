// SPDX-License-Identifier: Apache-2.0
#include "service/engine/Session.h"

#include <QUuid>

namespace service
{

Session::Session(const StoredUser& user, std::int64_t server)
    : m_userRow(user.row), m_server(server), m_logIn(user.login), m_passwordHash(user.passwordHash),
      m_id(QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString())
{
}

} // namespace service
