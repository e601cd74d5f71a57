// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/store/Connection.h"

#include <QByteArray>
#include <QVariant>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace service
{

/// A prepared statement. Values are bound in the order of the question marks. A statement is prepared once per
/// connection and text.
class Query : private boost::noncopyable
{
public:
    Query(Connection& connection, const QString& sql);
    ~Query();

    Query& bind(std::int64_t value);
    Query& bind(int value) { return bind(static_cast<std::int64_t>(value)); }
    Query& bind(bool value) { return bind(static_cast<std::int64_t>(value ? 1 : 0)); }
    template <typename Enum, typename = std::enable_if_t<std::is_enum_v<Enum>>>
    Query& bind(Enum value)
    {
        return bind(static_cast<std::int64_t>(value));
    }
    /// Throws `StoreError` (`InvalidValue`) for a text with NUL bytes, which PostgreSQL cannot store.
    Query& bind(const std::string& value);
    Query& bind(const char* value) { return bind(std::string(value)); }
    Query& bind(const QByteArray& value);
    Query& bind(const std::optional<std::int64_t>& value);
    /// Several values at once.
    template <typename First, typename Second, typename... More>
    Query& bind(const First& first, const Second& second, const More&... more)
    {
        return bind(first).bind(second, more...);
    }
    /// Binds nothing if there is no value.
    Query& bindIfSet(const std::optional<std::int64_t>& value) { return value ? bind(*value) : *this; }

    /// Runs the statement. Afterwards it can be bound and run again.
    Query& run();
    /// The same for a statement without a result, whose effect nothing depends on. It may be delayed: if it fails, it
    /// throws at the end of the operation at the latest.
    void runLater();
    /// Runs the statement and moves to its only row; false if there is none.
    bool runAndNext();
    bool next();

    /// Runs the statement and returns what `read` makes of each row.
    template <typename Read>
    auto all(Read read)
    {
        std::vector<std::invoke_result_t<Read, const Query&>> found;
        for (run(); next();) {
            found.push_back(read(*this));
        }
        return found;
    }
    /// The same for the first row; empty if there is none.
    template <typename Read>
    auto first(Read read)
    {
        return runAndNext() ? std::make_optional(read(*this)) : std::nullopt;
    }

    std::int64_t integer(int column) const { return m_query->value(column).toLongLong(); }
    /// Of a column whose values fit into 32 bits.
    std::int32_t number(int column) const { return static_cast<std::int32_t>(integer(column)); }
    std::string text(int column) const;
    QByteArray blob(int column) const { return m_query->value(column).toByteArray(); }
    bool isNull(int column) const { return m_query->value(column).isNull(); }
    std::optional<std::int64_t> optionalInteger(int column) const;
    int affected() const { return m_query->numRowsAffected(); }

private:
    Connection& m_connection;
    QString m_sql;
    std::unique_ptr<QSqlQuery> m_query;
    int m_bound = 0;
};

/// Calls `read` with each row of a statement that has a list of keys at "%1" and the server before it. Runs it once for
/// up to 128 keys.
template <typename Keys, typename Read>
void forEachRowOf(Connection& connection, const QString& sql, std::int64_t server, const Keys& keys, Read read)
{
    constexpr int KeysAtOnce = 128;
    const QString filled = sql.arg(QStringLiteral("?") + QStringLiteral(", ?").repeated(KeysAtOnce - 1));
    for (auto key = keys.begin(); key != keys.end();) {
        Query query(connection, filled);
        query.bind(server);
        // The last key is repeated, so that one statement serves lists of any length.
        auto last = key;
        for (int i = 0; i < KeysAtOnce; ++i) {
            last = key == keys.end() ? last : key++;
            query.bind(*last);
        }
        for (query.run(); query.next();) {
            read(query);
        }
    }
}

/// How many of the remaining rows the next statement takes: a power of two, so that few statements are prepared.
std::size_t sizeOfBatch(std::size_t left, std::size_t most);

} // namespace service
