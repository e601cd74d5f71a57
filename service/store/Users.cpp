// SPDX-License-Identifier: Apache-2.0
#include "service/store/Users.h"
#include "service/store/Query.h"

#include <unordered_map>

namespace service
{

namespace
{

const QString UserColumns = QStringLiteral("SELECT u.id, u.login, u.display_name, u.password_hash, u.institution_id,"
                                           " u.enabled FROM app_user u WHERE u.server_id = ?");

/// Without rights.
StoredUser userOfRow(const Query& row)
{
    return {row.integer(0), row.text(1), row.text(2), row.text(3), row.optionalInteger(4), row.integer(5) != 0, {}};
}

/// The user who meets the condition. The rights are read as rows without a login.
template <typename Key>
std::optional<StoredUser> readUser(const ServerData& data, const QString& condition, const Key& key)
{
    Query query(data.connection, UserColumns + condition +
                                     QStringLiteral(" UNION ALL SELECT r.right_id, NULL, NULL, NULL, NULL, NULL"
                                                    " FROM app_user u JOIN user_right r ON r.user_id = u.id"
                                                    " WHERE u.server_id = ?") +
                                     condition);
    query.bind(data.server.id, key, data.server.id, key);
    std::optional<StoredUser> user;
    std::set<int> rights;
    for (query.run(); query.next();) {
        if (query.isNull(1)) {
            rights.insert(query.number(0));
        } else {
            user = userOfRow(query);
        }
    }
    if (user) {
        user->rights = std::move(rights);
    }
    return user;
}

void insertRights(Connection& connection, std::int64_t row, const std::set<int>& rights)
{
    Query grant(connection, QStringLiteral("INSERT INTO user_right (user_id, right_id) VALUES (?, ?)"));
    for (const int right : rights) {
        grant.bind(row, right).run();
    }
}

} // namespace

std::optional<StoredUser> findUser(const ServerData& data, const std::string& login)
{
    return readUser(data, QStringLiteral(" AND u.login = ?"), login);
}

std::optional<StoredUser> findUser(const ServerData& data, std::int64_t row)
{
    return readUser(data, QStringLiteral(" AND u.id = ?"), row);
}

std::map<std::string, std::string> loadUserNames(const ServerData& data, const std::set<std::string>& logins)
{
    std::map<std::string, std::string> names;
    forEachRowOf(data.connection,
                 QStringLiteral("SELECT login, display_name FROM app_user WHERE server_id = ? AND login IN (%1)"),
                 data.server.id, logins, [&names](const Query& row) { names.emplace(row.text(0), row.text(1)); });
    return names;
}

std::vector<StoredUser> loadUsers(const ServerData& data)
{
    Query query(data.connection, UserColumns + QStringLiteral(" ORDER BY login"));
    std::vector<StoredUser> users = query.bind(data.server.id).all(userOfRow);
    std::unordered_map<std::int64_t, StoredUser*> byRow;
    for (StoredUser& user : users) {
        byRow.emplace(user.row, &user);
    }
    Query rights(data.connection, QStringLiteral("SELECT r.user_id, r.right_id FROM user_right r"
                                                 " JOIN app_user u ON u.id = r.user_id WHERE u.server_id = ?"));
    for (rights.bind(data.server.id).run(); rights.next();) {
        byRow.at(rights.integer(0))->rights.insert(rights.number(1));
    }
    return users;
}

std::vector<StoredUser> loadUsersWithRight(const ServerData& data, int right)
{
    Query query(data.connection,
                QStringLiteral("SELECT u.id, u.login, u.display_name, u.password_hash, u.institution_id, u.enabled,"
                               " r.right_id FROM app_user u LEFT JOIN user_right r ON r.user_id = u.id"
                               " AND r.right_id = ? WHERE u.server_id = ?"));
    return query.bind(right, data.server.id).all([](const Query& row) {
        StoredUser user = userOfRow(row);
        if (!row.isNull(6)) {
            user.rights.insert(row.number(6));
        }
        return user;
    });
}

std::int64_t insertUser(const ServerData& data, const StoredUser& user)
{
    Query insert(data.connection, QStringLiteral("INSERT INTO app_user (server_id, login, display_name, institution_id,"
                                                 " password_hash, enabled) VALUES (?, ?, ?, ?, ?, ?) RETURNING id"));
    insert.bind(data.server.id, user.login, user.displayName, user.institution, user.passwordHash, user.enabled);
    insert.runAndNext();
    const std::int64_t row = insert.integer(0);
    insertRights(data.connection, row, user.rights);
    return row;
}

void updateUser(Connection& connection, const StoredUser& user)
{
    Query update(connection, QStringLiteral("UPDATE app_user SET display_name = ?, institution_id = ?,"
                                            " password_hash = ?, enabled = ? WHERE id = ?"));
    update.bind(user.displayName, user.institution, user.passwordHash, user.enabled, user.row).run();
    Query(connection, QStringLiteral("DELETE FROM user_right WHERE user_id = ?")).bind(user.row).run();
    insertRights(connection, user.row, user.rights);
}

} // namespace service
