// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/CKolmClientCenter.h>
#include <WQ/CUiResourceChangeHandler.h>
#include <utils/CMailbox.h>

#include <QWidget>

#include <map>

class QLabel;

namespace workbench
{

/// One indicator per server in the status bar: connected, connecting or disconnected. Follows the client centre. The
/// tool tip says why a server is not connected.
class CServerStatus : public QWidget, public WQ::CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CServerStatus(QWidget* parent);
    ~CServerStatus() override;

    void onUiResourceChanged() override;

    static QString stateText(QAV::EConnectionState state);

private:
    struct Mark {
        QLabel* label = nullptr;
        QAV::EConnectionState state = QAV::EConnectionState::Disconnected;
        QString reason; ///< why it is not connected; empty if unknown
    };

    void setState(const QString& server, QAV::EConnectionState state, const std::string& reason);
    static void show(const QString& server, const Mark& mark);

    std::map<QString, Mark> m_marks;
    utils::CMailbox m_mailbox;
    QAV::CKolmClientCenter::StateSubscription m_states;
};

} // namespace workbench
