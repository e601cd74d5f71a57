#pragma once

#include <QCommandLineOption>
#include <QList>

namespace service::daemon
{

/// What the program understands. Help and manual are made of the same descriptions.
QList<QCommandLineOption> commandLineOptions();

} // namespace service::daemon
