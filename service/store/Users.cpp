#include "service/store/Users.h"

namespace service
{

namespace
{

const QString UserColumns = QStringLiteral(
    "SELECT id, login, display_name, password_hash, institution_id, enabled FROM app_user WHERE server_id = ?");

std::optional<StoredUser> readUser(Connection& connection, Query& query)
{
    if (!query.runAndNext())
        return std::nullopt;
    StoredUser user;
    user.row = query.integer(0);
    user.login = query.text(1);
    user.displayName = query.text(2);
    user.passwordHash = query.text(3);
    user.institution = query.optionalInteger(4);
    user.enabled = query.integer(5) != 0;
    Query rights(connection, QStringLiteral("SELECT right_id FROM user_right WHERE user_id = ?"));
    rights.bind(user.row);
    for (rights.run(); rights.next();)
        user.rights.insert(static_cast<int>(rights.integer(0)));
    return user;
}

} // namespace

std::optional<StoredUser> findUser(Connection& connection, const SubSystem& server, const std::string& login)
{
    Query query(connection, UserColumns + QStringLiteral(" AND login = ?"));
    query.bind(server.id).bind(login);
    return readUser(connection, query);
}

std::optional<StoredUser> findUser(Connection& connection, const SubSystem& server, std::int64_t row)
{
    Query query(connection, UserColumns + QStringLiteral(" AND id = ?"));
    query.bind(server.id).bind(row);
    return readUser(connection, query);
}

std::int64_t insertUser(Connection& connection, const SubSystem& server, const StoredUser& user)
{
    Query insert(connection, QStringLiteral("INSERT INTO app_user (server_id, login, display_name, institution_id,"
                                            " password_hash, enabled) VALUES (?, ?, ?, ?, ?, ?) RETURNING id"));
    insert.bind(server.id).bind(user.login).bind(user.displayName).bind(user.institution);
    insert.bind(user.passwordHash).bind(user.enabled).runAndNext();
    const std::int64_t row = insert.integer(0);
    Query grant(connection, QStringLiteral("INSERT INTO user_right (user_id, right_id) VALUES (?, ?)"));
    for (const int right : user.rights)
        grant.bind(row).bind(right).run();
    return row;
}

} // namespace service
