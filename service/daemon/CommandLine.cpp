// SPDX-License-Identifier: Apache-2.0
#include "service/daemon/CommandLine.h"

namespace service::daemon
{

QList<QCommandLineOption> commandLineOptions()
{
    return {{QStringLiteral("config"),
             QStringLiteral("Configuration file. Files conf.d/*.toml beside it are read, too."), QStringLiteral("file"),
             QStringLiteral(QAV_CONFIGURATION_FILE)},
            {QStringLiteral("store"),
             QStringLiteral("Database file or postgresql:// URL, in place of the configuration's."),
             QStringLiteral("location")},
            {QStringLiteral("check-config"),
             QStringLiteral("Show where each setting comes from, report every mistake, and end.")}};
}

} // namespace service::daemon
