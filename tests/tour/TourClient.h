// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Stages.h"
#include "TourDatabase.h"
#include "support/UnexpectedLog.h"

#include "workbench/CInstallation.h"
#include "workbench/CMainWindow.h"
#include "workbench/CSession.h"
#include "workbench/CUserSettings.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CStandardHpfTable.h>

#include <QTemporaryDir>

#include <memory>

namespace tour
{

enum GroupColumn { NameColumn, CountColumn, InstitutionColumn, ServerColumn, OperationColumn };

/// The client as a user starts it, with the real panel, loaded by name, on a database of its own with sample data.
/// Every warning that is logged and every dialog that no stage expects fails the test.
class TourClient
{
public:
    /// @param chapter  begins the names of the pictures
    explicit TourClient(const QString& chapter, int servers = 3);
    ~TourClient();
    TourClient(const TourClient&) = delete;
    TourClient& operator=(const TourClient&) = delete;

    /// The module switches from now on; panels that are there keep theirs. Without a configuration, the shipped ones.
    void switchModules(const QString& configuration = {});
    /// Ends the client that runs, if any, and starts it for a user.
    void start(const QString& user, const QString& password);
    void stop();
    /// The server is expected in the network now, where nobody listens; `plugIn` ends that and asks for another start.
    void unplug(const QString& server);
    void plugIn();
    /// Fails the test for what was logged since the last call.
    void checkLog();

    workbench::CSession& session() { return *m_session; }
    workbench::CUserSettings& settings() { return *m_settings; }
    workbench::CMainWindow& window() const { return *m_window; }
    QAV::IkolmDockableWidget& panel() const;
    WQ::CStandardHpfTable& table() const { return *panel().findChild<WQ::CStandardHpfTable*>(); }
    WQ::CLoadingMaskWidget& mask() const;
    WQ::CLineEdit& searchEdit() const { return *panel().findChild<WQ::CLineEdit*>(); }
    TourDatabase& database() { return *m_database; }
    QString databaseFile() const { return m_folder.filePath("tour.db"); }
    QString folder() const { return m_folder.path(); }

    /// Chooses a server in the tool bar (empty: all) and waits for its groups.
    void chooseServer(const QString& server);
    void waitUntilLoaded();
    /// Presses 立即刷新 and waits for the groups.
    void refresh();
    void search(const QString& text);
    /// Presses 添加账号组, plays what follows and waits for the groups.
    void addGroup(const std::vector<Stage>& stages);
    /// Presses a button of a group's row, plays what follows and waits for the groups.
    void pressGroupButton(const QString& group, const QString& button, const std::vector<Stage>& stages);
    /// Clicks a button of a group's row.
    void clickGroupButton(const QString& group, const QString& button);
    /// "name|number of accounts|institution|server" of each row, sorted.
    QStringList shownRows() const;
    QStringList shown(GroupColumn column) const;

    /// Keeps a picture of the window with all that stands on it.
    void picture(const QString& name);
    /// The same in both themes.
    void pictures(const QString& name);
    /// Keeps a picture of one widget as it is, before it hears of anything else.
    void picture(QWidget& widget, const QString& name);

private:
    void keep(const QPixmap& picture, const QString& name);
    QPixmap screen() const;

    QTemporaryDir m_folder;
    QString m_chapter;
    QString m_pictures;
    int m_pictureCount = 0;
    support::UnexpectedLog m_log;
    Watch m_watch;
    std::unique_ptr<workbench::CInstallation> m_installation;
    std::unique_ptr<TourDatabase> m_database;
    std::unique_ptr<workbench::CUserSettings> m_settings;
    std::unique_ptr<workbench::CPluginCatalogue> m_plugins;
    std::unique_ptr<workbench::CSession> m_session;
    std::unique_ptr<workbench::CMainWindow> m_window;
};

} // namespace tour
