#pragma once

#include "CUiInbox.h"

#include <QAV/EConnectionState.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QWidget>

#include <map>

class QLabel;

namespace workbench
{

/// One mark per server in the status bar: connected, connecting, disconnected. Follows the client centre.
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
    };

    void setState(const QString& server, QAV::EConnectionState state);
    static void show(const QString& server, const Mark& mark);

    std::map<QString, Mark> m_marks;
    CUiInbox m_inbox;
};

} // namespace workbench
