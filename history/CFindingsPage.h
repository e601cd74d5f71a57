// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/Requests.h"

#include <WQ/CBaseWidget.h>

#include <QBasicTimer>
#include <QElapsedTimer>

namespace WQ
{
class CNormalButton;
class CSimpleTextWidget;
class CStandardHpfTable;
} // namespace WQ

namespace QAV
{

class CTextModel;

/// The findings of the consistency check, with what to do about them.
class CFindingsPage final : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    /// @param gate     of the panel
    /// @param mayRead  false: the page says that the right is missing
    CFindingsPage(const CCallbackGate& gate, bool mayRead, QWidget* parent);

    /// Sets the server; empty: none. What is shown is of no more use.
    void setServer(const QString& serverName, bool isUsable);
    /// Has the data checked.
    void refresh();
    WQ::CStandardHpfTable& table() { return *m_table; }

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

protected:
    void timerEvent(QTimerEvent* event) override;

Q_SIGNALS:
    /// The user wants to see the history of the group.
    void sigGroupWanted(int groupId, const QString& groupName);

private:
    void takePage(const QueryAnswer& answer);
    void showGroup(const QString& rowKey);
    /// Has a check that is running ended.
    void stop();
    void showState();

    const bool m_mayRead;
    QString m_serverName;
    bool m_isUsable = false;
    CPagedQuery m_pages;
    QString m_problem;          ///< of the last answer
    bool m_isCancelled = false; ///< the last check that did not come to its end
    QElapsedTimer m_sinceStart; ///< of the check that is running
    QBasicTimer m_timer;
    WQ::CNormalButton* m_button; ///< starts a check or cancels it
    WQ::CSimpleTextWidget* m_state;
    WQ::CStandardHpfTable* m_table;
    CTextModel* m_model;
};

} // namespace QAV
