// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/NVError.h>
#include <utils/Translation.h>

#include <QSqlError>

#include <exception>
#include <string>

namespace service
{

/// A failure of the database. Public functions of the store and the engine convert it to an NVError.
class StoreError : public std::exception
{
public:
    /// What is known about the transaction that failed.
    enum class EKind {
        Final,          ///< it is as before the statement; a retry would fail again
        Passing,        ///< the database has rolled it back for a transient reason (deadlock, serialization)
        ConnectionLost, ///< the database rolls it back; the connection must be reopened
        Uncertain,      ///< the connection was lost during the commit: committed or rolled back
    };

    StoreError(utils::EErrorCode code, const std::string& text, EKind kind = EKind::Final)
        : StoreError(code, text, {}, kind)
    {
    }
    /// @param detail  the message of the database library
    StoreError(utils::EErrorCode code, const std::string& text, const std::string& detail, EKind kind)
        : m_error(code, text),
          m_text(detail.empty() ? text : utils::filled(utils::text("service", "%1（%2）"), text, detail)), m_kind(kind)
    {
    }
    /// The text tells the user what is wrong with the disk or file. A violated unique key becomes `Duplicate`.
    static StoreError fromSqlite(const QSqlError& error);
    /// The same for a five-letter SQLSTATE. Without one the connection is lost.
    static StoreError fromPostgres(const std::string& sqlState, const std::string& detail);
    /// Of kind `Uncertain`; the text says so.
    static StoreError uncertainCommit();

    /// For clients: without the detail.
    const utils::NVError& error() const { return m_error; }
    /// For administrators of the machine: with the detail, which may name files, hosts and users.
    utils::NVError fullError() const { return {m_error.code(), m_text}; }
    const char* what() const noexcept override { return m_text.c_str(); }
    EKind kind() const { return m_kind; }
    /// True if the database may work again without anybody doing anything: it is away, starting or busy.
    bool mayPass() const { return m_isBusy || m_kind != EKind::Final; }

private:
    utils::NVError m_error;
    std::string m_text;
    EKind m_kind;
    bool m_isBusy = false; ///< another program holds what it needs, and was waited for
};

} // namespace service
