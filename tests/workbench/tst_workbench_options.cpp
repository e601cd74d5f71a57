// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "workbench/Options.h"

#include <utils/Translation.h>

#include <QCommandLineParser>

using workbench::Options;

class OptionsTest : public QObject
{
    Q_OBJECT

    static bool parse(const QStringList& arguments, Options& options, QString& problem)
    {
        return workbench::parseOptions(QStringList("qav-workbench") + arguments, options, problem);
    }

private slots:
    void everyOptionIsOnTheManualPage()
    {
        QFile page(support::sourceFile("packaging/man/qav-workbench.1"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(page.readAll()).remove('\\');
        const QList<QCommandLineOption> options = workbench::commandLineOptions();
        QVERIFY(options.size() > 10);
        for (const QCommandLineOption& option : options) {
            const QString name = "\"--" + option.names().first() + "\"";
            const QString line =
                option.valueName().isEmpty() ? ".B " + name : ".BR " + name + " \" fI" + option.valueName() + "fR\"";
            QVERIFY2(text.contains(".TP\n" + line + "\n"), qPrintable(line));
        }
        QCOMPARE(text.count("\"--"), options.size() + 2); // --help and --version
    }

    void textsOfQtAreChineseToo()
    {
        utils::setLanguage(utils::ELanguage::Chinese);
        QCommandLineParser parser;
        parser.addHelpOption();
        parser.addVersionOption();
        const QString help = parser.helpText();
        for (const char* english : {"Usage", "Options", "Displays"}) {
            QVERIFY2(!help.contains(english), qPrintable(help));
        }
    }

    void programSpeaksTheLanguageThatIsChosen()
    {
        const auto said = [](const QStringList& arguments) {
            QProcess process;
            process.setProcessChannelMode(QProcess::MergedChannels);
            process.start(support::builtFile("bin/qav-workbench"), arguments);
            return process.waitForFinished() ? QString::fromUtf8(process.readAll()) : QString();
        };
        QVERIFY(said({"--help"}).contains("数据库文件"));
        const QString english = said({"--help", "--language", "en"});
        QVERIFY2(english.contains("Risk Administration Client") && english.contains("Displays help"),
                 qPrintable(english));
        QCOMPARE(said({"--language=en", "--help", "stray"}), english);
        QVERIFY(said({"--language", "fr", "--help"}).contains("qav-workbench: --language：只能是 zh 或 en\n"));
    }

    void withoutArgumentsTheDefaultsAreFilledIn()
    {
        Options options;
        QString problem;
        QVERIFY(parse({}, options, problem));
        QVERIFY(options.database.isEmpty());
        QCOMPARE(options.sampleSize.groups, 120);
        QVERIFY(workbench::completeOptions(options, problem));
        QVERIFY(options.database.endsWith("/workbench.db"));
        QCOMPARE(options.pluginFolders.size(), 2);
        QCOMPARE(options.pluginFolders[0],
                 QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/plugins");
        QVERIFY(options.moduleFile.endsWith("/modules.lua"));
    }

    void everyOptionArrives()
    {
        Options options;
        QString problem;
        QVERIFY(parse({"--database", "d.db",      "--groups",  "7",        "--accounts=180",
                       "--plugins",  "p1",        "--plugins", "p2",       "--config",
                       "c.ini",      "--modules", "m.lua",     "--themes", "t",
                       "--theme",    "light",     "--user",    "admin",    "--password-from-stdin"},
                      options, problem));
        QVERIFY(workbench::completeOptions(options, problem));
        QCOMPARE(options.database, QString("d.db"));
        QCOMPARE(options.sampleSize.groups, 7);
        QCOMPARE(options.sampleSize.accounts, 180);
        QCOMPARE(options.pluginFolders.size(), 4);
        QCOMPARE(options.pluginFolders.mid(0, 2), QStringList({"p1", "p2"}));
        QCOMPARE(options.configFile, QString("c.ini"));
        QCOMPARE(options.moduleFile, QString("m.lua"));
        QCOMPARE(options.themeFolder, QString("t"));
        QCOMPARE(options.theme, QString("light"));
        QCOMPARE(options.user, QString("admin"));
        QVERIFY(options.passwordFromStdin);
    }

    void whatMakesNoSenseIsRefusedWithAReason_data()
    {
        const support::DataRows<QStringList, QString> row("arguments", "problem");
        row("unknown option", {"--colour"}, "colour");
        row("file without option", {"x.db"}, "x.db");
        row("groups as text", {"--groups", "many"}, "--groups");
        row("negative groups", {"--groups", "-1"}, "--groups");
        row("no accounts", {"--accounts", "0"}, "--accounts");
        row("password without user", {"--password-from-stdin"}, "--user");
    }
    void whatMakesNoSenseIsRefusedWithAReason()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, problem);
        Options options;
        QString said;
        QVERIFY(!parse(arguments, options, said));
        QVERIFY2(said.contains(problem), qUtf8Printable(said));
    }
};

TEST_WITHOUT_WIDGETS(OptionsTest)
#include "tst_workbench_options.moc"
