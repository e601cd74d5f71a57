// SPDX-License-Identifier: Apache-2.0
#include "service/ServiceFixture.h"
#include "support/TestProgram.h"

#include <QProcess>

using namespace testservice;

namespace
{

struct Outcome {
    int exitCode = -1;
    QString output;
    QString errors;
};

Outcome run(const QString& program, const QStringList& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        return {};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

class ToolsTest : public QObject
{
    Q_OBJECT

private slots:
    void sampleDataToolFillsANewFileOnce()
    {
        const TestDatabase database;
        const QStringList arguments = {"--database", database.location(), "--groups", "30", "--accounts",
                                       "120",        "--servers",         "2"};
        Outcome outcome = run(support::builtFile("bin/qav-sample-data"), arguments);
        QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
        QVERIFY(outcome.output.startsWith("已生成：分系统 2，账号 120，账号组 30，用时 "));
        outcome = run(support::builtFile("bin/qav-sample-data"), arguments);
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY(outcome.errors.contains("已有数据"));
        QCOMPARE(run(support::builtFile("bin/qav-sample-data"), {}).exitCode, 2);
        QCOMPARE(run(support::builtFile("bin/qav-sample-data"), {"--database", database.location(), "--groups", "many"})
                     .exitCode,
                 2);
    }
};

TEST_WITHOUT_WIDGETS(ToolsTest)
#include "tst_tools.moc"
