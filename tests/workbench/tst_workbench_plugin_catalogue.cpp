// SPDX-License-Identifier: Apache-2.0
#include "support/UnexpectedLog.h"
#include "support/qav/Client.h"

#include "support/TestProgram.h"
#include "workbench/CPluginCatalogue.h"

#include <QAV/IkolmDockableWidget.h>
#include <WQ/CUiResourceManager.h>
#include <nvservice/UserRight.h>

#include <boost/make_shared.hpp>

#include <QtWidgets/QtWidgets>

using workbench::CPluginCatalogue;
using workbench::PluginEntry;
using workbench::PluginManifest;
using EState = PluginEntry::EState;

Q_DECLARE_METATYPE(EState)

class PluginCatalogueTest : public QObject
{
    Q_OBJECT

    static void logIn(const std::set<int>& rights) { support::logInAs(support::makeUser("tester", rights)); }

    static const PluginEntry* entryOf(const CPluginCatalogue& plugins, const QString& file)
    {
        for (const PluginEntry& entry : plugins.entries()) {
            if (QFileInfo(entry.manifest.file).fileName() == file + ".plugin.json") {
                return &entry;
            }
        }
        return nullptr;
    }

    static QString write(const QString& folder, const QString& name, const QByteArray& text)
    {
        QFile file(folder + '/' + name);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            qFatal("cannot write %s", qUtf8Printable(file.fileName()));
        }
        return file.fileName();
    }

    /// Manifests are written here with ' for ".
    static QByteArray json(QByteArray text) { return text.replace('\'', '"'); }

    static QString folder() { return support::builtFile("tests/workbench/fixtures/plugins"); }

private slots:
    void init() { logIn({nvservice::UserRight::EditAccountGroup}); }
    void cleanup() { support::logInAs({}); }

    void theSymbolOfAMetaObjectFollowsFromTheName()
    {
        QCOMPARE(workbench::metaObjectSymbol("CPanel"), QByteArray("_ZN6CPanel16staticMetaObjectE"));
        QCOMPARE(workbench::metaObjectSymbol("QAV::CAccountGroupRiskManagePanel"),
                 QByteArray("_ZN3QAV28CAccountGroupRiskManagePanel16staticMetaObjectE"));
        QCOMPARE(workbench::metaObjectSymbol("a::b::C"), QByteArray("_ZN1a1b1C16staticMetaObjectE"));
    }

    void anSdkOfTheSameMajorAndNoNewerMinorVersionIsAccepted()
    {
        QVERIFY(workbench::acceptsSdkVersion("2.0"));
        QVERIFY(workbench::acceptsSdkVersion("2.1"));
        QVERIFY(!workbench::acceptsSdkVersion("2.2"));
        QVERIFY(!workbench::acceptsSdkVersion("1.0"));
        QVERIFY(!workbench::acceptsSdkVersion("3.0"));
    }

    void everyPluginIsJudgedBeforeAnyOfItsCodeRuns_data()
    {
        const support::DataRows<QString, EState, QString> row("file", "state", "problem");
        row("good", "01-noting", EState::Available, "");
        row("one of two rights", "02-staying", EState::Available, "");
        row("missing library", "08-missing-library", EState::Broken, "库文件不存在");
        row("newer minor version", "10-newer-sdk", EState::Broken, "SDK 版本不符：插件 2.2，客户端 2.1");
        row("other major version", "11-other-sdk", EState::Broken, "SDK 版本不符：插件 1.0，客户端 2.1");
        row("broken manifest", "12-broken-json", EState::Broken, "清单格式错误");
        row("right missing", "13-foreign-right", EState::NotPermitted, "没有所需权限");
    }
    void everyPluginIsJudgedBeforeAnyOfItsCodeRuns()
    {
        QFETCH(QString, file);
        QFETCH(EState, state);
        QFETCH(QString, problem);
        qunsetenv("QAV_FIXTURE_CODE_RAN");
        CPluginCatalogue plugins;
        plugins.scan({folder()});
        const PluginEntry* entry = entryOf(plugins, file);
        QVERIFY(entry);
        QCOMPARE(entry->state, state);
        QVERIFY2(entry->problem.contains(problem), qUtf8Printable(entry->problem));
        QCOMPARE(entry->problem.isEmpty(), state == EState::Available);
        QWidget parent;
        if (state != EState::Available) {
            QVERIFY(!plugins.create(entry->manifest.className, &parent));
        }
        QVERIFY(!qEnvironmentVariableIsSet("QAV_FIXTURE_CODE_RAN"));
    }

    void theWatchedLibraryWouldHaveLeftItsTrace()
    {
        QLibrary library(folder() + "/libQavFixtureWatched.so");
        QVERIFY(library.load());
        QVERIFY(qEnvironmentVariableIsSet("QAV_FIXTURE_CODE_RAN"));
        library.unload();
    }

    void aPanelIsMadeByTheNameOfItsClass()
    {
        CPluginCatalogue plugins;
        plugins.scan({folder()});
        QWidget parent;
        QAV::IkolmDockableWidget* panel = plugins.create("fixtures::CNotingPanel", &parent);
        QVERIFY(panel);
        QCOMPARE(panel->parentWidget(), &parent);
        QCOMPARE(QString(panel->metaObject()->className()), QString("fixtures::CNotingPanel"));
        QCOMPARE(entryOf(plugins, "01-noting")->state, EState::Loaded);
        QCOMPARE(entryOf(plugins, "01-noting")->stateText(), QString("已加载"));
    }

    void aBrokenPluginIsReportedWhenItIsOpened_data()
    {
        const support::DataRows<QString, QString> row("file", "problem");
        row("constructor throws", "03-throwing", "创建面板失败：数据文件缺失");
        row("constructor throws a number", "04-number-throwing", "创建面板失败：未知异常");
        row("not a panel", "05-no-panel", "类 fixtures::CNoPanel 不是可停靠的面板");
        row("not invokable", "06-uninvokable", "类 fixtures::CUninvokablePanel 没有可调用的构造函数");
        row("missing class", "07-missing-class", "库中没有类 fixtures::CAbsentPanel");
        row("not a library", "09-not-a-library", "库无法加载：");
    }
    void aBrokenPluginIsReportedWhenItIsOpened()
    {
        QFETCH(QString, file);
        QFETCH(QString, problem);
        CPluginCatalogue plugins;
        plugins.scan({folder()});
        const PluginEntry* entry = entryOf(plugins, file);
        QVERIFY(entry);
        QCOMPARE(entry->state, EState::Available);
        QWidget parent;
        QVERIFY(!plugins.create(entry->manifest.className, &parent));
        QCOMPARE(entry->state, EState::Broken);
        QVERIFY2(entry->problem.startsWith(problem), qUtf8Printable(entry->problem));
        QVERIFY(parent.findChildren<QWidget*>().isEmpty());
        QVERIFY(!plugins.create(entry->manifest.className, &parent)); // and stays so

        QVERIFY(plugins.create("fixtures::CNotingPanel", &parent)); // the others go on working
    }

    void aManifestThatBreaksItsFormSaysWhatIsWrong_data()
    {
        const support::DataRows<QByteArray, QString> row("text", "problem");
        const auto manifest = [](const char* className, const char* library, const char* version, const char* rest) {
            return json(QByteArray("{'title':'T','class':'") + className + "','library':'" + library +
                        "','sdkVersion':'" + version + '\'' + rest + '}');
        };
        row("empty", {}, "清单格式错误");
        row("array", "[]", "清单不是 JSON 对象");
        row("no title", "{}", "“title”");
        row("title of another type", json("{'title':5}"), "“title”");
        row("no class", json("{'title':'T'}"), "“class”");
        row("class with blanks", manifest("a b", "l.so", "2.0", ""), "类名“a b”无效");
        row("class with one colon", manifest("a:b", "l.so", "2.0", ""), "类名");
        row("class that begins with a digit", manifest("1a", "l.so", "2.0", ""), "类名");
        row("library with a path", manifest("a", "../l.so", "2.0", ""), "库文件名");
        row("absolute library", manifest("a", "/l.so", "2.0", ""), "库文件名");
        row("version without a dot", manifest("a", "l.so", "1", ""), "SDK 版本“1”无效");
        row("version with text", manifest("a", "l.so", "1.x", ""), "SDK 版本");
        row("huge version", manifest("a", "l.so", "99999999999.0", ""), "SDK 版本");
        row("rights as text", manifest("a", "l.so", "2.0", ",'rights':'all'"), "“rights”");
        row("rights with text", manifest("a", "l.so", "2.0", ",'rights':['x']"), "“rights”");
        row("icon with a path", manifest("a", "l.so", "2.0", ",'icon':'../x.svg'"), "图标“../x.svg”无效");
        row("icon of another type", manifest("a", "l.so", "2.0", ",'icon':1"), "“icon”");
        row("too large", QByteArray(70000, ' '), "清单过大");
    }
    void aManifestThatBreaksItsFormSaysWhatIsWrong()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, problem);
        QTemporaryDir folder;
        PluginManifest manifest;
        QString said;
        QVERIFY(!workbench::readManifest(write(folder.path(), "x.plugin.json", text), manifest, said));
        QVERIFY2(said.contains(problem), qUtf8Printable(said));
    }

    void aManifestThatIsNotThereIsReported()
    {
        PluginManifest manifest;
        QString problem;
        QVERIFY(!workbench::readManifest("/nowhere/x.plugin.json", manifest, problem));
        QVERIFY(problem.startsWith("无法读取清单"));
        QCOMPARE(manifest.file, QString("/nowhere/x.plugin.json"));
    }

    void aClassThatIsFoundTwiceCountsOnceInTheEarlierFolder()
    {
        QTemporaryDir earlier;
        QTemporaryDir later;
        const QByteArray text = json("{'title':'T','class':'C','library':'l.so','sdkVersion':'2.0'}");
        write(earlier.path(), "a.plugin.json", text);
        write(later.path(), "b.plugin.json", text);
        write(later.path(), "l.so", "x");
        CPluginCatalogue plugins;
        plugins.scan({earlier.path(), later.path(), "/nowhere"});
        QCOMPARE(plugins.entries().size(), std::size_t(1));
        QCOMPARE(QFileInfo(plugins.entries()[0].manifest.file).fileName(), QString("a.plugin.json"));
    }

    void anIconMayBeAFileOfThePlugin()
    {
        QTemporaryDir folder;
        write(folder.path(), "a.plugin.json",
              json("{'title':'T','class':'C','library':'l.so','sdkVersion':'2.0','icon':'own.svg'}"));
        write(folder.path(), "own.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'/>");
        CPluginCatalogue plugins;
        plugins.scan({folder.path()});
        const QString key = plugins.find("C")->manifest.icon;
        QVERIFY(WQ::CUiResourceManager::instance()->imageKeys().contains(key));
        QCOMPARE(WQ::CUiResourceManager::instance()->image(key).toImage().pixelColor(8, 8), QColor(Qt::transparent));
    }

    void aFolderThatIsGivenTwiceCountsOnce()
    {
        QTemporaryDir folder;
        write(folder.path(), "bad.plugin.json", "{");
        CPluginCatalogue plugins;
        plugins.scan({folder.path(), folder.path() + "/."});
        QCOMPARE(plugins.entries().size(), std::size_t(1));
    }

    void whatAUserMayOpenIsJudgedAnewAtEveryScan()
    {
        CPluginCatalogue plugins;
        plugins.scan({folder()});
        QCOMPARE(entryOf(plugins, "02-staying")->state, EState::Available);
        logIn({});
        plugins.scan({folder()});
        QCOMPARE(entryOf(plugins, "02-staying")->state, EState::NotPermitted);
        QCOMPARE(entryOf(plugins, "01-noting")->state, EState::Available);
        logIn({nvservice::UserRight::DeleteAccountGroup});
        plugins.scan({folder()});
        QCOMPARE(entryOf(plugins, "02-staying")->state, EState::Available);
    }

    void anUnknownClassGivesNoPanel()
    {
        CPluginCatalogue plugins;
        plugins.scan({folder()});
        QVERIFY(!plugins.create("fixtures::CNobody", nullptr));
        QVERIFY(!plugins.create("", nullptr)); // the entry of a broken manifest has no class
    }

    void aBrokenPluginIsLoggedByTheNameOfItsManifest()
    {
        support::UnexpectedLog log;
        QTemporaryDir folder;
        write(folder.path(), "bad.plugin.json", "{");
        log.expect(folder.path() + "/bad.plugin.json: 清单格式错误");
        CPluginCatalogue plugins;
        plugins.scan({folder.path()});
    }
};

TEST_WITH_WIDGETS(PluginCatalogueTest)
#include "tst_workbench_plugin_catalogue.moc"
