// SPDX-License-Identifier: Apache-2.0
#include "BehaviourTable.h"
#include "SourceTree.h"
#include "support/TestProgram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

using namespace behaviour;
using namespace sourcetree;

namespace
{

/// The names of the tests that CTest runs in this build tree.
QStringList registeredTests()
{
    QProcess ctest;
    ctest.setWorkingDirectory(support::builtFile(QString()));
    ctest.start(QStringLiteral(QAV_CTEST), {QStringLiteral("--show-only=json-v1")});
    if (!ctest.waitForFinished(60000)) {
        qFatal("%s does not answer", QAV_CTEST);
    }
    QStringList names;
    const QJsonDocument answer = QJsonDocument::fromJson(ctest.readAllStandardOutput());
    for (const QJsonValue test : answer.object()[QStringLiteral("tests")].toArray()) {
        names << test.toObject()[QStringLiteral("name")].toString();
    }
    return names;
}

Tree wholeTree()
{
    Tree tree;
    tree.read = textOf;
    const QStringList registered = registeredTests();
    for (const QString& file : filesIn(QStringLiteral("tests"), {QStringLiteral("*.cpp")})) {
        const QString program = QFileInfo(file).completeBaseName();
        if (registered.contains(program)) {
            tree.programs.insert(program, file);
        }
    }
    for (const QString& folder : QStringList({"panel", "editor", "risk", "exempt"})) {
        for (const QString& file : filesIn(folder, {QStringLiteral("*.cpp")})) {
            tree.userTexts += chineseTexts(textOf(file));
        }
    }
    tree.userTexts.removeDuplicates();
    return tree;
}

/// A small tree with one source and one test.
Tree smallTree()
{
    Tree tree;
    tree.read = [](const QString& file) {
        if (file == QLatin1String("panel/a.cpp")) {
            return QStringLiteral("void refresh() { show(\"完成\"); }");
        }
        if (file == QLatin1String("tests/tst_a.cpp")) {
            return QStringLiteral(
                "class T\n{\nprivate slots:\n    void itRefreshes();\n\nprivate:\n    void helps();\n};\n"
                "\nvoid T::itRefreshes()\n{\n}\n\nvoid T::helps()\n{\n}\n");
        }
        return QString();
    };
    tree.programs = {{QStringLiteral("tst_a"), QStringLiteral("tests/tst_a.cpp")}};
    tree.userTexts = chineseTexts(tree.read(QStringLiteral("panel/a.cpp")));
    return tree;
}

QStringList problemsIn(const QString& rows)
{
    QStringList problems;
    const std::vector<Row> read = readRows("| behaviour | source | tests |\n|---|---|---|\n" + rows, problems);
    return problems + problemsOf(read, smallTree());
}

} // namespace

/// Whether docs/behaviour.md says of everything that the plug-in does where it is done and what tests it.
class BehaviourTableTest : public QObject
{
    Q_OBJECT

private slots:
    void everyBehaviourHasASourceAndATest()
    {
        const Tree tree = wholeTree();
        QVERIFY(!tree.programs.isEmpty());
        QVERIFY(!tree.userTexts.isEmpty());
        QStringList problems;
        const std::vector<Row> rows = readRows(textOf(QStringLiteral("docs/behaviour.md")), problems);
        problems += problemsOf(rows, tree);
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1Char('\n'))));
    }

    void whatIsWrongWithARowIsFound_data()
    {
        const support::DataRows<QString, QStringList> row("rows", "problems");
        const QString good = "| It says \"完成\" | `panel/a.cpp:refresh` | `tst_a::itRefreshes` |\n";
        row("nothing", good, {});
        row("no rows", "", {"there are no rows", "no row has the text “完成”"});
        row("no test", good + "| It rests | `panel/a.cpp:refresh` |  |\n", {"line 4: no test"});
        row("no source", good + "| It rests |  | `tst_a::itRefreshes` |\n", {"line 4: no source"});
        row("a column is missing", good + "| It rests | `tst_a::itRefreshes` |\n", {"line 4 has not three columns"});
        row("twice", good + good, {"line 4: twice"});
        row("unknown file", good + "| It rests | `panel/b.cpp:refresh` | `tst_a::itRefreshes` |\n",
            {"line 4: there is no file panel/b.cpp"});
        row("unknown symbol", good + "| It rests | `panel/a.cpp:fresh` | `tst_a::itRefreshes` |\n",
            {"line 4: panel/a.cpp has no symbol “fresh”"});
        row("unknown program", good + "| It rests | `panel/a.cpp:refresh` | `tst_b::itRefreshes` |\n",
            {"line 4: CTest runs no tst_b"});
        row("unknown function", good + "| It rests | `panel/a.cpp:refresh` | `tst_a::itRests` |\n",
            {"line 4: tst_a has no test function “itRests”"});
        row("a helper", good + "| It rests | `panel/a.cpp:refresh` | `tst_a::helps` |\n",
            {"line 4: tst_a has no test function “helps”"});
        row("a text without a row", "| It refreshes | `panel/a.cpp:refresh` | `tst_a::itRefreshes` |\n",
            {"no row has the text “完成”"});
    }
    void whatIsWrongWithARowIsFound()
    {
        QFETCH(QString, rows);
        QFETCH(QStringList, problems);
        QCOMPARE(problemsIn(rows), problems);
    }
};

TEST_WITHOUT_WIDGETS(BehaviourTableTest)
#include "tst_behaviour_table.moc"
