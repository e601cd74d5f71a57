// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QBasicTimer>
#include <QToolButton>

namespace workbench
{

/// In the status bar: how many requests to servers are under way, and for how long. Hidden while none takes long. Its
/// menu lists them, to be cancelled.
class CRequestStatus : public QToolButton
{
    Q_OBJECT

public:
    explicit CRequestStatus(QWidget* parent);

signals:
    /// No request has been under way for some seconds: once each time, and once at the start.
    void sigAtRest();

protected:
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showRequests();
    void fillMenu();

    QBasicTimer m_timer;
    int m_looksAtRest = 0;
};

} // namespace workbench
