#include "service/ServiceFixture.h"

#include <QFile>
#include <QProcess>
#include <QtTest>

using namespace testservice;

namespace
{

struct Outcome {
    int exitCode = -1;
    QString output;
    QString errors;
};

Outcome run(const char* program, const QStringList& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.start(QString::fromUtf8(program), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QStringList exampleFiles()
{
    QStringList arguments;
    for (const char* name : {"institutions", "accounts", "products", "groups"})
        arguments << QString("--") + name << QString(QAV_IMPORT_EXAMPLE "/%1.csv").arg(name);
    return arguments;
}

} // namespace

class ToolsTest : public QObject
{
    Q_OBJECT

private slots:
    void sampleDataToolFillsANewFileOnce()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QString file = directory.filePath("sample.db");
        const QStringList arguments = {"--database", file, "--groups", "30", "--accounts", "120", "--servers", "2"};
        Outcome outcome = run(QAV_SAMPLE_DATA, arguments);
        QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
        QVERIFY(outcome.output.startsWith("2 sub-systems, 120 accounts, 30 groups"));
        outcome = run(QAV_SAMPLE_DATA, arguments);
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY(outcome.errors.contains("已有数据"));
        QCOMPARE(run(QAV_SAMPLE_DATA, {}).exitCode, 2);
        QCOMPARE(run(QAV_SAMPLE_DATA, {"--database", file, "--groups", "many"}).exitCode, 2);
    }

    void importToolStoresReportsAndCreatesTheAdministrator()
    {
        const QTemporaryDir directory(directoryTemplate());
        const QStringList base = {"--database", directory.filePath("import.db"), "--server", "新分系统"};
        const QStringList creating = base + QStringList{"--new-server", "NEW"} + exampleFiles();
        Outcome outcome = run(QAV_IMPORT, creating + QStringList{"--dry-run"});
        QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
        QVERIFY(outcome.output.contains("账号 第3行 新增 0000456789"));
        QVERIFY(outcome.output.endsWith("未导入\n"));

        outcome = run(QAV_IMPORT, creating + QStringList{"--admin", "boss"}, "geheim-01\n");
        QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.errors));
        QVERIFY(outcome.output.endsWith("已导入\n"));
        service::StoreOptions options;
        options.location = directory.filePath("import.db");
        utils::NVError error;
        const auto store = service::Store::open(options, error);
        QVERIFY(service::DataEngine::openAll(store, error).at(0)->logIn("boss", "geheim-01").error.isSuccess());

        outcome = run(QAV_IMPORT, creating);
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY(outcome.errors.contains("已存在"));
    }

    void importToolNamesTheBadRow()
    {
        const QTemporaryDir directory(directoryTemplate());
        QFile file(directory.filePath("bad.csv"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("机构编号,机构名称\n1,好\nx,坏\n");
        file.close();
        const QStringList base = {"--database", directory.filePath("x.db"), "--server", "新", "--new-server", "N"};
        const Outcome outcome = run(QAV_IMPORT, base + QStringList{"--institutions", file.fileName()});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY2(outcome.output.contains("机构 第3行 错误 x"), qPrintable(outcome.output));
        QVERIFY(!outcome.output.contains("第2行"));
        QCOMPARE(run(QAV_IMPORT, base + QStringList{"--institutions", "/no/such/file.csv"}).exitCode, 2);
        QCOMPARE(run(QAV_IMPORT, {"--server", "新"}).exitCode, 2);
    }
};

QTEST_GUILESS_MAIN(ToolsTest)
#include "tst_tools.moc"
