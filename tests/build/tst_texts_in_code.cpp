// SPDX-License-Identifier: Apache-2.0
#include "SourceTree.h"
#include "support/TestProgram.h"

#include <QRegularExpression>

namespace
{

/// The end of the call whose opening bracket is at `open`: the place behind its closing bracket.
int endOfCall(const QString& code, int open)
{
    static const QRegularExpression token("\"(?:[^\"\\\\]|\\\\.)*\"|'(?:[^'\\\\]|\\\\.)*'|[()]");
    int depth = 0;
    for (auto tokens = token.globalMatch(code, open); tokens.hasNext();) {
        const QRegularExpressionMatch match = tokens.next();
        if (match.captured() == "(") {
            ++depth;
        } else if (match.captured() == ")" && --depth == 0) {
            return match.capturedEnd();
        }
    }
    return code.size();
}

/// The lines in which a call of arg follows another one.
QVector<int> chainsIn(const QString& code)
{
    static const QRegularExpression call("\\.arg\\(");
    static const QRegularExpression next("\\G\\s*\\.arg\\(");
    QVector<int> lines;
    for (auto calls = call.globalMatch(code); calls.hasNext();) {
        const QRegularExpressionMatch match = calls.next();
        if (next.match(code, endOfCall(code, match.capturedEnd() - 1)).hasMatch()) {
            lines << code.leftRef(match.capturedStart()).count('\n') + 1;
        }
    }
    return lines;
}

} // namespace

/// How texts are put together in the code that ships.
class TextsInCodeTest : public QObject
{
    Q_OBJECT

private slots:
    /// "%1: %2".arg(name).arg(count) puts the count into a name that holds "%2".
    void allPartsOfATextAreFilledInAtOnce()
    {
        QStringList found;
        int calls = 0;
        for (const char* folder :
             {"panel", "editor", "risk", "exempt", "history", "platform", "service", "workbench", "packaging"}) {
            for (const QString& name : sourcetree::filesIn(folder, {"*.h", "*.cpp"})) {
                QFile file(sourcetree::root().filePath(name));
                QVERIFY(file.open(QIODevice::ReadOnly));
                const QString code = QString::fromUtf8(file.readAll());
                calls += code.count(".arg(");
                for (const int line : chainsIn(code)) {
                    found
                        << QString("%1:%2 calls arg on what arg returned").arg(file.fileName(), QString::number(line));
                }
            }
        }
        QVERIFY2(calls > 100, "the folders hold no code");
        QVERIFY2(found.isEmpty(), qPrintable('\n' + found.join('\n')));
    }

    void aChainIsFound()
    {
        QCOMPARE(chainsIn("a.arg(b).arg(c);"), QVector<int>{1});
        QCOMPARE(chainsIn("x;\na.arg(f(b), \")\")\n    .arg(c)\n    .arg(d);"), (QVector<int>{2, 3}));
        QCOMPARE(chainsIn("a.arg(b, c.arg(d)); e.arg(')');"), QVector<int>());
    }
};

TEST_WITHOUT_WIDGETS(TextsInCodeTest)
#include "tst_texts_in_code.moc"
