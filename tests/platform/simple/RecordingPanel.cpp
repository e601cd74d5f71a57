// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"

#include <WQ/CUiResourceManager.h>

#include <QApplication>
#include <QtTest>

namespace test
{

RecordingPanel::RecordingPanel() : WQ::CBaseWidget(QStringLiteral("recording_panel"), true, nullptr) {}

bool RecordingPanel::handleEvent(int type, int id, int param, QString, void*)
{
    events.append({type, id, param});
    if (react) {
        react(events.last());
    }
    return true;
}

void showActive(QWidget& widget, const QSize& size)
{
    widget.resize(size);
    widget.show();
    widget.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&widget));
}

void setTheme(const QString& name)
{
    static bool applied = false;
    if (!applied) {
        WQ::CUiResourceManager::instance()->applyTo(*qApp);
    }
    applied = true;
    QVERIFY(WQ::CUiResourceManager::instance()->setTheme(name));
}

} // namespace test
