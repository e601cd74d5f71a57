// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/admin/Commands.h"
#include "service/daemon/CommandLine.h"
#include "service/engine/Texts.h"
#include "service/sampledata/CommandLine.h"
#include "support/TestProgram.h"

#include <utils/Translation.h>

#include <QDirIterator>

using namespace testservice;

class ManPagesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        service::registerTexts();
        utils::setLanguage(utils::ELanguage::English); // as the pages are
    }

    void everyPageIsRenderedWithoutAWarning_data()
    {
        const support::DataRows<QString> row("file");
        QDirIterator pages(support::builtFile("packaging/man/pages"), {"*.1", "*.8"}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (pages.hasNext()) {
            const QString file = pages.next();
            row(pages.fileName(), file);
        }
    }
    void everyPageIsRenderedWithoutAWarning()
    {
        QFETCH(QString, file);
        QProcess groff;
        groff.start("groff", {"-k", "-ww", "-man", "-Tutf8", "-z", file});
        QVERIFY(groff.waitForFinished(30000));
        QCOMPARE(groff.exitCode(), 0);
        QCOMPARE(QString::fromUtf8(groff.readAllStandardError()), QString());
    }

    void everyCommandAndOptionIsOnItsPage()
    {
        for (const service::Command& command : service::allCommands()) {
            const QString page = rendered("qav-admin-" + command.name.section(' ', 0, 0), 1);
            QVERIFY2(page.contains("qav-admin " + command.name), qPrintable(command.name));
            for (const QCommandLineOption& option : command.allOptions()) {
                QVERIFY2(page.contains("--" + option.names().last()),
                         qPrintable(command.name + " --" + option.names().last()));
            }
            QVERIFY(rendered("qav-admin", 1).contains(command.summary));
        }
        QVERIFY(rendered("qav-admin", 1).contains("EXIT STATUS"));
    }

    void everyOptionOfTheSampleDataIsOnItsPage()
    {
        const QString page = rendered("qav-sample-data", 1);
        for (const QCommandLineOption& option : service::sampleDataOptions()) {
            QVERIFY2(page.contains("--" + option.names().first()), qPrintable(option.names().first()));
            QVERIFY2(page.contains(option.description()), qPrintable(option.description()));
        }
    }

    void everyOptionOfTheDaemonAndEveryKeyOfItsConfigurationIsOnItsPage()
    {
        const QString page = rendered("qav-dataserviced", 8);
        QVERIFY(page.startsWith("QAV-DATASERVICED(8)"));
        for (const QCommandLineOption& option : service::daemon::commandLineOptions()) {
            QVERIFY2(page.contains("--" + option.names().last()), qPrintable(option.names().last()));
            QVERIFY2(page.contains(option.description()), qPrintable(option.description()));
            for (const QString& value : option.defaultValues()) {
                QVERIFY2(page.contains("By default " + value), qPrintable(value));
            }
        }
        QFile configuration(support::sourceFile("packaging/dataserviced.toml"));
        QVERIFY(configuration.open(QIODevice::ReadOnly));
        for (const QString& line : QString::fromUtf8(configuration.readAll()).split('\n')) {
            QVERIFY2(page.contains(line.simplified()), qPrintable(line));
        }
        for (const char* signal : {"SIGTERM", "SIGINT", "SIGHUP"}) {
            QVERIFY2(page.contains(signal), signal);
        }
    }

private:
    static QString rendered(const QString& page, int section)
    {
        static QHash<QString, QString> pages;
        if (!pages.contains(page)) {
            QProcess groff;
            groff.start("groff",
                        {"-k", "-man", "-Tutf8", "-rLL=2000n", "-P-cbou",
                         support::builtFile(QStringLiteral("packaging/man/pages/man%1/%2.%1").arg(section).arg(page))});
            groff.waitForFinished(30000);
            // The hyphen of man pages that is meant to be copied, and blanks that fill lines.
            pages[page] = QString::fromUtf8(groff.readAllStandardOutput()).simplified();
        }
        return pages[page];
    }
};

TEST_WITHOUT_WIDGETS(ManPagesTest)
#include "tst_man_pages.moc"
