// SPDX-License-Identifier: Apache-2.0
#include "packaging/man/AdminManPages.h"
#include "packaging/man/DaemonManPage.h"
#include "packaging/man/SampleDataManPage.h"
#include "service/admin/Commands.h"
#include "service/engine/Texts.h"

#include <utils/Translation.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace
{

void report(const QFile& file)
{
    std::fprintf(stderr, "%s: %s\n", qPrintable(file.fileName()), qPrintable(file.errorString()));
}

bool write(const packaging::ManPage& page, const QString& directory)
{
    QFile file(directory + '/' + page.fileName());
    QDir().mkpath(QFileInfo(file).path());
    const QByteArray text = page.text.toUtf8();
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush()) {
        return true;
    }
    report(file);
    return false;
}

} // namespace

/// Writes the manual pages into a directory. The second argument is the daemon's example configuration.
int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    service::registerTexts();
    utils::setLanguage(utils::ELanguage::English);
    QFile configuration(arguments.value(2));
    if (!configuration.open(QIODevice::ReadOnly)) {
        report(configuration);
        return 1;
    }
    std::vector<packaging::ManPage> pages = packaging::adminManPages(service::allCommands());
    pages.push_back(packaging::daemonManPage(QString::fromUtf8(configuration.readAll())));
    pages.push_back(packaging::sampleDataManPage());
    for (const packaging::ManPage& page : pages) {
        if (!write(page, arguments.value(1))) {
            return 1;
        }
    }
    return 0;
}
