// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/Paths.h"
#include "support/qav/CFakeTransport.h"
#include "support/qav/Client.h"
#include "support/wq/WatchedTest.h"

#include "workbench/CMainWindow.h"
#include "workbench/CSession.h"
#include "workbench/CUserSettings.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/CBaseDialog.h>
#include <WQ/CUiResourceManager.h>

#include <boost/make_shared.hpp>

#include <QtTest>
#include <QtWidgets/QtWidgets>

using support::CFakeTransport;
using workbench::CMainWindow;

inline const QString Noting = "fixtures::CNotingPanel";
inline const QString Staying = "fixtures::CStayingPanel";
inline const QString Throwing = "fixtures::CThrowingPanel";

inline QStringList callsOf(QAV::IkolmDockableWidget* panel)
{
    const QStringList calls = panel->property("calls").toStringList();
    panel->setProperty("calls", QStringList());
    return calls;
}

inline QStringList seenCalls(QAV::IkolmDockableWidget* panel)
{
    return panel->property("calls").toStringList();
}

inline QDockWidget* dockOf(CMainWindow& window, const QString& className)
{
    return window.findChild<QDockWidget*>("dock." + className);
}

/// A main window on two fake servers with the fixture plug-ins, and the client's runs one after the other.
class MainWindowFixture : public support::WatchedTest
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
            QVERIFY(QFile::copy(support::builtFile("tests/workbench/fixtures/plugins") + QLatin1Char('/') + name,
                                m_plugins.filePath(name)));
        }
    }

    void init()
    {
        WatchedTest::init();
        m_log->allow("03-throwing.plugin.json: 创建面板失败");
        m_folder = std::make_unique<QTemporaryDir>();
        m_session = std::make_unique<workbench::CSession>();
        m_transport = boost::make_shared<CFakeTransport>();
        QVERIFY(support::centre().addServer("B", "b", m_transport).isSuccess());
        QVERIFY(support::centre().addServer("A", "a", boost::make_shared<CFakeTransport>()).isSuccess());
        logInAs("risk01");
        WQ::CUiResourceManager::instance()->setTheme("dark");
    }

    void cleanup()
    {
        m_window.reset();
        m_catalogue.reset();
        m_settings.reset();
        m_session->logOut();
        support::centre().shutDown();
        m_session.reset();
        m_transport.reset();
        m_folder.reset();
        WatchedTest::cleanup();
    }

protected:
    static void logInAs(const std::string& id)
    {
        const auto user = support::makeUser(id, {10717});
        user->userName = "风控员";
        support::logInAs(user);
    }

    /// Logs in at B, which refuses the user, and at a new server C instead of A, which does not.
    void logInRefusedByB(const utils::NVError& refusal)
    {
        const auto welcoming = boost::make_shared<CFakeTransport>();
        welcoming->onLogIn = [](const auto& user, const auto&, const auto& handler) {
            handler(utils::NVError(), support::makeUser(user, {}));
        };
        QVERIFY(support::centre().addServer("C", "c", welcoming).isSuccess());
        m_transport->onLogIn = [refusal](const auto&, const auto&, const auto& handler) { handler(refusal, nullptr); };
        support::centre().removeServer("A");
        bool done = false;
        m_session->logIn("risk01", "x", [&](const auto&) { done = true; });
        QTRY_VERIFY(done);
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
    std::unique_ptr<workbench::CSession> m_session;
    std::unique_ptr<workbench::CUserSettings> m_settings;
    std::unique_ptr<workbench::CPluginCatalogue> m_catalogue;
    boost::shared_ptr<CFakeTransport> m_transport;
    std::unique_ptr<CMainWindow> m_window;
};
