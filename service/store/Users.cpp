// SPDX-License-Identifier: Apache-2.0
#include "service/store/Users.h"

#include <unordered_map>

namespace service
{

namespace
{

const QString UserColumns = QStringLiteral("SELECT u.id, u.login, u.display_name, u.password_hash, u.institution_id,"
                                           " u.enabled FROM app_user u WHERE u.server_id = ?");

/// The user of the row that the query is at, without rights.
StoredUser userOfRow(const Query& query)
{
    StoredUser user;
    user.row = query.integer(0);
    user.login = query.text(1);
    user.displayName = query.text(2);
    user.passwordHash = query.text(3);
    user.institution = query.optionalInteger(4);
    user.enabled = query.integer(5) != 0;
    return user;
}

/// The user for whom the condition holds, read together with the rights, which come as rows without a login.
template <typename Key>
std::optional<StoredUser> readUser(Connection& connection, const SubSystem& server, const QString& condition,
                                   const Key& key)
{
    Query query(connection, UserColumns + condition +
                                QStringLiteral(" UNION ALL SELECT r.right_id, NULL, NULL, NULL, NULL, NULL"
                                               " FROM app_user u JOIN user_right r ON r.user_id = u.id"
                                               " WHERE u.server_id = ?") +
                                condition);
    query.bind(server.id).bind(key).bind(server.id).bind(key);
    std::optional<StoredUser> user;
    std::set<int> rights;
    for (query.run(); query.next();) {
        if (query.isNull(1)) {
            rights.insert(static_cast<int>(query.integer(0)));
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
        grant.bind(row).bind(right).run();
    }
}

} // namespace

std::optional<StoredUser> findUser(Connection& connection, const SubSystem& server, const std::string& login)
{
    return readUser(connection, server, QStringLiteral(" AND u.login = ?"), login);
}

std::optional<StoredUser> findUser(Connection& connection, const SubSystem& server, std::int64_t row)
{
    return readUser(connection, server, QStringLiteral(" AND u.id = ?"), row);
}

std::vector<StoredUser> loadUsers(Connection& connection, const SubSystem& server)
{
    std::vector<StoredUser> users;
    Query query(connection, UserColumns + QStringLiteral(" ORDER BY login"));
    query.bind(server.id);
    std::unordered_map<std::int64_t, std::size_t> indexOfRow;
    for (query.run(); query.next();) {
        users.push_back(userOfRow(query));
        indexOfRow.emplace(users.back().row, users.size() - 1);
    }
    Query rights(connection, QStringLiteral("SELECT r.user_id, r.right_id FROM user_right r"
                                            " JOIN app_user u ON u.id = r.user_id WHERE u.server_id = ?"));
    rights.bind(server.id);
    for (rights.run(); rights.next();) {
        users.at(indexOfRow.at(rights.integer(0))).rights.insert(static_cast<int>(rights.integer(1)));
    }
    return users;
}

std::int64_t insertUser(Connection& connection, const SubSystem& server, const StoredUser& user)
{
    Query insert(connection, QStringLiteral("INSERT INTO app_user (server_id, login, display_name, institution_id,"
                                            " password_hash, enabled) VALUES (?, ?, ?, ?, ?, ?) RETURNING id"));
    insert.bind(server.id).bind(user.login).bind(user.displayName).bind(user.institution);
    insert.bind(user.passwordHash).bind(user.enabled).runAndNext();
    const std::int64_t row = insert.integer(0);
    insertRights(connection, row, user.rights);
    return row;
}

void updateUser(Connection& connection, const StoredUser& user)
{
    Query update(connection, QStringLiteral("UPDATE app_user SET display_name = ?, institution_id = ?,"
                                            " password_hash = ?, enabled = ? WHERE id = ?"));
    update.bind(user.displayName).bind(user.institution).bind(user.passwordHash).bind(user.enabled);
    update.bind(user.row).run();
    Query(connection, QStringLiteral("DELETE FROM user_right WHERE user_id = ?")).bind(user.row).run();
    insertRights(connection, user.row, user.rights);
}

} // namespace service
