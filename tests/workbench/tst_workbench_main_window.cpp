// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

#include <QAV/SdkVersion.h>
#include <WQ/CBaseDialog.h>
#include <WQ/CMessageHistory.h>

/// What the main window does while it runs.
class MainWindowTest : public MainWindowFixture
{
    Q_OBJECT

private slots:
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
        QVERIFY(box->view()->isVisible());
        QTest::keyClick(box->view(), Qt::Key_Down);
        QCOMPARE(m_window->currentServer(), QString("A"));
        QTest::keyClick(box->view(), Qt::Key_Return);
        QCOMPARE(m_window->currentServer(), QString("B"));
        QVERIFY(seenCalls(m_window->panel(Noting)).contains("switchSystem 2 B"));
    }

    void noStrayKeyOrWheelChangesTheServer()
    {
        start();
        auto* box = m_window->findChild<QComboBox*>("serverBox");
        box->setFocus();
        for (const Qt::Key key : {Qt::Key_End, Qt::Key_PageDown, Qt::Key_B}) {
            QTest::keyClick(box, key);
            QCOMPARE(box->currentText(), QString("A"));
        }
        const QPoint middle = box->rect().center();
        QWheelEvent wheel(middle, box->mapToGlobal(middle), QPoint(), QPoint(0, -240), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(box, &wheel);
        QCOMPARE(box->currentText(), QString("A"));
        QVERIFY(!(box->focusPolicy() & Qt::WheelFocus & ~Qt::StrongFocus)); // a stray wheel leaves the focus alone
        for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_F4, Qt::Key_Down}) {
            QTest::keyClick(box, key);
            QVERIFY(box->view()->isVisible());
            QTest::keyClick(box->view(), Qt::Key_Down);
            QTest::keyClick(box->view(), Qt::Key_Escape);
            QVERIFY(!box->view()->isVisible());
        }
        QCOMPARE(box->currentText(), QString("A"));
        QCOMPARE(m_window->currentServer(), QString("A"));
    }

    void theKeyboardStartsInThePanelInFront()
    {
        start();
        auto* noting = m_window->panel(Noting);
        QTRY_VERIFY(noting->hasFocus() || noting->isAncestorOf(m_window->focusWidget()));
        auto* edit = new QLineEdit(m_window->panel(Staying));
        edit->show();
        m_window->openPanel(Staying);
        QTRY_COMPARE(m_window->focusWidget(), edit);
    }

    void withoutPluginsTheStartPageNamesTheFolders()
    {
        start();
        m_catalogue->scan({"/no/such/folder", m_folder->path()});
        CMainWindow window(*m_session, *m_settings, *m_catalogue);
        const auto* text = window.findChild<QLabel*>("startText");
        QCOMPARE(text->text(), "没有找到插件，已查找的目录：\n/no/such/folder\n" + m_folder->path());
    }

    void aPluginThatThrowsIsReportedByNameAndTheClientRunsOn()
    {
        m_log->expect("03-throwing.plugin.json: 创建面板失败"); // the log names it too
        start();
        auto* state = m_window->findChild<QToolButton*>("pluginState");
        QCOMPARE(state->text(), QString("插件 3，无法使用 1"));
        QCOMPARE(state->toolTip(), QString("异常面板：创建面板失败：数据文件缺失"));
        m_boxes->expectMessage(QMessageBox::Warning, "插件", "“异常面板”无法打开：创建面板失败：数据文件缺失");
        QVERIFY(!m_window->openPanel(Throwing));
        m_boxes->expectMessage(QMessageBox::Warning, "插件", "没有插件提供“x::Y”");
        QVERIFY(!m_window->openPanel("x::Y"));
        QVERIFY(m_window->openPanel(Noting));
    }

    void theListOfPluginsSaysWhatBecameOfEach()
    {
        start();
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            auto* list = dialog.findChild<QTreeWidget*>("pluginList");
            QVERIFY(list);
            QCOMPARE(list->topLevelItemCount(), 3);
            QCOMPARE(list->topLevelItem(0)->text(0), QString("记录面板"));
            QCOMPARE(list->topLevelItem(0)->text(1), QString("已加载"));
            QCOMPARE(list->topLevelItem(2)->text(1), QString("无法使用"));
            QCOMPARE(list->topLevelItem(2)->text(2), QString("创建面板失败：数据文件缺失"));
            dialog.done(0);
        });
        m_window->showPlugins();
    }

    void theStateOfEveryConnectionIsShownLive()
    {
        start();
        auto* mark = m_window->findChild<QLabel*>("server.B");
        QVERIFY(mark);
        QCOMPARE(mark->toolTip(), QString("B：已连接"));
        QVERIFY(mark->text().contains("●"));
        m_transport->setState(QAV::EConnectionState::Connecting);
        QTRY_COMPARE(mark->toolTip(), QString("B：正在连接"));
        QVERIFY(mark->text().contains("◐"));
        m_transport->setState(QAV::EConnectionState::Disconnected);
        QTRY_COMPARE(mark->toolTip(), QString("B：未连接"));
        QVERIFY(mark->text().contains("○"));
        m_transport->setState(QAV::EConnectionState::Disconnected, "无法连接：服务端证书已过期");
        QTRY_COMPARE(mark->toolTip(), QString("B：未连接，无法连接：服务端证书已过期"));
        m_transport->setState(QAV::EConnectionState::Connecting, "<b>x</b>");
        QTRY_COMPARE(mark->accessibleName(), QString("B：正在连接，<b>x</b>"));
        QVERIFY(mark->toolTip().contains("&lt;b&gt;x"));
        m_transport->setState(QAV::EConnectionState::Connected);
        QTRY_COMPARE(mark->toolTip(), QString("B：已连接"));
        QCOMPARE(m_window->findChild<QLabel*>("server.A")->toolTip(), QString("A：已连接"));
    }

    void aServerThatRefusedTheUserIsNamedInTheStatusBar()
    {
        logInRefusedByB(utils::NVError(utils::EErrorCode::NotConnected, "连接中断"));
        start();
        QCOMPARE(m_window->statusBar()->currentMessage(), QString("未能登录 B：连接中断"));
    }

    void theUserAndHisRightsAreShown()
    {
        start();
        auto* user = m_window->findChild<QLabel*>("user");
        QCOMPARE(user->text(), QString("风控员（risk01）"));
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

    void theFontsGrowAndShrinkByKeys()
    {
        start();
        const int normal = QApplication::font().pixelSize();
        const auto press = [this](Qt::Key key) { QTest::keyClick(m_window.get(), key, Qt::ControlModifier); };
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        press(Qt::Key_Plus);
        press(Qt::Key_Equal);
        press(Qt::Key_Plus);
        QCOMPARE(m_window->zoom(), 130);
        QCOMPARE(QApplication::font().pixelSize(), qRound(normal * 1.3));
        QCOMPARE(m_window->menuBar()->font().pixelSize(), qRound(normal * 1.3));
        press(Qt::Key_Minus);
        QCOMPARE(m_window->zoom(), 120);
        for (int i = 0; i < 20; ++i) {
            press(Qt::Key_Minus);
        }
        QCOMPARE(m_window->zoom(), 70);
        for (int i = 0; i < 20; ++i) {
            press(Qt::Key_Plus);
        }
        QCOMPARE(m_window->zoom(), 150);
        press(Qt::Key_0);
        QCOMPARE(QApplication::font().pixelSize(), normal);
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

    void aPanelComesToTheFrontByItsNumber()
    {
        start();
        auto* const noting = m_window->panel(Noting);
        QTRY_VERIFY(!noting->visibleRegion().isEmpty()); // the first one, at the first start
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window.get(), Qt::Key_2, Qt::AltModifier);
        QTRY_VERIFY(noting->visibleRegion().isEmpty());
        QTest::keyClick(m_window.get(), Qt::Key_1, Qt::AltModifier);
        QTRY_VERIFY(!noting->visibleRegion().isEmpty());
    }

    void theMenuMarksThePanelsThatAreOpen()
    {
        start();
        const auto entry = [this](const QString& text) {
            for (QAction* const action : m_window->menuBar()->actions()[1]->menu()->actions()) {
                if (action->text() == text) {
                    return action;
                }
            }
            return static_cast<QAction*>(nullptr);
        };
        const QString title = dockOf(*m_window, Noting)->windowTitle();
        QVERIFY(entry(title)->isChecked());
        entry(title)->trigger(); // open already
        QVERIFY(entry(title)->isChecked());
        dockOf(*m_window, Noting)->close();
        QTRY_VERIFY(!entry(title)->isChecked());
        entry(title)->trigger();
        QTRY_VERIFY(entry(title)->isChecked());
    }

    void aThemeThatIsGoneIsNotMarkedWhenItIsChosen()
    {
        start();
        const QTemporaryDir folder;
        QVERIFY(QFile::copy(":/wq/themes/light.json", folder.filePath("other.json")));
        auto* const resources = WQ::CUiResourceManager::instance();
        resources->setThemeDirectory(folder.path());
        CMainWindow window(*m_session, *m_settings, *m_catalogue);
        QVERIFY(QFile::remove(folder.filePath("other.json")));
        const QList<QAction*> actions = window.findChildren<QAction*>();
        const auto themeAction = [&](const QString& theme) {
            return *std::find_if(actions.begin(), actions.end(),
                                 [&](const QAction* action) { return action->data().toString() == theme; });
        };
        themeAction("other")->trigger();
        QCOMPARE(resources->theme(), QString("dark"));
        QVERIFY(themeAction("dark")->isChecked());
        QVERIFY(!themeAction("other")->isChecked());
        resources->setThemeDirectory({});
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

    void aboutNamesTheLicences()
    {
        start();
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            const QStringList lines = dialog.findChild<QLabel*>("aboutText")->text().split('\n');
            QCOMPARE(lines[0], "风控管理客户端 " + QCoreApplication::applicationVersion());
            QCOMPARE(lines[1], QString("插件 SDK " QAV_SDK_VERSION));
            QVERIFY(lines.contains(QString("本程序使用 Qt ") + qVersion() + "，按 LGPL 第3版许可。"));
            for (const char* const address : {"https://www.apache.org/licenses/LICENSE-2.0",
                                              "https://www.qt.io/licensing", "https://www.unicode.org/license.txt"}) {
                QVERIFY2(lines.contains(address), address);
            }
            QVERIFY(lines.last().contains("Breeze"));
            dialog.done(0);
        });
        const QList<QAction*> actions = m_window->findChildren<QAction*>();
        const auto about = std::find_if(actions.begin(), actions.end(),
                                        [](const QAction* action) { return action->text() == "关于(&A)…"; });
        QVERIFY(about != actions.end());
        (*about)->trigger();
        QVERIFY(m_boxes->verify());
        QVERIFY(WQ::CMessageHistory::instance().messages().isEmpty()); // it is no message
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
};

TEST_WITH_WIDGETS(MainWindowTest)
#include "tst_workbench_main_window.moc"
