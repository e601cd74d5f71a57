// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"
#include "service/admin/ExitCode.h"
#include "service/admin/PartialFile.h"
#include "service/engine/Texts.h"

#include <utils/Translation.h>

#include <QCoreApplication>

#include <sys/stat.h>

int main(int argc, char** argv)
{
    ::umask(0077); // backups and exports are for whoever makes them
    service::cleanUpWhenInterrupted();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-admin"));
    service::registerTexts();
    QStringList arguments = QCoreApplication::arguments();
    QString problem;
    if (!utils::chooseLanguage(arguments, problem)) {
        std::fprintf(stderr, "%s\n", problem.toUtf8().constData());
        return service::WrongUse;
    }
    return service::runCommandLine(service::allCommands(), arguments);
}
