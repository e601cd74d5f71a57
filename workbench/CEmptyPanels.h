// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClientCenter.h>
#include <utils/CMailbox.h>

#include <QObject>

#include <set>

namespace QAV
{
class IkolmDockableWidget;
}

namespace workbench
{

class CPanelDocks;
class CSession;

/// Says in panels without rows what the client knows of the reason: which server was chosen, whether it is connected
/// and has accepted the user. It knows nothing of what a panel asked. When a server is back, the panels in front that
/// have no rows because of it are activated again.
class CEmptyPanels : public QObject
{
    Q_OBJECT

public:
    CEmptyPanels(CPanelDocks& docks, const CSession& session, QObject* parent);
    ~CEmptyPanels() override;

    /// For all panels, after one was added or another server was chosen.
    void showReasons();

signals:
    /// The panel has no rows because of a server that is back.
    void sigServerIsBack(QAV::IkolmDockableWidget* panel);

private:
    void onState(const QString& server, QAV::EConnectionState state);
    QString reasonFor(const QAV::IkolmDockableWidget& panel) const;

    CPanelDocks& m_docks;
    const CSession& m_session;
    std::set<QString> m_lost; ///< servers that are not connected
    utils::CMailbox m_mailbox;
    QAV::CKolmClientCenter::StateSubscription m_states;
};

} // namespace workbench
