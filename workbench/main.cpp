#include "Client.h"
#include "Options.h"

#include <QApplication>

#include <iostream>

int main(int argc, char* argv[])
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("qav-workbench"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QAV_VERSION));

    workbench::Options options;
    QString problem;
    if (!workbench::parseOptions(QCoreApplication::arguments(), options, problem) ||
        !workbench::completeOptions(options, problem)) {
        std::cerr << "qav-workbench: " << qUtf8Printable(problem) << '\n';
        return 2;
    }
    return workbench::runClient(options);
}
