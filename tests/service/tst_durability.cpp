#include "service/ServiceFixture.h"

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

#include <cstdio>

using namespace testservice;

namespace
{

/// The writing process: adds one group after the other and reports every answer, until it is killed.
int addGroupsForEver(const QString& file, const QString& run)
{
    service::StoreOptions options;
    options.location = file;
    utils::NVError error;
    const service::StorePtr store = service::Store::open(options, error);
    if (!store)
        return 1;
    const auto engines = service::DataEngine::openAll(store, error);
    const auto user = service::findUser(store->connection(), store->subSystems(error).at(0), std::string("writer"));
    const auto session = boost::make_shared<service::Session>(user->row, 1, user->login);
    for (int number = 0;; ++number) {
        const std::string name = run.toStdString() + "-" + std::to_string(number);
        const auto reply = operate(*engines.at(0), session, EZvDataOperation::Add,
                                   group(name, First, {future("8001"), future("8002")}), name);
        if (!reply.error.isSuccess())
            return 1;
        std::printf("%s\n", name.c_str());
        std::fflush(stdout);
    }
}

} // namespace

class DurabilityTest : public QObject
{
    Q_OBJECT

private slots:
    void acknowledgedOperationSurvivesAKillAndIsNeverAppliedTwice()
    {
        ServiceFixture fixture;
        const auto session = fixture.session("writer", everyRight());
        int acknowledgedInAll = 0;
        for (int run = 0; run < 8; ++run) {
            QProcess writer;
            writer.start(QCoreApplication::applicationFilePath(),
                         {"--write", fixture.location(), QString("r%1").arg(run)});
            QStringList acknowledged;
            while (acknowledged.size() < 3 * run + 1) {
                QVERIFY2(writer.waitForReadyRead(30000), writer.readAllStandardError().constData());
                while (writer.canReadLine())
                    acknowledged << QString::fromUtf8(writer.readLine()).trimmed();
            }
            writer.kill();
            QVERIFY(writer.waitForFinished());
            QCOMPARE(writer.exitStatus(), QProcess::CrashExit);
            while (writer.canReadLine())
                acknowledged << QString::fromUtf8(writer.readLine()).trimmed();
            acknowledgedInAll += acknowledged.size();

            QVERIFY(fixture.store().checkIntegrity().isSuccess());
            for (const QString& name : acknowledged)
                QCOMPARE(fixture.number("SELECT count(*) FROM account_group WHERE name = '" + name + "'"), 1);
            // The operation after the last answer may have been stored or not; sent again, it is there once.
            const int next = acknowledged.size();
            const std::string name = "r" + std::to_string(run) + "-" + std::to_string(next);
            COMPARE_CODE(operate(fixture.east(), session, EZvDataOperation::Add,
                                 group(name, First, {future("8001"), future("8002")}), name),
                         EErrorCode::Success);
            QCOMPARE(fixture.number(QString("SELECT count(*) FROM account_group WHERE name = '%1'").arg(name.c_str())),
                     1);
            QCOMPARE(fixture.number(QString("SELECT count(*) FROM account_group WHERE name LIKE 'r%1-%'").arg(run)),
                     next + 1);
        }
        const std::int64_t groups = fixture.number("SELECT count(*) FROM account_group");
        QVERIFY(groups >= acknowledgedInAll);
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group_member"), 2 * groups);
        QCOMPARE(fixture.number("SELECT count(*) FROM account_group_history"), groups);
        QCOMPARE(fixture.number("SELECT count(*) FROM audit"), groups);
        QCOMPARE(fixture.number("SELECT count(*) FROM operation_log"), groups);
    }
};

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--write")
        return addGroupsForEver(arguments.value(2), arguments.value(3));
    DurabilityTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_durability.moc"
