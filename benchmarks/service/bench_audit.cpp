// SPDX-License-Identifier: Apache-2.0
// Pages of a long audit, beside the same pages asked of the database by hand.
//
//     bench_audit [rows [rounds]]
//
// SQLite in the folder QAV_TEST_FOLDER (the temporary folder without it); with QAV_TEST_POSTGRES, the folder of a
// server's socket, PostgreSQL. Both sides take turns; the figures are the medians of the rounds. Exits with 1 if a
// bound is missed.

#include "service/PagedQuery.h"

#include "service/engine/UserRights.h"
#include "service/store/Query.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

using namespace testservice;
using service::Query;

namespace
{

constexpr int Rows = 10000000;
constexpr int RowsAtOnce = 500000;
constexpr int PageSize = 100;
constexpr int FarPage = 1000;
constexpr int Groups = 1000;
constexpr double FirstPageBound = 2.0;
constexpr double FarPageBound = 1.2;
constexpr std::int64_t Start = 1767225600000;

void require(bool holds, const std::string& what)
{
    if (!holds) {
        throw std::runtime_error(what);
    }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double least(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

template <typename Work>
double millisecondsOf(Work work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

struct Measure {
    const char* name;
    const char* conditions; ///< of the query
    const char* byHand;     ///< of the SELECT
    int institution;        ///< of the user
};

constexpr Measure Measures[] = {
    {"all", "", "", None},
    {"a time in the middle", "until=%1", " AND a.at <= %1", None},
    {"one user", "user=user7", " AND a.login = 'user7'", None},
    {"one group", "group=77", " AND a.record_key = 'E|77' AND a.data_type IN (625, 7131, 23460, 90005)", None},
    {"carried out", "outcome=ok", " AND a.outcome = 0", None},
    {"refused", "outcome=refused", " AND a.outcome <> 0", None},
    {"one outcome", "outcome=10", " AND a.outcome <> 0 AND a.outcome = 10", None},
    {"one institution", "", " AND a.institution_id = 1", First}};

class Audit
{
public:
    explicit Audit(int rows) : m_rows(rows)
    {
        service::Connection& connection = m_fixture.store().connection();
        run(connection, "INSERT INTO account_group_history (server_id, group_id, revision, operation, changed_by,"
                        " changed_at, name, institution_id, members) " +
                            numbers(Groups) + " SELECT 1, i, 1, 2, 'user1', 0, '组' || i, 1 + i % 2, '' FROM n");
        run(connection, "INSERT INTO account_group (server_id, group_id, name, institution_id, revision, modified_by,"
                        " modified_at) " +
                            numbers(Groups) + " SELECT 1, i, '组' || i, 1 + i % 2, 1, 'user1', 0 FROM n");
        for (int from = 0; from < rows; from += RowsAtOnce) {
            run(connection, insertOf(from, std::min(RowsAtOnce, rows - from)));
        }
        run(connection, "ANALYZE");
        for (int user = 0; user < 20; ++user) {
            m_fixture.session("user" + std::to_string(user), {});
        }
        m_sessions[None] = m_fixture.session("auditor", service::userWithEveryRight("").rights);
        m_sessions[First] = m_fixture.session("bound", service::userWithEveryRight("").rights, First);
    }

    std::string conditionsOf(const Measure& measure, const std::string& cursor = {}) const
    {
        return filled(measure.conditions) + (*measure.conditions == '\0' ? "" : "&") +
               "page-size=" + std::to_string(PageSize) + (cursor.empty() ? "" : "&cursor=" + cursor);
    }

    double ours(const Measure& measure, const std::string& cursor = {})
    {
        const std::string key = conditionsOf(measure, cursor);
        service::Reply reply;
        const double time = millisecondsOf([&] { reply = page(measure, key); });
        require(reply.records.size() == PageSize, std::string("no whole page: ") + measure.name);
        return time;
    }

    /// The same rows and names, read into variables.
    double byHand(const Measure& measure)
    {
        int found = 0;
        const QString sql =
            QString("SELECT a.id, a.at, a.login, a.operation, a.data_type, a.record_key, a.operation_id, a.outcome,"
                    " a.message, u.display_name, (SELECT h.name FROM account_group_history h WHERE h.server_id = 1"
                    " AND h.group_id = CAST(substr(a.record_key, 3) AS %1) ORDER BY h.revision DESC LIMIT 1)"
                    " FROM audit a LEFT JOIN app_user u ON u.server_id = a.server_id AND u.login = a.login"
                    " WHERE a.server_id = 1%2 ORDER BY a.at DESC, a.id DESC LIMIT %3")
                .arg(TestDatabase::isPostgres() ? "BIGINT" : "INTEGER", QString::fromStdString(filled(measure.byHand)),
                     QString::number(PageSize));
        service::Connection& connection = m_fixture.store().connection();
        const double time = millisecondsOf([&] {
            connection.beginRead();
            {
                Query query(connection, sql);
                for (query.run(); query.next(); ++found) {
                    for (int column = 0; column < 11; ++column) {
                        m_size += query.text(column).size();
                    }
                }
            }
            connection.rollback();
        });
        require(found == PageSize, std::string("no whole page by hand: ") + measure.name);
        return time;
    }

    /// The cursor of a page; empty if there are fewer.
    std::string cursorOf(const Measure& measure, int number)
    {
        std::string cursor;
        for (int i = 1; i < number; ++i) {
            cursor = nextOf(page(measure, conditionsOf(measure, cursor)));
            if (cursor.empty()) {
                return {};
            }
        }
        return cursor;
    }

private:
    static void run(service::Connection& connection, const QString& sql)
    {
        service::Transaction transaction(connection, service::Transaction::EKind::Write);
        connection.allowLongStatements();
        connection.exec(sql);
        transaction.commit();
    }

    std::string filled(const char* text) const
    {
        return QString(text).replace("%1", QString::number(Start + 5 * std::int64_t{m_rows})).toStdString();
    }

    service::Reply page(const Measure& measure, const std::string& key)
    {
        service::Reply reply =
            query(m_fixture.east(), m_sessions.at(measure.institution), nvservice::DataType::Audit, key);
        require(reply.error.isSuccess(), reply.error.errorMsg());
        return reply;
    }

    /// One row in ten milliseconds, one in fifty refused, half of those as conflicts.
    static QString insertOf(int from, int count)
    {
        const QString body = TestDatabase::isPostgres() ? "decode(repeat('00', 150), 'hex')" : "zeroblob(150)";
        return "INSERT INTO audit (server_id, at, login, operation, data_type, record_key, operation_id, outcome,"
               " message, before_body, after_body, institution_id) " +
               numbers(count) +
               QString(
                   " SELECT 1, %1 + 10 * (i + %2), 'user' || (i * 7 % 20), 0, CASE i % 3 WHEN 0 THEN 7131 ELSE 625 END,"
                   " 'E|' || (1 + i * 31 % %3), 'operation-' || (i + %2),"
                   " CASE i % 50 WHEN 0 THEN 10 + i / 50 % 2 * 2 ELSE 0 END,"
                   " CASE i % 50 WHEN 0 THEN '账号组已被他人修改，请刷新后重试' ELSE '' END, %4, %4,"
                   " CASE i % 100 WHEN 0 THEN NULL ELSE 1 + (1 + i * 31 % %3) % 2 END FROM n")
                   .arg(QString::number(Start), QString::number(from), QString::number(Groups), body);
    }

    int m_rows;
    std::size_t m_size = 0;
    ServiceFixture m_fixture;
    std::map<int, service::SessionPtr> m_sessions;
};

/// True if the bounds hold.
bool report(Audit& audit, const Measure& measure, int rounds)
{
    const std::string far = audit.cursorOf(measure, FarPage);
    std::vector<double> hand;
    std::vector<double> first;
    std::vector<double> last;
    for (int round = 0; round <= rounds; ++round) {
        const double byHand = audit.byHand(measure);
        const double ours = audit.ours(measure);
        const double farther = far.empty() ? 0.0 : audit.ours(measure, far);
        if (round > 0) {
            hand.push_back(byHand);
            first.push_back(ours);
            last.push_back(farther);
        }
    }
    const double ratio = median(first) / median(hand);
    const double farRatio = median(last) / median(first);
    const bool holds = ratio <= FirstPageBound && farRatio <= FarPageBound;
    std::printf("%-22s by hand %6.2f ms, first page %6.2f ms, %4.2f x; fastest %4.2f and %4.2f ms, %4.2f x",
                measure.name, median(hand), median(first), ratio, least(hand), least(first),
                least(first) / least(hand));
    if (!far.empty()) {
        std::printf("; page %d %6.2f ms, %4.2f x the first", FarPage, median(last), farRatio);
    }
    std::printf("%s\n", holds ? "" : "  MISSED");
    return holds;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (!qEnvironmentVariableIsSet("QAV_TEST_FOLDER")) {
        qputenv("QAV_TEST_FOLDER", QDir::tempPath().toUtf8());
    }
    const int rows = argc > 1 ? std::max(PageSize, std::atoi(argv[1])) : Rows;
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 51;
    Audit audit(rows);
    std::printf("%s, %d rows, median of %d rounds\n", TestDatabase::isPostgres() ? "PostgreSQL" : "SQLite", rows,
                rounds);
    bool allHold = true;
    for (const Measure& measure : Measures) {
        allHold = report(audit, measure, rounds) && allHold;
    }
    return allHold ? 0 : 1;
}
