#include "packaging/man/ManPages.h"
#include "service/admin/Commands.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

/// Writes the manual pages of qav-admin into a directory.
int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QString directory = QCoreApplication::arguments().value(1);
    for (const packaging::ManPage& page : packaging::manPages(service::allCommands())) {
        QFile file(directory + '/' + page.name + QStringLiteral(".1"));
        const QByteArray text = page.text.toUtf8();
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(file.fileName()), qPrintable(file.errorString()));
            return 1;
        }
    }
    return 0;
}
