// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCommandLineOption>
#include <QList>

namespace service::daemon
{

/// The options of the program. The help and the manual page are generated from them.
QList<QCommandLineOption> commandLineOptions();

} // namespace service::daemon
