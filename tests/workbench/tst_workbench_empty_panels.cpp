// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "PanelTable.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"

#include <random>

using QAV::EConnectionState;

/// What the client says in panels without rows, and what it does when a server is back.
class EmptyPanelsTest : public MainWindowFixture
{
    Q_OBJECT

    /// The panel in front, on server B.
    QAV::IkolmDockableWidget& startOnB()
    {
        start();
        QAV::IkolmDockableWidget& panel = *m_window->openPanel(Noting);
        m_window->switchServer("B");
        [&] { QTRY_VERIFY(seenCalls(&panel).contains("onActive")); }();
        callsOf(&panel);
        return panel;
    }

    void setState(EConnectionState state)
    {
        m_transport->setState(state);
        support::settleCallbacks();
    }

private slots:
    void theReasonIsTheServerThatWasChosen()
    {
        const PanelTable rows(startOnB());
        QCOMPARE(rows.emptyText(), QString("暂无数据"));
        m_transport->setState(EConnectionState::Disconnected, "服务端证书已过期");
        QTRY_COMPARE(rows.emptyText(), QString("分系统“B”未连接：服务端证书已过期\n恢复连接后自动刷新"));
        m_transport->setState(EConnectionState::Connecting);
        QTRY_COMPARE(rows.emptyText(), QString("正在连接分系统“B”…"));
        m_window->switchServer("A");
        QCOMPARE(rows.emptyText(), QString("暂无数据"));
        m_window->switchServer("");
        QCOMPARE(rows.emptyText(), QString("已选择全部分系统\n请在工具栏中选择一个分系统"));
        m_window->switchServer("B");
        m_transport->setState(EConnectionState::Connected);
        QTRY_COMPARE(rows.emptyText(), QString("暂无数据"));
    }

    void aPanelOfAllServersLacksRowsOnlyWithoutAnyServer()
    {
        start();
        const PanelTable rows(*m_window->openPanel(Staying));
        setState(EConnectionState::Disconnected);
        QCOMPARE(rows.emptyText(), QString("暂无数据"));
        support::centre().removeServer("A");
        m_transport->setState(EConnectionState::Disconnected, "断开");
        QTRY_COMPARE(rows.emptyText(), QString("未连接分系统\n恢复连接后自动刷新"));
    }

    void aServerThatRefusedTheUserIsTheReason()
    {
        logInRefusedByB(utils::NVError(utils::EErrorCode::NotLoggedIn, "用户已停用"));
        const PanelTable rows(startOnB());
        QCOMPARE(rows.emptyText(), QString("没有权限：未能登录分系统“B”\n用户已停用"));
        m_window->switchServer("C");
        QCOMPARE(rows.emptyText(), QString("暂无数据"));
    }

    void aServerThatIsBackRefreshesWhatIsEmptyBecauseOfIt_data()
    {
        const support::DataRows<QString, int, bool, int> row("server", "rows", "inFront", "activations");
        row("the server of the panel", "B", 0, true, 1);
        row("a panel with rows keeps them", "B", 3, true, 0);
        row("another server", "A", 0, true, 0);
        row("all servers", "", 0, true, 1);
        row("a panel that is hidden loads when it is shown", "B", 0, false, 0);
    }
    void aServerThatIsBackRefreshesWhatIsEmptyBecauseOfIt()
    {
        QFETCH(QString, server);
        QFETCH(int, rows);
        QFETCH(bool, inFront);
        QFETCH(int, activations);
        QAV::IkolmDockableWidget& panel = startOnB();
        m_window->switchServer(server);
        const PanelTable table(panel);
        table.fill(rows);
        if (!inFront) {
            QAV::IkolmDockableWidget* const staying = m_window->openPanel(Staying);
            QTRY_VERIFY(seenCalls(staying).contains("onActive"));
        }
        setState(EConnectionState::Disconnected);
        callsOf(&panel);
        setState(EConnectionState::Connected);
        QCOMPARE(seenCalls(&panel).count("onActive"), activations);
        setState(EConnectionState::Connected); // nothing new
        QCOMPARE(seenCalls(&panel).count("onActive"), activations);
    }

    /// Connections come and go while answers are under way. In the end the panel has the rows, without anybody's help.
    void whateverTheOrderThePanelEndsWithItsRows()
    {
        const int seed = support::setting("QAV_COURSE_SEED", 1);
        std::mt19937 random(static_cast<unsigned>(seed));
        QAV::IkolmDockableWidget& panel = startOnB();
        const PanelTable table(panel);
        struct Pending {
            bool fails = false;
            int number = 0;
        };
        std::deque<Pending> pending;
        bool isUp = true;
        int asked = 0;
        // The panel asks anew each time it is activated, and shows the answer to its last question alone.
        const auto ask = [&] {
            for (int calls = callsOf(&panel).count("onActive"); calls > 0; --calls) {
                table.model->clear();
                pending.push_back({!isUp, ++asked});
            }
        };
        const auto answer = [&] {
            const Pending first = pending.front();
            pending.pop_front();
            if (!first.fails && first.number == asked) {
                table.fill(5);
            }
        };
        for (int step = 0; step < 600; ++step) {
            switch (random() % 5) {
            case 0:
            case 1:
                isUp = !isUp;
                m_transport->setState(isUp           ? EConnectionState::Connected
                                      : random() % 2 ? EConnectionState::Connecting
                                                     : EConnectionState::Disconnected);
                break;
            case 2:
                m_window->refreshCurrentPanel();
                break;
            case 3:
                if (!pending.empty()) {
                    answer();
                }
                break;
            default:
                QCoreApplication::processEvents();
            }
            ask();
            if (step % 60 == 59) {
                isUp = true;
                setState(EConnectionState::Connected);
                ask();
                while (!pending.empty()) {
                    answer();
                }
                QVERIFY2(table.model->getDataCount() > 0 || asked == 0,
                         qPrintable(QString("seed %1, step %2").arg(seed).arg(step)));
            }
        }
        QVERIFY(asked > 50);
    }
};

TEST_WITH_WIDGETS(EmptyPanelsTest)
#include "tst_workbench_empty_panels.moc"
