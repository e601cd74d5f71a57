// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdministratorName.h"
#include "service/engine/TextRules.h"

#include <QFile>
#include <QRegularExpression>

#include <limits>

#include <pwd.h>
#include <unistd.h>

namespace service
{

namespace
{

QString nameOf(uid_t id)
{
    const passwd* const user = getpwuid(id);
    return user ? QString::fromLocal8Bit(user->pw_name) : QString::number(id);
}

/// Empty for a process that was not started from a log-in.
QString loggedInUser()
{
    QFile file(QStringLiteral("/proc/self/loginuid"));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    bool isNumber = false;
    const uint id = file.readAll().trimmed().toUInt(&isNumber);
    return isNumber && id != std::numeric_limits<uint>::max() ? nameOf(id) : QString();
}

QString callerOfSudo()
{
    static const QRegularExpression name(QStringLiteral("^[^\\s:()]{1,64}$"));
    const QString caller = qEnvironmentVariable("SUDO_USER");
    return name.match(caller).hasMatch() && !hasInvisibleCharacters(caller) ? caller : QString();
}

QString person()
{
    const QString loggedIn = loggedInUser();
    const QString caller = callerOfSudo();
    if (caller.isEmpty()) {
        return loggedIn.isEmpty() ? nameOf(geteuid()) : loggedIn;
    }
    return loggedIn.isEmpty() || loggedIn == caller ? caller : caller + '(' + loggedIn + ')';
}

} // namespace

std::string administratorName(const QString& onBehalfOf)
{
    const std::string self = ToolPrefix + person().toStdString();
    return onBehalfOf.isEmpty() ? self : self + " as " + onBehalfOf.toStdString();
}

} // namespace service
