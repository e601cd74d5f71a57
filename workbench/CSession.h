// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/CMailbox.h>
#include <utils/NVError.h>

#include <QMap>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

namespace workbench
{

/// The session of the client's user. Logs in on all servers and updates the user manager. UI thread only.
class CSession : public QObject
{
    Q_OBJECT

public:
    /// The outcome of a log-in.
    struct Outcome {
        utils::NVError error; ///< success if at least one server has accepted the user; see refusedServers()
    };
    using Handler = std::function<void(const Outcome&)>;

    explicit CSession(QObject* parent = nullptr);
    ~CSession() override;

    /// Logs in on all servers of the client centre. `handler` runs once, later, on this thread, unless the session is
    /// destroyed or another log-in starts first. The user has the rights that any server grants; each server enforces
    /// its own.
    void logIn(const QString& user, const QString& password, Handler handler);
    void logOut();
    bool isLoggedIn() const;
    /// "server: reason" of the servers that have refused the current user.
    QStringList refusedServers() const;
    /// Why the server has refused the current user; empty if it has not.
    QString refusal(const QString& server) const { return m_refusals.value(server); }

signals:
    /// A user has logged in or out.
    void sigUserChanged();

private:
    struct Gathering;
    void finish(const std::shared_ptr<Gathering>& gathering);

    utils::CMailbox m_mailbox;
    std::shared_ptr<Gathering> m_current;
    QMap<QString, QString> m_refusals; ///< by server
};

} // namespace workbench
