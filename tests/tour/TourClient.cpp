// SPDX-License-Identifier: Apache-2.0
#include "TourClient.h"

#include "Hands.h"
#include "support/Paths.h"
#include "support/qav/Client.h"
#include "support/service/RealService.h"

#include <QAV/CNetworkTransport.h>
#include <WQ/CUiResourceManager.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <nvservice/MetaTypes.h>

#include <boost/make_shared.hpp>

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QPainter>
#include <QtTest>

#include <algorithm>
#include <atomic>

using namespace workbench;

namespace tour
{

namespace
{

const QString PanelClass = QStringLiteral("QAV::CAccountGroupRiskManagePanel");

int depthOf(const QWidget* window)
{
    int depth = 0;
    for (const QWidget* above = window->parentWidget(); above; above = above->parentWidget()) {
        ++depth;
    }
    return window->windowFlags().testFlag(Qt::Popup) ? depth + 1000 : depth;
}

} // namespace

TourClient::TourClient(const QString& chapter, int servers)
    : m_chapter(chapter), m_pictures(qEnvironmentVariable("QAV_TOUR_FOLDER", m_folder.filePath("pictures")))
{
    nvservice::registerMetaTypes();
    if (!QDir().mkpath(m_pictures)) {
        qFatal("cannot make %s", qPrintable(m_pictures));
    }
    switchModules();
    WQ::CUiResourceManager::instance()->setTheme("dark");
    WQ::CUiResourceManager::instance()->applyTo(*qApp);

    service::SampleOptions sample;
    sample.servers = servers;
    sample.accounts = 500 * servers; // every institution has several of the common types
    support::makeSampleDatabase(databaseFile(), sample);
    plugIn();
    m_database = std::make_unique<TourDatabase>(databaseFile());
    m_settings = std::make_unique<CUserSettings>(m_folder.filePath("client.ini"));
    m_session = std::make_unique<CSession>();
}

TourClient::~TourClient()
{
    stop();
    m_session.reset();
    m_database.reset();
    m_installation.reset();
    support::centre().shutDown();
}

void TourClient::switchModules(const QString& configuration)
{
    QString file = support::sourceFile("data/modules.lua");
    if (!configuration.isEmpty()) {
        file = m_folder.filePath("modules.lua");
        QFile written(file);
        QVERIFY(written.open(QIODevice::WriteOnly | QIODevice::Truncate));
        written.write(configuration.toUtf8());
    }
    QVERIFY(utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->load(file.toStdString()).isSuccess());
}

void TourClient::start(const QString& user, const QString& password)
{
    stop();
    bool done = false;
    utils::NVError error;
    m_session->logIn(user, password, [&](const CSession::Outcome& outcome) {
        error = outcome.error;
        done = true;
    });
    QTRY_VERIFY_WITH_TIMEOUT(done, Patience);
    QVERIFY2(error.isSuccess(), error.errorMsg().c_str());
    m_plugins = std::make_unique<CPluginCatalogue>();
    m_plugins->scan({support::builtFile(QAV_PLUGIN_FOLDER)});
    m_window = std::make_unique<CMainWindow>(*m_session, *m_settings, *m_plugins);
    m_window->restoreLayout();
    m_window->show();
    m_window->resize(1280, 800);
    QVERIFY2(m_window->panel(PanelClass),
             qPrintable(m_plugins->entries().empty() ? QString("no plug-in") : m_plugins->entries()[0].problem));
    QApplication::setActiveWindow(m_window.get());
    waitUntilLoaded();
}

void TourClient::stop()
{
    if (!m_window) {
        return;
    }
    m_window->close();
    m_window.reset();
    m_session->logOut();
}

void TourClient::unplug(const QString& server)
{
    const std::string name = server.toStdString();
    QAV::NetworkServer nobody;
    nobody.host = "127.0.0.1";
    nobody.encrypted = false;
    nobody.systemTag = support::centre().getSystemTagByServerName(name);
    nobody.port = 1; // which no program of a user can listen at
    support::centre().removeServer(name);
    QVERIFY(support::centre()
                .addServer(name, nobody.systemTag, boost::make_shared<QAV::CNetworkTransport>(nobody))
                .isSuccess());
    std::atomic<bool> answered{false};
    support::centre().getClientByName(name)->logIn_async("admin", "admin123",
                                                         [&answered](const auto&, const auto&) { answered = true; });
    QTRY_VERIFY_WITH_TIMEOUT(answered, Patience);
}

void TourClient::plugIn()
{
    stop();
    m_installation.reset();
    m_installation = std::make_unique<CInstallation>();
    const utils::NVError opened = m_installation->open(databaseFile(), SampleSize());
    if (!opened.isSuccess()) {
        qFatal("%s", opened.errorMsg().c_str());
    }
}

void TourClient::checkLog()
{
    m_log.verify();
}

QAV::IkolmDockableWidget& TourClient::panel() const
{
    return *m_window->panel(PanelClass);
}

WQ::CLoadingMaskWidget& TourClient::mask() const
{
    for (auto* const mask : panel().findChildren<WQ::CLoadingMaskWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        return *mask;
    }
    qFatal("the panel has no mask");
}

void TourClient::chooseServer(const QString& server)
{
    auto* const box = m_window->findChild<QComboBox*>("serverBox");
    const int wanted = m_window->serverChoices().indexOf(server);
    QVERIFY(wanted >= 0);
    if (wanted != box->currentIndex()) {
        click(*box);
        QTRY_VERIFY(box->view()->isVisible());
        const Qt::Key step = wanted < box->currentIndex() ? Qt::Key_Up : Qt::Key_Down;
        while (box->view()->currentIndex().row() != wanted) {
            QTest::keyClick(box->view(), step);
        }
        QTest::keyClick(box->view(), Qt::Key_Return);
    }
    QTRY_COMPARE(m_window->currentServer(), server);
    waitUntilLoaded();
}

void TourClient::waitUntilLoaded()
{
    QTRY_VERIFY_WITH_TIMEOUT(mask().isHidden(), Patience);
}

void TourClient::refresh()
{
    clickButton(panel(), QStringLiteral("立即刷新"));
    QVERIFY(mask().isVisible());
    waitUntilLoaded();
}

void TourClient::search(const QString& text)
{
    retype(searchEdit(), text);
    QTest::keyClick(&searchEdit(), Qt::Key_Return);
}

void TourClient::addGroup(const std::vector<Stage>& stages)
{
    play([this] { clickButton(panel(), "添加账号组"); }, stages);
    waitUntilLoaded();
}

void TourClient::pressGroupButton(const QString& group, const QString& button, const std::vector<Stage>& stages)
{
    play([&] { clickGroupButton(group, button); }, stages);
    waitUntilLoaded();
}

void TourClient::clickGroupButton(const QString& group, const QString& button)
{
    clickRowButton(table(), NameColumn, group, button);
}

QStringList TourClient::shownRows() const
{
    QStringList rows;
    const QAbstractItemModel& view = *table().view()->model();
    for (int row = 0; row < view.rowCount(); ++row) {
        QStringList cells;
        for (const int column : {NameColumn, CountColumn, InstitutionColumn, ServerColumn}) {
            cells << view.index(row, column).data().toString();
        }
        rows << cells.join('|');
    }
    rows.sort();
    return rows;
}

QStringList TourClient::shown(GroupColumn column) const
{
    QStringList texts;
    const QAbstractItemModel& view = *table().view()->model();
    for (int row = 0; row < view.rowCount(); ++row) {
        texts << view.index(row, column).data().toString();
    }
    return texts;
}

QPixmap TourClient::screen() const
{
    QWidgetList windows;
    QRect area;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (!window->isVisible()) {
            continue;
        }
        windows << window;
        area |= window->geometry();
    }
    std::sort(windows.begin(), windows.end(),
              [](const QWidget* a, const QWidget* b) { return depthOf(a) < depthOf(b); });
    QPixmap screen(area.size());
    screen.fill(Qt::black);
    QPainter painter(&screen);
    for (QWidget* const window : windows) {
        painter.drawPixmap(window->geometry().topLeft() - area.topLeft(), window->grab());
    }
    return screen;
}

void TourClient::keep(const QPixmap& picture, const QString& name)
{
    const QString file =
        QString("%1/%2-%3-%4.png").arg(m_pictures, m_chapter).arg(++m_pictureCount, 2, 10, QLatin1Char('0')).arg(name);
    QVERIFY(picture.save(file));
}

void TourClient::picture(const QString& name)
{
    QCoreApplication::processEvents();
    keep(screen(), name);
}

void TourClient::pictures(const QString& name)
{
    picture(name);
    WQ::CUiResourceManager* const resources = WQ::CUiResourceManager::instance();
    QVERIFY(resources->setTheme("light"));
    picture(name + "-light");
    QVERIFY(resources->setTheme("dark"));
}

void TourClient::picture(QWidget& widget, const QString& name)
{
    keep(widget.grab(), name);
}

} // namespace tour
