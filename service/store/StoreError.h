#pragma once

#include <utils/NVError.h>

#include <QSqlError>

#include <exception>
#include <string>

namespace service
{

/// Leaves the store's own code only where a public operation turns it into its typed error.
class StoreError : public std::exception
{
public:
    /// What is known about the transaction in which it happened.
    enum class EKind {
        Final,          ///< it is as good as before the statement; trying again would fail again
        Passing,        ///< the database has undone it for a reason that passes (deadlock, serialization)
        ConnectionLost, ///< the database undoes it; the connection has to be opened again
        Uncertain,      ///< the connection was lost while it was committed: done or undone
    };

    StoreError(utils::EErrorCode code, const std::string& text, EKind kind = EKind::Final)
        : StoreError(code, text, {}, kind)
    {
    }
    /// @param detail  what a library said about it.
    StoreError(utils::EErrorCode code, const std::string& text, const std::string& detail, EKind kind)
        : m_error(code, text), m_text(detail.empty() ? text : text + "（" + detail + "）"), m_kind(kind)
    {
    }
    /// The text tells the user what happened to the disk or file; unique key violations become `Duplicate`.
    static StoreError fromSqlite(const QSqlError& error);
    /// The same for a five-letter SQLSTATE; without one the connection is lost.
    static StoreError fromPostgres(const std::string& sqlState, const std::string& detail);
    /// `Uncertain`; tells the user so.
    static StoreError uncertainCommit();

    /// For clients: without what a library said.
    const utils::NVError& error() const { return m_error; }
    /// For those who administer the machine, whose files, hosts and users it may name.
    utils::NVError fullError() const { return {m_error.code(), m_text}; }
    const char* what() const noexcept override { return m_text.c_str(); }
    EKind kind() const { return m_kind; }

private:
    utils::NVError m_error;
    std::string m_text;
    EKind m_kind;
};

} // namespace service
