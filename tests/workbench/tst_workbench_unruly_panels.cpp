// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"

#include "workbench/CApplication.h"

/// Panels that ask without their gate, and panels that throw.
class UnrulyPanelsTest : public MainWindowFixture
{
    Q_OBJECT

    /// Begins a run of the client in which `manifest` is one of the plug-ins. Returns its panel, which is in front.
    QAV::IkolmDockableWidget* startWith(const QString& manifest, const QString& className)
    {
        const QString name = manifest + ".plugin.json";
        QFile::copy(support::builtFile("tests/workbench/fixtures/plugins/" + name), m_plugins.filePath(name));
        start();
        return m_window->openPanel(className);
    }

    static inline const QString Asking = "fixtures::CAskingPanel";
    static inline const QString Failing = "fixtures::CFailingPanel";

private slots:
    void aPanelThatAsksForEverIsDestroyedWithItsRequestsUnderWay()
    {
        QAV::IkolmDockableWidget* panel = startWith("14-asking", Asking);
        QTRY_VERIFY(m_transport->waitingQueries() > 0);
        m_transport->takeQuery().handler(support::replyWith({}));
        QTRY_COMPARE(panel->property("replies").toInt(), 1);
        const auto pending = m_transport->takeQuery();
        m_window->close();
        m_window.reset();
        pending.handler(support::replyWith({}));
        while (m_transport->waitingQueries() > 0) {
            m_transport->takeQuery().handler(support::replyWith({}));
        }
        support::settleCallbacks();
    }

    void theNextUsersPanelAsksAgain()
    {
        startWith("14-asking", Asking);
        QTRY_VERIFY(m_transport->waitingQueries() > 0);
        m_transport->takeQuery();
        m_window->changeUser();
        m_window.reset();
        while (m_transport->waitingQueries() > 0) {
            m_transport->takeQuery();
        }
        logInAs("risk02");
        QAV::IkolmDockableWidget* panel = startWith("14-asking", Asking);
        QTRY_VERIFY(m_transport->waitingQueries() > 0);
        m_transport->takeQuery().handler(support::replyWith({}));
        QTRY_COMPARE(panel->property("replies").toInt(), 1);
    }

    void noExceptionOfAPanelEndsTheClient()
    {
        const auto threw = [](const QString& what) { return "fixtures::CFailingPanel threw: " + what; };
        m_log->expect(threw("switchSystem"));
        m_log->expect(threw("onActive"));
        QAV::IkolmDockableWidget* panel = startWith("15-failing", Failing);
        QTRY_VERIFY(m_transport->waitingQueries() > 0);
        m_window->switchServer("B");
        m_window->refreshCurrentPanel();

        // The gate's mailbox runs the callback.
        m_log->expect("threw: reply");
        m_transport->takeQuery().handler(support::replyWith({}));
        support::settleCallbacks();

        m_log->expect(threw("mousePressEvent"));
        QTest::mouseClick(panel, Qt::LeftButton);
        m_log->expect("fixtures::CFailingPanel threw something that is not an exception");
        QMetaObject::invokeMethod(panel, "fail", Qt::QueuedConnection);
        QCoreApplication::processEvents();

        m_log->expect(threw("param"));
        m_settings->setPanelParam("risk01", "failing", "kept");
        m_window->close();
        m_window.reset();
        m_log->expect(threw("setParam"));
        QVERIFY(startWith("15-failing", Failing));
        bool known = false;
        QCOMPARE(m_settings->panelParam("risk01", "failing", known), QString("kept"));
        QVERIFY(m_window->openPanel(Noting));
    }
};

static const support::TestRegistration unrulyPanelsTest(__FILE__,
                                                        support::runTest<UnrulyPanelsTest, workbench::CApplication>);
#include "tst_workbench_unruly_panels.moc"
