#pragma once

#include "CInstallation.h"

#include <QStringList>

namespace workbench
{

/// What the command line asks for. Paths are as given; empty means the default.
struct Options {
    QString database;      ///< embedded database; default: in the user's data folder
    SampleSize sampleSize; ///< for a database that has to be made
    QString serverFile;    ///< list of servers of the network; default: servers.ini beside the settings, if any
    std::vector<ServerSetting> servers; ///< servers of the network, instead of the embedded database
    QStringList pluginFolders;          ///< default: beside the installed libraries
    QString configFile;             ///< what the client keeps between runs; default: in the user's configuration folder
    QString moduleFile;             ///< module switches; default: the shipped ones
    QString themeFolder;            ///< themes beyond the compiled-in ones
    QString theme;                  ///< for this run
    QString user;                   ///< fills in the log-in
    bool passwordFromStdin = false; ///< logs in without asking
};

/// Reads the command line; `--help` and `--version` are answered and end the process. Returns false and says in
/// `problem` what is wrong.
bool parseOptions(const QStringList& arguments, Options& options, QString& problem);

/// Fills in the defaults and reads the list of servers. Returns false and says in `problem` what is wrong with it.
bool completeOptions(Options& options, QString& problem);

} // namespace workbench
