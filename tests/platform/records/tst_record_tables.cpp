// SPDX-License-Identifier: Apache-2.0
#include "RecordTables.h"
#include "support/TestProgram.h"

#include <QFile>

namespace
{

constexpr char Begin[] = "<!-- records: begin -->\n";
constexpr char End[] = "<!-- records: end -->\n";

} // namespace

class RecordTablesTest : public QObject
{
    Q_OBJECT

private slots:
    void theDocumentHasTheTablesOfTheRecords()
    {
        QFile file(support::sourceFile("docs/wire-protocol.md"));
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QString document = QString::fromUtf8(file.readAll());
        const int begin = document.indexOf(Begin) + int(sizeof Begin - 1);
        const int end = document.indexOf(End);
        QVERIFY(begin > int(sizeof Begin - 1) && end >= begin);
        const QString tables = '\n' + samples::recordTables(support::sourceFile("platform/include/nvservice"));
        const QString found = document.mid(begin, end - begin);
        if (found != tables && qEnvironmentVariableIsSet("QAV_WRITE_DOCUMENTS")) {
            file.resize(0);
            file.seek(0);
            file.write((document.left(begin) + tables + document.mid(end)).toUtf8());
            return;
        }
        const QStringList wanted = tables.split('\n');
        const QStringList present = found.split('\n');
        for (int line = 0; line < wanted.size() && line < present.size(); ++line) {
            if (wanted[line] != present[line]) {
                QFAIL(qPrintable("docs/wire-protocol.md has\n  " + present[line] + "\nwhere the records say\n  " +
                                 wanted[line] + "\nTo write the tables anew:\n  QAV_WRITE_DOCUMENTS=1 " +
                                 QCoreApplication::applicationFilePath() + " tst_record_tables"));
            }
        }
        QCOMPARE(present.size(), wanted.size());
    }

    void aCommentStaysWithItsEnumerator()
    {
        const QString tables = samples::recordTables(support::sourceFile("platform/include/nvservice"));
        QVERIFY(
            tables.contains("\n| 0 | `Percent` | % | of the base quantity; 5 means 5 % |\n| 1 | `Yuan` | 元 | |\n"));
    }

    void everyClassAndEnumerationIsExplainedAndHasRows()
    {
        const QString tables = samples::recordTables(support::sourceFile("platform/include/nvservice"));
        const QStringList sections = tables.split("\n#### ").mid(1);
        QVERIFY(sections.size() >= 30);
        for (const QString& section : sections) {
            const QStringList lines = section.split('\n');
            QVERIFY2(lines.value(2).contains(QRegularExpression("^[A-Z].*\\.$")), qPrintable(section));
            QVERIFY2(lines.value(5) == "|---|---|---|---|" && lines.value(6).startsWith("| "), qPrintable(section));
        }
    }
};

TEST_WITHOUT_WIDGETS(RecordTablesTest)
#include "tst_record_tables.moc"
