// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "workbench/CUserSettings.h"

using workbench::CUserSettings;

class SettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsKeptIsThereInTheNextRun()
    {
        QTemporaryDir folder;
        const QString file = folder.filePath("new/folder/settings.ini");
        const QString layout = "v1|名称,200|;=%/\\\"\n" + QString(QChar(0));
        {
            CUserSettings settings(file);
            settings.setLastUser("张三");
            settings.setTheme("张三", "light");
            settings.setServer("张三", "深圳/一");
            settings.setWindow("张三", QByteArray("\0\1\2", 3), QByteArray("docks"));
            settings.setOpenPanels("张三", {"a::B", "C"});
            settings.setPanelParam("张三", "agr", layout);
            QVERIFY(settings.flush());
        }
        CUserSettings settings(file);
        bool known = false;
        QCOMPARE(settings.lastUser(), QString("张三"));
        QCOMPARE(settings.theme("张三"), QString("light"));
        QCOMPARE(settings.theme(""), QString("light")); // that of the last user
        QCOMPARE(settings.server("张三", known), QString("深圳/一"));
        QVERIFY(known);
        QCOMPARE(settings.windowGeometry("张三"), QByteArray("\0\1\2", 3));
        QCOMPARE(settings.dockState("张三"), QByteArray("docks"));
        QCOMPARE(settings.openPanels("张三", known), QStringList({"a::B", "C"}));
        QVERIFY(known);
        QCOMPARE(settings.panelParam("张三", "agr", known), layout);
        QVERIFY(known);
    }

    void oneUsersSettingsAreNotAnothers()
    {
        QTemporaryDir folder;
        CUserSettings settings(folder.filePath("s.ini"));
        settings.setServer("a", "深圳");
        settings.setPanelParam("a/b", "agr", "x");
        bool known = true;
        QCOMPARE(settings.server("b", known), QString());
        QVERIFY(!known);
        settings.panelParam("a", "agr", known);
        QVERIFY(!known);
        settings.openPanels("a", known);
        QVERIFY(!known);
    }

    void anEmptyChoiceIsAChoice()
    {
        QTemporaryDir folder;
        CUserSettings settings(folder.filePath("s.ini"));
        settings.setServer("a", "");
        settings.setOpenPanels("a", {});
        bool known = false;
        QCOMPARE(settings.server("a", known), QString());
        QVERIFY(known);
        known = false;
        QCOMPARE(settings.openPanels("a", known), QStringList());
        QVERIFY(known);
    }

    void aFileOfRubbishIsAsGoodAsNone()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("s.ini"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(1, char(0)) + QByteArray("\xff]]][[[=\n=\n%%%\nusers\\a\\open"));
        file.close();
        CUserSettings settings(file.fileName());
        bool known = true;
        QCOMPARE(settings.openPanels("a", known), QStringList());
        QVERIFY(!known);
        settings.setLastUser("a");
        QCOMPARE(settings.lastUser(), QString("a"));
    }

    void aFileThatCannotBeWrittenIsReported()
    {
        CUserSettings settings("/proc/none/settings.ini");
        settings.setLastUser("a");
        QVERIFY(!settings.flush());
    }
};

TEST_WITHOUT_WIDGETS(SettingsTest)
#include "tst_workbench_settings.moc"
