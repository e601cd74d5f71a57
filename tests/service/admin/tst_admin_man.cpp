#include "service/admin/AdminFixture.h"

#include "service/admin/Commands.h"

#include <QDir>
#include <QtTest>

using namespace testservice;

class AdminManTest : public QObject
{
    Q_OBJECT

private slots:
    void everyPageIsRenderedWithoutAWarning_data()
    {
        QTest::addColumn<QString>("file");
        for (const QFileInfo& page : QDir(QAV_MAN_DIRECTORY).entryInfoList({"*.1"}, QDir::Files))
            QTest::newRow(qPrintable(page.fileName())) << page.filePath();
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
        QStringList commands;
        for (const service::Command& command : service::allCommands()) {
            const QString page = rendered("qav-admin-" + command.name.section(' ', 0, 0));
            QVERIFY2(page.contains("qav-admin " + command.name), qPrintable(command.name));
            for (const QCommandLineOption& option : command.allOptions())
                QVERIFY2(page.contains("--" + option.names().last()),
                         qPrintable(command.name + " --" + option.names().last()));
            QVERIFY(rendered("qav-admin").contains(command.summary));
        }
        QVERIFY(rendered("qav-admin").contains("EXIT STATUS"));
    }

private:
    static QString rendered(const QString& page)
    {
        static QHash<QString, QString> pages;
        if (!pages.contains(page)) {
            QProcess groff;
            groff.start("groff", {"-k", "-man", "-Tutf8", "-rLL=2000n", "-P-cbou",
                                  QStringLiteral(QAV_MAN_DIRECTORY "/") + page + ".1"});
            groff.waitForFinished(30000);
            // The hyphen of man pages that is meant to be copied, and blanks that fill lines.
            pages[page] = QString::fromUtf8(groff.readAllStandardOutput()).simplified();
        }
        return pages[page];
    }
};

QTEST_GUILESS_MAIN(AdminManTest)
#include "tst_admin_man.moc"
