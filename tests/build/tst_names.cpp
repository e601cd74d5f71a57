// SPDX-License-Identifier: Apache-2.0
#include "SourceTree.h"
#include "support/TestProgram.h"

using namespace sourcetree;

namespace
{

/// What is wrong with the name of a test, or empty.
QString testProblem(const QString& file, const QString& text)
{
    static const QRegularExpression registration(QStringLiteral("^TEST_WITH(?:OUT)?_WIDGETS\\((\\w+)\\)"),
                                                 QRegularExpression::MultilineOption);
    static const QRegularExpression testFile(QStringLiteral("^tst_[a-z0-9_]+$"));
    const QString name = QFileInfo(file).completeBaseName();
    const auto registered = registration.match(text);
    if (!registered.hasMatch()) {
        return {};
    }
    if (!testFile.match(name).hasMatch()) {
        return file + " holds a test and is not named tst_<subject>";
    }
    if (!registered.captured(1).endsWith(QLatin1String("Test"))) {
        return file + " names its test " + registered.captured(1) + ", which does not end with Test";
    }
    return {};
}

/// What is wrong with the name of a header, or empty.
QString headerProblem(const QString& file, const QString& text)
{
    static const QRegularExpression classFile(QStringLiteral("^[CI][A-Z][a-z]\\w*$"));
    const QString name = QFileInfo(file).completeBaseName();
    // The second part of a class template holds its definitions.
    if (!classFile.match(name).hasMatch() || name.endsWith(QLatin1String("Impl"))) {
        return {};
    }
    const QRegularExpression declaration("^\\s*(class|struct|using)\\b[^;(]*\\b" + name + "\\b",
                                         QRegularExpression::MultilineOption);
    return declaration.match(text).hasMatch() ? QString() : file + " declares no " + name;
}

} // namespace

/// File names against what the files hold.
class NamesTest : public QObject
{
    Q_OBJECT

private slots:
    void testsAreNamedForTheirSubject()
    {
        const QStringList files = filesIn("tests", {"*.cpp"});
        QVERIFY(!files.isEmpty());
        QStringList problems;
        for (const QString& file : files) {
            problems << testProblem(file, textOf(file));
        }
        problems.removeAll({});
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join('\n')));
    }

    void headersAreNamedForTheirClass()
    {
        QStringList problems;
        int seen = 0;
        for (const char* const folder :
             {"panel", "editor", "risk", "exempt", "history", "platform", "service", "workbench", "examples"}) {
            for (const QString& file : filesIn(folder, {"*.h"})) {
                problems << headerProblem(file, textOf(file));
                ++seen;
            }
        }
        problems.removeAll({});
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join('\n')));
        QVERIFY(seen > 0);
    }

    void wrongNamesAreFound()
    {
        QVERIFY(testProblem("tests/tst_a.cpp", "TEST_WITH_WIDGETS(ATest)\n").isEmpty());
        QVERIFY(testProblem("tests/Support.cpp", "int a;\n").isEmpty());
        QVERIFY(!testProblem("tests/ATest.cpp", "TEST_WITH_WIDGETS(ATest)\n").isEmpty());
        QVERIFY(!testProblem("tests/tst_a.cpp", "TEST_WITHOUT_WIDGETS(TestA)\n").isEmpty());
        QVERIFY(headerProblem("panel/CPanel.h", "class Q_DECL_EXPORT CPanel : public QWidget\n{").isEmpty());
        QVERIFY(headerProblem("panel/Requests.h", "int a;\n").isEmpty());
        QVERIFY(!headerProblem("panel/CPanel.h", "class CPanels;\nvoid f(CPanel&);\n").isEmpty());
    }
};

TEST_WITHOUT_WIDGETS(NamesTest)
#include "tst_names.moc"
