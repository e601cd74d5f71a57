// SPDX-License-Identifier: Apache-2.0
#include "packaging/man/AdminManPages.h"

#include <algorithm>

namespace packaging
{

using service::Command;

namespace
{

const char* const ExitStatus = R"(.SH EXIT STATUS
.TP
.B 0
Done; of
.BR "qav\-admin check" :
nothing was found.
.TP
.B 1
Refused: a rule, a record or a file stands against it. Nothing was changed.
.TP
.B 2
The command line is wrong.
.TP
.B 3
The database can't be used: it is missing, locked, damaged, full, of another version, or not ours.
.TP
.B 4
A check found something.
.TP
.B 130, 143, 129, 131
Interrupted (Ctrl+C), terminated or hung up. What was begun was not done: the database is as it was, and no file is
left half written.
)";

const char* const Introduction = R"(.SH DESCRIPTION
.B qav\-admin
administers the database of the data service: users, rights, institutions, import and export, audit, past states,
backup and consistency. It works on the database itself, beside a data service that runs.
.PP
A change is one transaction: it is done as a whole or not at all; only what is old is removed piece by piece. Every
change, and every refused attempt, is a row of the audit, which names this tool, the person who uses it (who called
.BR sudo (8),
or who logged in) and the one for whom it is done, whom
.B \-\-as
gives; a refused import, of which nothing at all is stored, is the exception. The rules are those of the service.
.PP
Results go to standard output, everything else to standard error. On a terminal long work shows a bar there.
With
.B \-\-json
a result is JSON, with names and values that later versions keep.
)";

const char* const Environment = R"(.SH ENVIRONMENT
.TP
.B QAV_STORE
The database, where
.B \-\-store
doesn't name one.
)";

QString sectionOf(const Command& command)
{
    QString text = QStringLiteral(".SH ") + quoted(command.name.toUpper()) + '\n';
    text += QStringLiteral(".B qav\\-admin %1\n[\\fIoptions\\fR]%2\n.PP\n")
                .arg(escaped(command.name), escaped(argumentsOf(command)));
    text += escaped(command.summary) + '\n';
    for (const QString& paragraph : command.details) {
        text += QStringLiteral(".PP\n") + escaped(paragraph) + '\n';
    }
    for (const service::Argument& argument : command.arguments) {
        text += QStringLiteral(".TP\n.I %1\n%2\n").arg(escaped(argument.name), escaped(argument.description));
    }
    for (const QCommandLineOption& option : command.allOptions()) {
        text += paragraphOf(option);
    }
    for (const QString& example : command.examples) {
        text += QStringLiteral(".PP\n.EX\nqav\\-admin %1\n.EE\n").arg(escaped(example));
    }
    return text;
}

QString firstWord(const Command& command)
{
    return command.name.section(QLatin1Char(' '), 0, 0);
}

ManPage mainPage(const std::vector<Command>& commands, const QStringList& groups)
{
    const QString name = QStringLiteral("qav-admin");
    QString text = heading(name, 1, QStringLiteral("administer the database of the data service"));
    text += QStringLiteral(".SH SYNOPSIS\n.B qav\\-admin\n.I command\n[\\fIoptions\\fR] [\\fIarguments\\fR]\n");
    text += QString::fromUtf8(Introduction) + QStringLiteral(".SH COMMANDS\n");
    for (const Command& command : commands) {
        text += QStringLiteral(".TP\n.B %1%2\n%3\n")
                    .arg(escaped(command.name), escaped(argumentsOf(command)), escaped(command.summary));
    }
    QStringList pages;
    for (const QString& group : groups) {
        pages << QStringLiteral("%1-%2(1)").arg(name, group);
    }
    pages << QStringLiteral("qav-dataserviced(8)");
    return {name, 1, text + QString::fromUtf8(ExitStatus) + QString::fromUtf8(Environment) + seeAlso(pages)};
}

} // namespace

std::vector<ManPage> adminManPages(const std::vector<Command>& commands)
{
    QStringList groups;
    for (const Command& command : commands) {
        if (!groups.contains(firstWord(command))) {
            groups << firstWord(command);
        }
    }
    std::vector<ManPage> pages = {mainPage(commands, groups)};
    for (const QString& group : groups) {
        const QString name = QStringLiteral("qav-admin-") + group;
        QString summary;
        QString sections;
        for (const Command& command : commands) {
            if (firstWord(command) != group) {
                continue;
            }
            sections += sectionOf(command);
            if (summary.isEmpty()) {
                summary = command.name.contains(QLatin1Char(' '))
                              ? QStringLiteral("commands of qav-admin about a ") + group
                              : command.summary;
            }
        }
        pages.push_back({name, 1,
                         heading(name, 1, summary) + sections + QString::fromUtf8(ExitStatus) +
                             seeAlso({QStringLiteral("qav-admin(1)")})});
    }
    return pages;
}

} // namespace packaging
