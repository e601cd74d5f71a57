// SPDX-License-Identifier: Apache-2.0
#include "service/admin/AdminFixture.h"

#include "service/admin/Times.h"
#include "support/TestProgram.h"

#include <QDateTime>
#include <QProcess>

using namespace testservice;

namespace
{

constexpr qint64 OneDay = 24LL * 60 * 60 * 1000;

QString at(qint64 time)
{
    return service::isoTime(time);
}

class PruneFixture : public AdminFixture
{
public:
    void addAudit(int count, int serverIndex = 0, const QString& record = "E|1")
    {
        exec(
            QString("INSERT INTO audit (server_id, at, login, operation, data_type, record_key, operation_id, outcome, "
                    "message) %1 SELECT %2, i, 'li', 3, 625, '%3', '', 7, '' FROM n")
                .arg(numbers(count), QString::number(server(serverIndex).id), record));
    }
    void addOperations(int count, int serverIndex = 0)
    {
        exec(QString("INSERT INTO operation_log (server_id, login, operation_id, at, digest, outcome, message)"
                     " %1 SELECT %2, 'li', 'op-' || i, i, '', 0, '' FROM n")
                 .arg(numbers(count), QString::number(server(serverIndex).id)));
    }
    Outcome prune(const QString& journal, qint64 before, const QString& server = "E")
    {
        return run(QStringList{journal, "prune", "--server", server, "--before", at(before), "--json"});
    }
    std::int64_t left(const QString& table, int serverIndex = 0)
    {
        return number(QString("SELECT count(*) FROM %1 WHERE server_id = %2")
                          .arg(table, QString::number(server(serverIndex).id)));
    }
    /// What the last row about pruning says.
    QJsonObject told()
    {
        return run(QStringList{"audit", "--server", "E", "--user", toolUser(), "--details", "--json"})
            .json()
            .array()
            .at(0)
            .toObject();
    }
};

} // namespace

class AdminPruneTest : public support::FixtureTest<PruneFixture>
{
    Q_OBJECT

private slots:
    void oldRowsOfTheServerGoAndTheAuditSaysSo()
    {
        m_fixture->addAudit(2500);
        m_fixture->addAudit(100, 1);
        const Outcome outcome = m_fixture->prune("audit", 2401);
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("removed"), QJsonValue(2400));
        QCOMPARE(m_fixture->number("SELECT min(at) FROM audit WHERE server_id = 1"), std::int64_t{2401});
        QCOMPARE(m_fixture->left("audit"), std::int64_t{101});
        QCOMPARE(m_fixture->left("audit", 1), std::int64_t{100});
        const QJsonObject told = m_fixture->told();
        QCOMPARE(told.value("login"), QJsonValue(toolUser()));
        QCOMPARE(told.value("operation"), QJsonValue("delete"));
        QCOMPARE(told.value("key"), QJsonValue("audit"));
        QCOMPARE(told.value("outcome"), QJsonValue("ok"));
        QCOMPARE(told.value("before").toObject().value("rows").toInt(), 2400);
        QCOMPARE(told.value("before").toObject().value("before").toInt(), 2401);
    }

    void rowsAboutPruningAreNeverRemoved()
    {
        m_fixture->addAudit(3);
        m_fixture->addAudit(1, 0, "audit");
        m_fixture->addAudit(1, 0, "operation-log");
        COMPARE_EXIT(m_fixture->prune("audit", 1000), 0);
        QCOMPARE(m_fixture->left("audit"), std::int64_t{3});
        const Outcome again = m_fixture->prune("audit", QDateTime::currentMSecsSinceEpoch());
        COMPARE_EXIT(again, 0);
        QCOMPARE(again.json().object().value("removed"), QJsonValue(0));
        QCOMPARE(m_fixture->left("audit"), std::int64_t{3});
    }

    void oldAnswersGoAndThoseStayThatMayBeAskedForAgain()
    {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        m_fixture->addOperations(2500);
        m_fixture->addOperations(3000, 1);
        m_fixture->storedGroup("组");
        const GroupPtr record = m_fixture->current(1);
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, record, "new"), EErrorCode::Success);
        for (const qint64 tooLate : {now + OneDay, now, now - OneDay + 60000}) {
            const Outcome refused = m_fixture->prune("operation-log", tooLate);
            COMPARE_EXIT(refused, 1);
            QCOMPARE(m_fixture->left("operation_log"), std::int64_t{2501});
            QCOMPARE(m_fixture->audit(1), QStringList{toolUser() + " 3 operation-log 12"});
        }
        const Outcome outcome = m_fixture->prune("operation-log", now - OneDay - 60000);
        COMPARE_EXIT(outcome, 0);
        QCOMPARE(outcome.json().object().value("removed"), QJsonValue(2500));
        QCOMPARE(m_fixture->left("operation_log", 1), std::int64_t{3000});
        QCOMPARE(m_fixture->audit(1), QStringList{toolUser() + " 3 operation-log 0"});
        // It is still carried out once only.
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, record, "new"), EErrorCode::Success);
        QCOMPARE(m_fixture->left("operation_log"), std::int64_t{1});
    }

    void timeToComeIsRefusedAndTheTimeIsNeeded()
    {
        m_fixture->addAudit(1);
        COMPARE_EXIT(m_fixture->prune("audit", QDateTime::currentMSecsSinceEpoch() + OneDay), 1);
        QCOMPARE(m_fixture->audit(1), QStringList{toolUser() + " 3 audit 12"});
        COMPARE_EXIT(m_fixture->run("audit prune --server E"), 2);
        COMPARE_EXIT(m_fixture->run("operation-log prune --server E --before gestern"), 2);
        QCOMPARE(m_fixture->left("audit"), std::int64_t{2});
    }

    void othersWriteMeanwhileAndAKillLeavesTheRightNumber()
    {
        constexpr int Rows = 40000;
        m_fixture->addAudit(Rows);
        QProcess process;
        process.start(adminProgram(),
                      {"audit", "prune", "--server", "E", "--before", "2000-01-01", "--store", m_fixture->storeName()});
        QTRY_VERIFY(m_fixture->number("SELECT count(*) FROM audit WHERE record_key = 'audit'") == 1);
        int written = 0;
        while (m_fixture->number("SELECT count(*) FROM audit WHERE login = 'li'") > Rows / 2) {
            COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add,
                                            group("组" + std::to_string(++written), First, {future("8001")})),
                         EErrorCode::Success);
        }
        process.kill();
        QVERIFY(process.waitForFinished());
        QVERIFY(written > 0);
        const std::int64_t left = m_fixture->number("SELECT count(*) FROM audit WHERE login = 'li'");
        QVERIFY(left > 0);
        QCOMPARE(m_fixture->told().value("before").toObject().value("rows").toInt(), static_cast<int>(Rows - left));
    }
};

TEST_WITHOUT_WIDGETS(AdminPruneTest)
#include "tst_admin_prune.moc"
