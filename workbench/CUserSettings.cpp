// SPDX-License-Identifier: Apache-2.0
#include "CUserSettings.h"

#include <utils/Translation.h>

#include <QStandardPaths>
#include <QUrl>

namespace workbench
{

namespace
{

QString resolved(const QString& file)
{
    return file.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + "/workbench.ini"
                          : file;
}

/// Names may contain any character; keys may not.
QString keyPart(const QString& name)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(name));
}

QString userKey(const QString& user, const char* name)
{
    return "users/" + keyPart(user) + '/' + QLatin1String(name);
}

QString panelKey(const QString& user, const QString& panel)
{
    return userKey(user, "panels/") + keyPart(panel);
}

} // namespace

CUserSettings::CUserSettings(const QString& file) : m_settings(resolved(file), QSettings::IniFormat) {}

QString CUserSettings::lastUser() const
{
    return m_settings.value("lastUser").toString();
}

void CUserSettings::setLastUser(const QString& user)
{
    m_settings.setValue("lastUser", user);
}

std::optional<utils::ELanguage> CUserSettings::language() const
{
    return utils::languageNamed(m_settings.value("language").toString().toStdString());
}

void CUserSettings::setLanguage(utils::ELanguage language)
{
    m_settings.setValue("language", QString::fromStdString(utils::nameOf(language)));
}

QString CUserSettings::theme(const QString& user) const
{
    return m_settings.value(userKey(user.isEmpty() ? lastUser() : user, "theme")).toString();
}

void CUserSettings::setTheme(const QString& user, const QString& theme)
{
    m_settings.setValue(userKey(user, "theme"), theme);
}

int CUserSettings::zoom(const QString& user) const
{
    return m_settings.value(userKey(user, "zoom"), 100).toInt();
}

void CUserSettings::setZoom(const QString& user, int percent)
{
    m_settings.setValue(userKey(user, "zoom"), percent);
}

QString CUserSettings::server(const QString& user, bool& known) const
{
    known = m_settings.contains(userKey(user, "server"));
    return m_settings.value(userKey(user, "server")).toString();
}

void CUserSettings::setServer(const QString& user, const QString& server)
{
    m_settings.setValue(userKey(user, "server"), server);
}

QByteArray CUserSettings::windowGeometry(const QString& user) const
{
    return m_settings.value(userKey(user, "geometry")).toByteArray();
}

QByteArray CUserSettings::dockState(const QString& user) const
{
    return m_settings.value(userKey(user, "docks")).toByteArray();
}

void CUserSettings::setWindow(const QString& user, const QByteArray& geometry, const QByteArray& dockState)
{
    m_settings.setValue(userKey(user, "geometry"), geometry);
    m_settings.setValue(userKey(user, "docks"), dockState);
}

QStringList CUserSettings::openPanels(const QString& user, bool& known) const
{
    known = m_settings.contains(userKey(user, "open"));
    return m_settings.value(userKey(user, "open")).toString().split(' ', Qt::SkipEmptyParts);
}

void CUserSettings::setOpenPanels(const QString& user, const QStringList& classNames)
{
    m_settings.setValue(userKey(user, "open"), classNames.join(' '));
}

QString CUserSettings::panelParam(const QString& user, const QString& panel, bool& known) const
{
    known = m_settings.contains(panelKey(user, panel));
    return m_settings.value(panelKey(user, panel)).toString();
}

void CUserSettings::setPanelParam(const QString& user, const QString& panel, const QString& param)
{
    m_settings.setValue(panelKey(user, panel), param);
}

bool CUserSettings::flush()
{
    m_settings.sync();
    return m_settings.status() == QSettings::NoError;
}

} // namespace workbench
