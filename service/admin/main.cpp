#include "service/admin/Commands.h"
#include "service/admin/PartialFile.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    service::cleanUpWhenInterrupted();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-admin"));
    return service::runCommandLine(service::allCommands(), QCoreApplication::arguments());
}
