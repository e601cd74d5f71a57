// SPDX-License-Identifier: Apache-2.0
#include "packaging/man/SampleDataManPage.h"

#include "service/sampledata/CommandLine.h"

namespace packaging
{

namespace
{

const char* const SampleDataSynopsis = R"(.SH SYNOPSIS
.B qav\-sample\-data
\fB\-\-database\fR \fIlocation\fR [\fIoptions\fR]
.SH DESCRIPTION
.B qav\-sample\-data
fills a new database with accounts, groups, rules and users of an invented asset manager. The passwords of the users are
public: never serve such a database to others.
.SH OPTIONS
)";

} // namespace

ManPage sampleDataManPage()
{
    const QString name = QStringLiteral("qav-sample-data");
    QString text = heading(name, 1, QStringLiteral("fill a new database with sample data"));
    text += QString::fromUtf8(SampleDataSynopsis);
    for (const QCommandLineOption& option : service::sampleDataOptions()) {
        text += paragraphWithDefault(option);
    }
    return {name, 1, text + seeAlso({QStringLiteral("qav-admin(1)"), QStringLiteral("qav-dataserviced(8)")})};
}

} // namespace packaging
