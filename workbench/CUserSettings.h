// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Translation.h>

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>

namespace workbench
{

/// The settings that the client saves: one file with a section per user. Unreadable values count as missing. UI thread
/// only.
class CUserSettings
{
public:
    /// @param file   the file; its folder is created when something is saved. Empty: in the user's configuration
    /// folder.
    explicit CUserSettings(const QString& file);

    /// The last log-in name; empty the first time.
    QString lastUser() const;
    void setLastUser(const QString& user);

    /// The language of the client; none the first time.
    std::optional<utils::ELanguage> language() const;
    void setLanguage(utils::ELanguage language);

    /// The theme of the user, or of the last user if nobody is logged in. Empty the first time.
    QString theme(const QString& user) const;
    void setTheme(const QString& user, const QString& theme);

    /// How much larger than the desktop wants them the user wants the fonts, in percent; 100 the first time.
    int zoom(const QString& user) const;
    void setZoom(const QString& user, int percent);

    /// The selected server; empty for all servers. `known` receives whether one was saved at all.
    QString server(const QString& user, bool& known) const;
    void setServer(const QString& user, const QString& server);

    /// Geometry and dock layout of the main window; null the first time.
    QByteArray windowGeometry(const QString& user) const;
    QByteArray dockState(const QString& user) const;
    void setWindow(const QString& user, const QByteArray& geometry, const QByteArray& dockState);

    /// The classes of the open panels, in the order in which they were opened. `known` as above.
    QStringList openPanels(const QString& user, bool& known) const;
    void setOpenPanels(const QString& user, const QStringList& classNames);

    /// The last saved result of a panel's param(). `known` as above.
    QString panelParam(const QString& user, const QString& panel, bool& known) const;
    void setPanelParam(const QString& user, const QString& panel, const QString& param);

    /// Writes at once. False if the file cannot be written.
    bool flush();
    QString fileName() const { return m_settings.fileName(); }

private:
    QSettings m_settings;
};

} // namespace workbench
