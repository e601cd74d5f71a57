// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <QUuid>

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>

namespace service
{

/// A user who has logged in to one server. The user's rights are read again for every request, so that a right that was
/// taken away is gone at once. A session ends when the user is disabled or gets another password.
class Session
{
public:
    Session(const StoredUser& user, std::int64_t server)
        : m_userRow(user.row), m_server(server), m_login(user.login), m_passwordHash(user.passwordHash)
    {
    }
    std::int64_t userRow() const { return m_userRow; }
    std::int64_t server() const { return m_server; }
    const std::string& login() const { return m_login; }
    /// Of the password at the log-in.
    const std::string& passwordHash() const { return m_passwordHash; }
    /// Random; differs for each log-in, also of the same user.
    const std::string& id() const { return m_id; }

private:
    std::int64_t m_userRow;
    std::int64_t m_server;
    std::string m_login;
    std::string m_passwordHash;
    std::string m_id = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
};

using SessionPtr = boost::shared_ptr<const Session>;

} // namespace service
