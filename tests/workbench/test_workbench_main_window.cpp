#include "support/UnexpectedLog.h"
#include "support/qav/CFakeTransport.h"
#include "support/wq/ScriptedPresenter.h"

#include "workbench/CMainWindow.h"
#include "workbench/CSession.h"
#include "workbench/CUserSettings.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>
#include <QAV/IkolmDockableWidget.h>
#include <WQ/CBaseDialog.h>
#include <WQ/CUiResourceManager.h>

#include <boost/make_shared.hpp>

#include <QtTest/QtTest>
#include <QtWidgets/QtWidgets>

using support::CFakeTransport;
using workbench::CMainWindow;

namespace
{

const QString Noting = "fixtures::CNotingPanel";
const QString Staying = "fixtures::CStayingPanel";
const QString Throwing = "fixtures::CThrowingPanel";

QStringList callsOf(QAV::IkolmDockableWidget* panel)
{
    const QStringList calls = panel->property("calls").toStringList();
    panel->setProperty("calls", QStringList());
    return calls;
}

QStringList seenCalls(QAV::IkolmDockableWidget* panel)
{
    return panel->property("calls").toStringList();
}

QDockWidget* dockOf(CMainWindow& window, const QString& className)
{
    return window.findChild<QDockWidget*>("dock." + className);
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        auto* resources = WQ::CUiResourceManager::instance();
        QVERIFY(resources->setTheme("dark"));
        resources->applyTo(*qApp);
        // A folder with the plug-ins that work and one that throws.
        QVERIFY(m_plugins.isValid());
        for (const char* name :
             {"01-noting.plugin.json", "02-staying.plugin.json", "03-throwing.plugin.json", "libQavFixturePanels.so"}) {
            QVERIFY(QFile::copy(QString(QAV_FIXTURE_PLUGINS) + '/' + name, m_plugins.filePath(name)));
        }
    }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_session = std::make_unique<workbench::CSession>();
        m_presenter = std::make_unique<support::ScriptedPresenter>();
        m_transport = boost::make_shared<CFakeTransport>();
        QVERIFY(centre().addServer("B", "b", m_transport).isSuccess());
        QVERIFY(centre().addServer("A", "a", boost::make_shared<CFakeTransport>()).isSuccess());
        logInAs("risk01");
        WQ::CUiResourceManager::instance()->setTheme("dark");
    }

    void cleanup()
    {
        m_window.reset();
        m_catalogue.reset();
        m_settings.reset();
        QVERIFY(m_presenter->verify());
        m_presenter.reset();
        m_session->logOut();
        centre().shutDown();
        m_session.reset();
        m_transport.reset();
        m_folder.reset();
    }

    void theFirstTimeEveryPluginThatWorksIsOpenOnTheFirstServer()
    {
        start();
        QCOMPARE(m_window->openPanels(), QStringList({Noting, Staying}));
        QCOMPARE(m_window->currentServer(), QString("A"));
        QCOMPARE(m_window->serverChoices(), QStringList({"", "A", "B"}));
        QCOMPARE(m_window->panel(Noting)->serverName(), QString("A"));
    }

    void aPanelIsToldItsServerThenThatItIsActive()
    {
        start();
        QAV::IkolmDockableWidget* panel = m_window->panel(Noting);
        QVERIFY(m_window->openPanel(Noting) == panel);
        QTRY_VERIFY(seenCalls(panel).contains("onActive"));
        QCOMPARE(callsOf(panel), QStringList({"switchSystem 1 A", "onActive"}));
    }

    void aTabThatComesToTheFrontIsActivatedAndTheOneBehindItIsNot()
    {
        start();
        auto* noting = m_window->panel(Noting);
        auto* staying = m_window->panel(Staying);
        m_window->openPanel(Noting);
        QTRY_VERIFY(seenCalls(noting).contains("onActive"));
        QTRY_VERIFY(!staying->isVisible() || staying->visibleRegion().isEmpty());
        callsOf(noting);
        callsOf(staying);

        m_window->openPanel(Staying);
        QTRY_COMPARE(seenCalls(staying), QStringList("onActive"));
        callsOf(staying);
        QCOMPARE(callsOf(noting), QStringList());
        m_window->openPanel(Noting);
        QTRY_COMPARE(seenCalls(noting), QStringList("onActive"));
        QCOMPARE(callsOf(staying), QStringList());
    }

    void openingThePanelThatIsInFrontDoesNotActivateItAgain()
    {
        start();
        auto* noting = m_window->panel(Noting);
        m_window->openPanel(Noting);
        QTRY_VERIFY(seenCalls(noting).contains("onActive"));
        callsOf(noting);
        m_window->openPanel(Noting);
        QCoreApplication::processEvents();
        QCOMPARE(callsOf(noting), QStringList());
    }

    void choosingAServerSwitchesThePanelsThatFollow()
    {
        start();
        auto* noting = m_window->panel(Noting);
        auto* staying = m_window->panel(Staying);
        QTRY_VERIFY(seenCalls(noting).contains("onActive") || seenCalls(staying).contains("onActive"));
        callsOf(noting);
        callsOf(staying);
        QVERIFY(m_window->switchServer("B"));
        QVERIFY(m_window->switchServer("B")); // no change, no call
        QVERIFY(m_window->switchServer(""));
        QVERIFY(!m_window->switchServer("C"));
        QCOMPARE(callsOf(noting), QStringList({"switchSystem 2 B", "switchSystem 0 "}));
        QCOMPARE(callsOf(staying), QStringList());
        QCOMPARE(m_window->currentServer(), QString());
    }

    void theUserChoosesTheServerInTheToolBar()
    {
        start();
        auto* box = m_window->findChild<QComboBox*>("serverBox");
        QVERIFY(box);
        QCOMPARE(box->count(), 3);
        QCOMPARE(box->itemText(0), QString("全部分系统"));
        QCOMPARE(box->currentText(), QString("A"));
        callsOf(m_window->panel(Noting));
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(m_window->currentServer(), QString("B"));
        QVERIFY(seenCalls(m_window->panel(Noting)).contains("switchSystem 2 B"));
    }

    void theLayoutSurvivesARestart()
    {
        start();
        m_window->panel(Noting)->setProperty("state", "名称,200|账号数量,80");
        dockOf(*m_window, Staying)->close();
        QVERIFY(m_window->switchServer("B"));
        QVERIFY(m_window->switchTheme("light"));
        m_window->resize(1111, 777);
        m_window->close();
        m_window.reset();
        WQ::CUiResourceManager::instance()->setTheme("dark");

        start();
        QCOMPARE(m_window->openPanels(), QStringList(Noting));
        QCOMPARE(m_window->currentServer(), QString("B"));
        QCOMPARE(WQ::CUiResourceManager::instance()->theme(), QString("light"));
        QCOMPARE(m_window->size(), QSize(1111, 777));
        const QStringList calls = seenCalls(m_window->panel(Noting));
        QCOMPARE(calls.value(0), QString("setParam 名称,200|账号数量,80"));
        QCOMPARE(calls.value(1), QString("switchSystem 2 B"));
        QVERIFY(!m_window->panel(Staying));
        QVERIFY(m_window->openPanel(Staying));
    }

    void panelsSideBySideAreSideBySideAfterARestart()
    {
        start();
        dockOf(*m_window, Staying)->setFloating(true);
        dockOf(*m_window, Staying)->setFloating(false);
        m_window->addDockWidget(Qt::RightDockWidgetArea, dockOf(*m_window, Staying));
        m_window->close();
        m_window.reset();
        start();
        QCOMPARE(m_window->dockWidgetArea(dockOf(*m_window, Staying)), Qt::RightDockWidgetArea);
        QTRY_VERIFY(m_window->panel(Noting)->isVisible() && m_window->panel(Staying)->isVisible());
        QTRY_VERIFY(seenCalls(m_window->panel(Noting)).contains("onActive"));
        QTRY_VERIFY(seenCalls(m_window->panel(Staying)).contains("onActive"));
        m_window->resetLayout();
        QCOMPARE(m_window->dockWidgetArea(dockOf(*m_window, Staying)), Qt::LeftDockWidgetArea);
        QCOMPARE(m_window->tabifiedDockWidgets(dockOf(*m_window, Noting)),
                 QList<QDockWidget*>{dockOf(*m_window, Staying)});
    }

    void oneUsersLayoutIsNotAnothers()
    {
        start();
        dockOf(*m_window, Staying)->close();
        m_window->switchServer("B");
        m_window->close();
        m_window.reset();
        logInAs("risk02");
        start();
        QCOMPARE(m_window->openPanels(), QStringList({Noting, Staying}));
        QCOMPARE(m_window->currentServer(), QString("A"));
    }

    void aKeptServerThatIsGoneGivesTheFirstOne()
    {
        start();
        m_window->switchServer("B");
        m_window->close();
        m_window.reset();
        centre().removeServer("B");
        start();
        QCOMPARE(m_window->currentServer(), QString("A"));
    }

    void aBrokenLayoutChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("state");
        QTest::newRow("text") << QByteArray("rubbish");
        QTest::newRow("cut") << QByteArray("\0\0\0\xff\0\0\0\0\xfd\0\0\0\1", 13);
        QTest::newRow("bytes") << QByteArray(4000, '\xff');
    }

    void aBrokenLayoutChangesNothing()
    {
        QFETCH(QByteArray, state);
        m_settings = std::make_unique<workbench::CUserSettings>(m_folder->filePath("s.ini"));
        m_settings->setWindow("risk01", state, state);
        m_settings->setOpenPanels("risk01", {Noting, "fixtures::CGone", "", "a b"});
        start();
        QCOMPARE(m_window->openPanels(), QStringList(Noting));
        QVERIFY(m_window->panel(Noting)->isVisible());
    }

    void aPluginThatThrowsIsReportedByNameAndTheClientRunsOn()
    {
        m_log.expect("03-throwing.plugin.json: 创建面板失败");
        start();
        auto* state = m_window->findChild<QToolButton*>("pluginState");
        QCOMPARE(state->text(), QString("插件 3, 无法使用 1"));
        QCOMPARE(state->toolTip(), QString("异常面板: 创建面板失败: 数据文件缺失"));
        m_presenter->expectMessage(QMessageBox::Warning, "插件", "“异常面板”无法打开: 创建面板失败: 数据文件缺失",
                                   QMessageBox::Ok, QMessageBox::Ok);
        QVERIFY(!m_window->openPanel(Throwing));
        m_presenter->expectMessage(QMessageBox::Warning, "插件", "没有插件提供“x::Y”", QMessageBox::Ok,
                                   QMessageBox::Ok);
        QVERIFY(!m_window->openPanel("x::Y"));
        QVERIFY(m_window->openPanel(Noting));
    }

    void theListOfPluginsSaysWhatBecameOfEach()
    {
        start();
        m_presenter->expectDialog([](WQ::CBaseDialog& dialog) {
            auto* list = dialog.findChild<QTreeWidget*>("pluginList");
            QVERIFY(list);
            QCOMPARE(list->topLevelItemCount(), 3);
            QCOMPARE(list->topLevelItem(0)->text(0), QString("记录面板"));
            QCOMPARE(list->topLevelItem(0)->text(1), QString("已加载"));
            QCOMPARE(list->topLevelItem(2)->text(1), QString("无法使用"));
            QCOMPARE(list->topLevelItem(2)->text(2), QString("创建面板失败: 数据文件缺失"));
            dialog.done(0);
        });
        m_window->showPlugins();
    }

    void theStateOfEveryConnectionIsShownLive()
    {
        start();
        auto* mark = m_window->findChild<QLabel*>("server.B");
        QVERIFY(mark);
        QCOMPARE(mark->toolTip(), QString("B: 已连接"));
        m_transport->setState(QAV::EConnectionState::Connecting);
        QTRY_COMPARE(mark->toolTip(), QString("B: 正在连接"));
        m_transport->setState(QAV::EConnectionState::Disconnected);
        QTRY_COMPARE(mark->toolTip(), QString("B: 未连接"));
        QCOMPARE(m_window->findChild<QLabel*>("server.A")->toolTip(), QString("A: 已连接"));
    }

    void aServerThatRefusedTheUserIsNamedInTheStatusBar()
    {
        const auto letIn = [](const auto& user, const auto&, const auto& handler) {
            const auto info = boost::make_shared<nvservice::CUserInfo>();
            info->userId = user;
            handler(utils::NVError(), info);
        };
        const auto welcoming = boost::make_shared<CFakeTransport>();
        welcoming->onLogIn = letIn;
        QVERIFY(centre().addServer("C", "c", welcoming).isSuccess());
        m_transport->onLogIn = [](const auto&, const auto&, const auto& handler) {
            handler(utils::NVError(utils::EErrorCode::NotConnected, "连接中断"), nullptr);
        };
        centre().removeServer("A");
        bool done = false;
        m_session->logIn("risk01", "x", [&](const auto&) { done = true; });
        QTRY_VERIFY(done);
        start();
        QCOMPARE(m_window->statusBar()->currentMessage(), QString("未能登录 B: 连接中断"));
    }

    void theUserAndHisRightsAreShown()
    {
        start();
        auto* user = m_window->findChild<QLabel*>("user");
        QCOMPARE(user->text(), QString("风控员 (risk01)"));
        QCOMPARE(user->toolTip(), QString("✓ 添加和编辑账号组\n✗ 风控设置\n✗ 删除账号组"));
    }

    void theThemeIsSwitchedLive()
    {
        start();
        const QColor dark = m_window->palette().color(QPalette::Window);
        QTest::mouseClick(m_window->findChild<QToolButton*>("themeButton"), Qt::LeftButton);
        QCOMPARE(WQ::CUiResourceManager::instance()->theme(), QString("light"));
        QVERIFY(m_window->palette().color(QPalette::Window) != dark);
        QVERIFY(!m_window->switchTheme("no such theme"));
        QCOMPARE(WQ::CUiResourceManager::instance()->theme(), QString("light"));
    }

    void closingTheLastPanelShowsWhereToFindOthers()
    {
        start();
        QWidget* page = m_window->findChild<QWidget*>("startPage");
        QTRY_VERIFY(!page->isVisible());
        dockOf(*m_window, Noting)->close();
        dockOf(*m_window, Staying)->close();
        QTRY_VERIFY(page->isVisible());
        m_window->openPanel(Noting);
        QTRY_VERIFY(!page->isVisible());
    }

    void refreshingActivatesThePanelInFront()
    {
        start();
        auto* noting = m_window->panel(Noting);
        m_window->openPanel(Noting);
        QTRY_VERIFY(seenCalls(noting).contains("onActive"));
        callsOf(noting);
        m_window->refreshCurrentPanel();
        QCOMPARE(callsOf(noting), QStringList("onActive"));
    }

    void aSettingsFileThatCannotBeWrittenIsSaidOnceOnClosing()
    {
        m_settings = std::make_unique<workbench::CUserSettings>("/proc/none/s.ini");
        start();
        m_presenter->expectMessage(QMessageBox::Warning, "提示", "布局无法保存: /proc/none/s.ini", QMessageBox::Ok,
                                   QMessageBox::Ok);
        m_window->close();
        QVERIFY(!m_window->isVisible());
    }

    void anotherUserMayLogIn()
    {
        start();
        QSignalSpy closed(m_window.get(), &CMainWindow::sigClosed);
        QVERIFY(!m_window->wantsAnotherUser());
        m_window->changeUser();
        QCOMPARE(closed.count(), 1);
        QVERIFY(m_window->wantsAnotherUser());
    }

private:
    static QAV::CKolmClientCenter& centre() { return *utils::CSingletonT<QAV::CKolmClientCenter>::instance(); }

    static void logInAs(const std::string& id)
    {
        const auto user = boost::make_shared<nvservice::CUserInfo>();
        user->userId = id;
        user->userName = "风控员";
        user->rights = {10717};
        utils::CSingletonT<QAV::CUserManager>::instance()->setUserInfo(user);
    }

    /// Begins a run of the client with the settings of the one before.
    void start()
    {
        if (!m_settings || m_settings->fileName().startsWith(m_folder->path())) {
            m_settings = std::make_unique<workbench::CUserSettings>(m_folder->filePath("s.ini"));
        }
        m_catalogue = std::make_unique<workbench::CPluginCatalogue>();
        m_catalogue->scan({m_plugins.path()});
        m_window = std::make_unique<CMainWindow>(*m_session, *m_settings, *m_catalogue);
        m_window->restoreLayout();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    QTemporaryDir m_plugins;
    std::unique_ptr<QTemporaryDir> m_folder;
    support::UnexpectedLog m_log;
    std::unique_ptr<support::ScriptedPresenter> m_presenter;
    std::unique_ptr<workbench::CSession> m_session;
    std::unique_ptr<workbench::CUserSettings> m_settings;
    std::unique_ptr<workbench::CPluginCatalogue> m_catalogue;
    boost::shared_ptr<CFakeTransport> m_transport;
    std::unique_ptr<CMainWindow> m_window;
};

QTEST_MAIN(TestMainWindow)
#include "test_workbench_main_window.moc"
