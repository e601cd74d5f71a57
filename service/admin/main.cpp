// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/PartialFile.h"

#include <QCoreApplication>

#include <sys/stat.h>

int main(int argc, char** argv)
{
    ::umask(0077); // backups and exports are for whoever makes them
    service::cleanUpWhenInterrupted();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-admin"));
    return service::runCommandLine(service::allCommands(), QCoreApplication::arguments());
}
