// SPDX-License-Identifier: Apache-2.0
#include "packaging/man/DaemonManPage.h"

#include "service/daemon/CommandLine.h"

namespace packaging
{

namespace
{

const char* const DaemonSynopsis = R"(.SH SYNOPSIS
.B qav\-dataserviced
[\fB\-\-config\fR \fIfile\fR] [\fB\-\-store\fR \fIlocation\fR] [\fB\-\-check\-config\fR]
.SH DESCRIPTION
.B qav\-dataserviced
serves the sub-systems of one database, each at a port of its own, to clients on the network, over TLS 1.2 or newer. Users,
rights and everything that the database holds are administered with
.BR qav\-admin (1),
which has to make the database and its first sub-system before the daemon starts for the first time: the daemon makes none.
.PP
It stays in the foreground, writes its log to standard output, one event a line, and tells a service manager that asks for it
what it does, when it is ready and that it lives. While the database can't be reached it waits, however long that takes.
.SH OPTIONS
)";

const char* const Configuration = R"(.SH CONFIGURATION
A file in TOML, which the package brings, and the files
.I conf.d/*.toml
beside it, for settings of your own. They are read in the order of their names. A key of a later file replaces that of
earlier ones; a list of
.I [[listen]]
replaces the whole list. An unknown key and a value of another type are mistakes, and with mistakes the daemon doesn't start.
Keys that are commented out here show their defaults.
.PP
.EX
)";

const char* const Conduct = R"(.EE
.SH SIGNALS
.TP
.BR SIGTERM ", " SIGINT
Accept no further connection, tell the clients, answer what was received and end; what is left after
.I drain_seconds
is cut. A second signal cuts at once.
.TP
.B SIGHUP
Read certificate and key anew, for connections that begin afterwards. If they can't be used, those in use stay. Nothing
else of the configuration is read again. Ignored while the daemon waits for its database.
.SH EXIT STATUS
.TP
.B 0
Ended by a signal; with
.BR \-\-check\-config :
no mistake.
.TP
.B 1
The database or a port can't be used; standard error says which and why. If the database is only away or busy, the daemon
waits and tries again.
.TP
.B 2
The command line or the configuration is wrong, or names files that aren't there. Every mistake is a line on standard error.
)";

} // namespace

ManPage daemonManPage(const QString& configuration)
{
    const QString name = QStringLiteral("qav-dataserviced");
    QString text = heading(name, 8, QStringLiteral("serve the sub-systems of a database on the network"));
    text += QString::fromUtf8(DaemonSynopsis);
    for (const QCommandLineOption& option : service::daemon::commandLineOptions()) {
        text += paragraphWithDefault(option);
    }
    text += QString::fromUtf8(Configuration);
    for (const QString& line : configuration.trimmed().split(QLatin1Char('\n'))) {
        text += escaped(line) + '\n';
    }
    text += QString::fromUtf8(Conduct);
    return {name, 8, text + seeAlso({QStringLiteral("qav-admin(1)"), QStringLiteral("systemctl(1)")})};
}

} // namespace packaging
