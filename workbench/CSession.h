#pragma once

#include "CUiInbox.h"

#include <utils/NVError.h>

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

namespace workbench
{

/// Who works with the client: logs in on every server and tells the user manager. UI thread only.
class CSession : public QObject
{
    Q_OBJECT

public:
    /// The outcome of a log-in.
    struct Outcome {
        utils::NVError error; ///< success when at least one server accepted the user; see refusedServers()
    };
    using Handler = std::function<void(const Outcome&)>;

    explicit CSession(QObject* parent = nullptr);
    ~CSession() override;

    /// Asks every server of the client centre. `handler` runs once, later, on this thread, unless the session is
    /// destroyed or another log-in begins before. The user's rights are those that any server grants; what he may do on
    /// a server, that server decides.
    void logIn(const QString& user, const QString& password, Handler handler);
    void logOut();
    bool isLoggedIn() const;
    /// "server: reason" of the servers that refused the present user.
    QStringList refusedServers() const { return m_refusedServers; }

signals:
    /// A user has logged in or out.
    void sigUserChanged();

private:
    struct Gathering;
    void finish(const std::shared_ptr<Gathering>& gathering);

    CUiInbox m_inbox;
    std::shared_ptr<Gathering> m_current;
    QStringList m_refusedServers;
};

} // namespace workbench
