// SPDX-License-Identifier: Apache-2.0
#include "MainWindowFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"

/// Panels that ask without their gate.
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
};

static const support::TestRegistration unrulyPanelsTest(__FILE__,
                                                        support::runTest<UnrulyPanelsTest, workbench::CApplication>);
#include "tst_workbench_unruly_panels.moc"
