// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CInstallation.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>

namespace workbench
{

/// The options of the command line. Paths are as given; empty means the default.
struct Options {
    QString database;      ///< embedded database; default: in the user's data folder
    SampleSize sampleSize; ///< for a new database
    QString serverFile;    ///< list of network servers; default: servers.ini beside the settings, if it exists
    std::vector<ServerSetting> servers; ///< network servers, instead of the embedded database
    QStringList pluginFolders;          ///< besides the user's own and the one beside the installed libraries
    QString configFile;                 ///< the client's settings; default: in the user's configuration folder
    QString moduleFile;                 ///< module switches; default: the shipped ones
    QString themeFolder;                ///< themes in addition to the compiled-in ones
    QString theme;                      ///< for this run
    bool isLanguageGiven = false;       ///< --language was; otherwise the settings may have another one
    QString user;                       ///< fills in the log-in
    bool passwordFromStdin = false;     ///< true: logs in without a dialog
};

/// The options of the program, without --help and --version.
QList<QCommandLineOption> commandLineOptions();

/// Parses the command line. `--help` and `--version` print their text and end the process. On error returns false and
/// sets `problem`.
bool parseOptions(const QStringList& arguments, Options& options, QString& problem);

/// Fills in the defaults and reads the list of servers. On error returns false and sets `problem`.
bool completeOptions(Options& options, QString& problem);

} // namespace workbench
