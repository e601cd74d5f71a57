// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

/// What is kept from one run to the next.
class LayoutTest : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void theLayoutSurvivesARestart()
    {
        start();
        m_window->panel(Noting)->setProperty("state", "名称,200|账号数量,80");
        dockOf(*m_window, Staying)->close();
        QVERIFY(m_window->switchServer("B"));
        QVERIFY(m_window->switchTheme("light"));
        m_window->setZoom(120);
        m_window->resize(1111, 777);
        m_window->close();
        m_window.reset();
        QCOMPARE(WQ::CUiResourceManager::instance()->fontScale(), 1.0);
        WQ::CUiResourceManager::instance()->setTheme("dark");

        start();
        QCOMPARE(m_window->openPanels(), QStringList(Noting));
        QCOMPARE(m_window->currentServer(), QString("B"));
        QCOMPARE(WQ::CUiResourceManager::instance()->theme(), QString("light"));
        QCOMPARE(m_window->zoom(), 120);
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
        support::centre().removeServer("B");
        start();
        QCOMPARE(m_window->currentServer(), QString("A"));
    }

    void aBrokenLayoutChangesNothing_data()
    {
        const support::DataRows<QByteArray> row("state");
        row("text", "rubbish");
        row("cut", QByteArray("\0\0\0\xff\0\0\0\0\xfd\0\0\0\1", 13));
        row("bytes", QByteArray(4000, '\xff'));
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

    void aSettingsFileThatCannotBeWrittenIsSaidOnceOnClosing()
    {
        m_settings = std::make_unique<workbench::CUserSettings>("/proc/none/s.ini");
        start();
        m_boxes->expectMessage(QMessageBox::Warning, "提示", "布局无法保存：/proc/none/s.ini");
        m_window->close();
        QVERIFY(!m_window->isVisible());
    }
};

TEST_WITH_WIDGETS(LayoutTest)
#include "tst_workbench_layout.moc"
