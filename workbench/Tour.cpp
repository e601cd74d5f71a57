#include "Tour.h"

#include "CMainWindow.h"
#include "CPluginCatalogue.h"
#include "CPluginDialog.h"

#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CUiResourceManager.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPixmap>
#include <QWidget>

#include <algorithm>
#include <iostream>

namespace workbench
{

namespace
{

constexpr qint64 LongestWaitMs = 60000;

} // namespace

CTour::CTour(const QString& folder) : m_folder(folder)
{
    check(QStringLiteral("目录 %1").arg(folder), QDir().mkpath(folder));
}

bool CTour::waitFor(const QString& what, const std::function<bool()>& condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < LongestWaitMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return check(what, condition());
}

bool CTour::waitForData(const QWidget& window)
{
    return waitFor(QStringLiteral("数据已加载"), [&window] {
        const auto masks = window.findChildren<WQ::CLoadingMaskWidget*>();
        return std::none_of(masks.begin(), masks.end(), [](const QWidget* mask) { return mask->isVisible(); });
    });
}

bool CTour::check(const QString& what, bool good)
{
    note((good ? QStringLiteral("通过  ") : QStringLiteral("失败  ")) + what);
    if (!good) {
        ++m_failures;
    }
    return good;
}

bool CTour::picture(QWidget& widget, const QString& name)
{
    const QString file =
        QStringLiteral("%1/%2-%3.png").arg(m_folder).arg(++m_pictures, 2, 10, QLatin1Char('0')).arg(name);
    return check(QStringLiteral("截图 %1").arg(file), widget.grab().save(file));
}

void CTour::note(const QString& line) const
{
    std::cout << qUtf8Printable(line) << std::endl;
}

int runTour(CMainWindow& window, const CPluginCatalogue& plugins, const QString& folder)
{
    CTour tour(folder);
    tour.waitFor(QStringLiteral("主窗口已显示"), [&] { return window.isVisible(); });
    for (const PluginEntry& entry : plugins.entries()) {
        if (entry.state == PluginEntry::EState::Available || entry.state == PluginEntry::EState::Loaded) {
            tour.check(QStringLiteral("打开 %1").arg(entry.displayName()),
                       window.openPanel(entry.manifest.className) != nullptr);
        }
    }
    tour.waitForData(window);
    tour.picture(window, QStringLiteral("main"));
    for (const QString& server : window.serverChoices()) {
        tour.check(QStringLiteral("切换分系统 %1").arg(server), window.switchServer(server));
        tour.waitForData(window);
    }
    const QString theme = WQ::CUiResourceManager::instance()->theme();
    for (const QString& other : WQ::CUiResourceManager::instance()->themes()) {
        tour.check(QStringLiteral("切换主题 %1").arg(other), window.switchTheme(other));
        tour.picture(window, QStringLiteral("theme-") + other);
    }
    window.switchTheme(theme);
    CPluginDialog dialog(plugins, &window);
    dialog.show();
    tour.picture(dialog, QStringLiteral("plugins"));
    window.close();
    return tour.exitCode();
}

} // namespace workbench
