// SPDX-License-Identifier: Apache-2.0
#include "support/Paths.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/wq/ThemePicture.h"
#include "support/wq/WatchedTest.h"

#include "workbench/CInstallation.h"
#include "workbench/CMainWindow.h"
#include "workbench/CSession.h"
#include "workbench/CUserSettings.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/CLineEdit.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QtTest>
#include <QtWidgets/QtWidgets>

#include <optional>

/// The example of the SDK, as it was built against the installed SDK, in the client with sample data.
class ExampleTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void theExampleListsSearchesAndFollowsTheServer()
    {
        WQ::CUiResourceManager::instance()->setTheme("dark");
        WQ::CUiResourceManager::instance()->applyTo(*qApp);
        QTemporaryDir folder;
        workbench::CInstallation installation;
        workbench::SampleSize size;
        size.groups = 7;
        size.accounts = 180;
        const utils::NVError opened = installation.open(folder.filePath("example.db"), size);
        QVERIFY2(opened.isSuccess(), opened.errorMsg().c_str());
        workbench::CSession session;
        std::optional<utils::NVError> outcome;
        session.logIn("admin", "admin123",
                      [&](const workbench::CSession::Outcome& reached) { outcome = reached.error; });
        QTRY_VERIFY_WITH_TIMEOUT(outcome.has_value(), 60000);
        QVERIFY2(outcome->isSuccess(), outcome->errorMsg().c_str());

        workbench::CUserSettings settings(folder.filePath("settings.ini"));
        workbench::CPluginCatalogue plugins;
        plugins.scan({support::builtFile("tests/build/sdk/examples/accounts/build")});
        const workbench::PluginEntry* entry = plugins.find(Panel);
        QVERIFY2(entry, "The example has not been built; the test plugin_builds_against_the_installed_sdk does that.");
        QCOMPARE(entry->displayName(), QString("账号一览"));
        QVERIFY(WQ::CUiResourceManager::instance()->imageKeys().contains(entry->manifest.icon));

        workbench::CMainWindow window(session, settings, plugins);
        window.resize(1000, 600);
        window.restoreLayout();
        window.show();
        QVERIFY(window.switchServer(QString()));
        QAV::IkolmDockableWidget* panel = window.openPanel(Panel);
        QVERIFY(panel);
        auto* state = panel->findChild<WQ::CSimpleTextWidget*>();
        auto* model = panel->findChild<WQ::CStandardHpfTable*>()->dataModel();
        QTRY_VERIFY_WITH_TIMEOUT(state->text().endsWith("个账号"), 60000);
        QCOMPARE(state->text(), QString("%1 个账号").arg(model->rowCount()));
        const int ofAll = model->rowCount();
        QVERIFY(ofAll > 10);
        support::takePicture(window, "example-1-all-servers");

        const QString server = window.serverChoices().value(1);
        QVERIFY(window.switchServer(server));
        QTRY_VERIFY_WITH_TIMEOUT(state->text().endsWith("个账号") && model->rowCount() < ofAll, 60000);
        QVERIFY(model->rowCount() > 0);
        for (int row = 0; row < model->rowCount(); ++row) {
            QCOMPARE(model->index(row, 4).data().toString(), server);
        }

        auto* search = panel->findChild<WQ::CLineEdit*>();
        const QString name = model->index(0, 1).data().toString();
        search->setText(name);
        QVERIFY(model->rowCount() > 0);
        for (int row = 0; row < model->rowCount(); ++row) {
            QVERIFY(model->index(row, 1).data().toString().contains(name));
        }
        support::takePicture(window, "example-2-search");
        window.refreshCurrentPanel();
        window.close(); // with the request under way
    }

private:
    static inline const QString Panel = "Example::CAccountListPanel";
};

TEST_WITH_WIDGETS(ExampleTest)
#include "tst_workbench_example.moc"
