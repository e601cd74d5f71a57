#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>

namespace workbench
{

/// What the client keeps between runs: one file, a section per user. Values that cannot be read are as good as absent.
/// UI thread only.
class CUserSettings
{
public:
    /// @param file   the file; its folder is made when something is kept. Empty: the user's configuration folder.
    explicit CUserSettings(const QString& file);

    /// The log-in name that was used last; empty the first time.
    QString lastUser() const;
    void setLastUser(const QString& user);

    /// Theme of the user; of the last user before anybody has logged in. Empty the first time.
    QString theme(const QString& user) const;
    void setTheme(const QString& user, const QString& theme);

    /// The chosen server, empty for all of them. `known` tells whether one was kept at all.
    QString server(const QString& user, bool& known) const;
    void setServer(const QString& user, const QString& server);

    /// Geometry and dock layout of the main window; null the first time.
    QByteArray windowGeometry(const QString& user) const;
    QByteArray dockState(const QString& user) const;
    void setWindow(const QString& user, const QByteArray& geometry, const QByteArray& dockState);

    /// Classes of the panels that were open, in the order of their opening. `known` as above.
    QStringList openPanels(const QString& user, bool& known) const;
    void setOpenPanels(const QString& user, const QStringList& classNames);

    /// What a panel's param() returned when it was kept last. `known` as above.
    QString panelParam(const QString& user, const QString& panel, bool& known) const;
    void setPanelParam(const QString& user, const QString& panel, const QString& param);

    /// Writes at once. False when the file cannot be written.
    bool flush();
    QString fileName() const { return m_settings.fileName(); }

private:
    QSettings m_settings;
};

} // namespace workbench
