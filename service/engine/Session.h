// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Users.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>

namespace service
{

/// A user who has logged in to one sub-system. What the user may do is read anew at every request, so that a right
/// that is taken away is gone at once. A session ends when the user is disabled or gets another password.
class Session
{
public:
    Session(const StoredUser& user, std::int64_t server);
    std::int64_t userRow() const { return m_userRow; }
    std::int64_t server() const { return m_server; }
    const std::string& logIn() const { return m_logIn; }
    /// Of the password that the session was opened with.
    const std::string& passwordHash() const { return m_passwordHash; }
    /// Random; tells this log-in from all others, also of the same user.
    const std::string& id() const { return m_id; }

private:
    std::int64_t m_userRow;
    std::int64_t m_server;
    std::string m_logIn;
    std::string m_passwordHash;
    std::string m_id;
};

using SessionPtr = boost::shared_ptr<const Session>;

} // namespace service
