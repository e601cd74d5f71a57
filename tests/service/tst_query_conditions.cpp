// SPDX-License-Identifier: Apache-2.0
#include "service/PagedQuery.h"
#include "support/TestProgram.h"

#include <rapidcheck.h>

using namespace testservice;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

namespace
{

constexpr int ConditionalTypes[] = {DataType::GroupHistory, DataType::GroupState, DataType::Audit, DataType::Finding,
                                    DataType::GroupRestore};

const char* const Names[] = {QueryCondition::Group,          QueryCondition::GroupRevision,
                             QueryCondition::ConfigRevision, QueryCondition::At,
                             QueryCondition::Since,          QueryCondition::Until,
                             QueryCondition::User,           QueryCondition::RecordType,
                             QueryCondition::Operation,      QueryCondition::Outcome,
                             QueryCondition::Details,        QueryCondition::PageSize,
                             QueryCondition::Cursor,         "unknown"};

const char* const Values[] = {"",
                              "0",
                              "1",
                              "2",
                              "-1",
                              "1.1",
                              "1.",
                              ".1",
                              ".",
                              "ok",
                              "refused",
                              "9223372036854775807",
                              "-9223372036854775808",
                              "9223372036854775808",
                              "01",
                              "+1",
                              "1 ",
                              "1.2.3",
                              "admin",
                              "'; DROP TABLE audit; --",
                              "9223372036854775807.9223372036854775807",
                              "-9223372036854775808.-9223372036854775808",
                              "岚",
                              "%",
                              "2147483647",
                              "2147483648"};

} // namespace

/// What comes from the network as a query key.
class QueryConditionsTest : public ServiceTest
{
    Q_OBJECT

private slots:
    /// Valid and hostile values in every place: an answer, or a refusal that says why, and nothing is written.
    void anyConditionsAreAnsweredOrRefused()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        QCOMPARE(id, 1);
        m_fixture->admin();
        const QStringList before = m_fixture->content();
        QVERIFY(rc::check([this] {
            std::string key;
            for (const std::size_t name :
                 *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, std::size(Names)))) {
                const std::string value = *rc::gen::weightedOneOf<std::string>(
                    {{5, rc::gen::elementOf(std::vector<std::string>(std::begin(Values), std::end(Values)))},
                     {1, rc::gen::arbitrary<std::string>()}});
                key += (key.empty() ? "" : "&") + std::string(Names[name]) + '=' + value;
            }
            const int dataType =
                *rc::gen::elementOf(std::vector<int>(std::begin(ConditionalTypes), std::end(ConditionalTypes)));
            const service::Reply reply = m_fixture->query(dataType, key);
            const EErrorCode code = reply.error.code();
            RC_ASSERT(code == EErrorCode::Success || code == EErrorCode::InvalidValue || code == EErrorCode::NotFound);
            RC_ASSERT(code == EErrorCode::Success || (reply.records.empty() && reply.document.isEmpty()));
        }));
        QCOMPARE(m_fixture->content(), before);
    }

    void wrongConditionsAreRefused_data()
    {
        const support::DataRows<int, QByteArray> row("dataType", "key");
        for (const int type : ConditionalTypes) {
            const QString name = QString::number(type);
            row(name + ": no conditions at all", type, "17");
            row(name + ": an unknown condition", type, "group=1&colour=red");
            row(name + ": one twice", type, "group=1&group=1");
        }
        for (const int type : {DataType::GroupHistory, DataType::GroupState, DataType::GroupRestore}) {
            const QString name = QString::number(type);
            row(name + ": no group", type, "");
            row(name + ": no number of a group", type, "group=x");
            row(name + ": a group below zero", type, "group=-1");
            row(name + ": a group beyond the numbers of groups", type, "group=2147483648");
        }
        for (const int type : {DataType::GroupHistory, DataType::Audit}) {
            const QString name = QString::number(type);
            row(name + ": no page", type, "group=1&page-size=0");
            row(name + ": too large a page", type, "group=1&page-size=1001");
            row(name + ": half a cursor", type, "group=1&cursor=1");
            row(name + ": a cursor without numbers", type, "group=1&cursor=a.b");
            row(name + ": an empty cursor", type, "group=1&cursor=");
            row(name + ": a time that is none", type, "group=1&since=today");
        }
        row("a time and a revision", DataType::GroupState, "group=1&at=1&group-revision=1");
        row("revision 0", DataType::GroupState, "group=1&group-revision=0");
        row("an unknown outcome", DataType::Audit, "outcome=maybe");
        row("a code that no error has", DataType::Audit, "outcome=16");
        row("an operation that there is not", DataType::Audit, "operation=4");
        row("details that are neither there nor not", DataType::Audit, "details=2");
        row("nothing to restore", DataType::GroupRestore, "group=1");
        row("findings have no conditions", DataType::Finding, "group=1");
    }
    void wrongConditionsAreRefused()
    {
        QFETCH(int, dataType);
        QFETCH(QByteArray, key);
        m_fixture->storedGroup("组");
        COMPARE_CODE(m_fixture->query(dataType, key.toStdString()), EErrorCode::InvalidValue);
    }

    /// A cursor is a place in a list, not a way around rights or institutions.
    void aCursorOfAnotherUserGivesNothingMore()
    {
        for (int i = 0; i < 5; ++i) {
            COMPARE_CODE(
                m_fixture->operate(EZvDataOperation::Add, group("组" + std::to_string(i), First, {future("8001")})),
                EErrorCode::Success);
        }
        const std::string cursor = nextOf(m_fixture->query(DataType::Audit, "page-size=1"));
        QVERIFY(!cursor.empty());
        const auto bound = m_fixture->session("bound", everyRight(), Second);
        const auto viewer = m_fixture->session("viewer", {});
        QVERIFY(query(m_fixture->east(), bound, DataType::Audit, "cursor=" + cursor).records.empty());
        COMPARE_CODE(query(m_fixture->east(), viewer, DataType::Audit, "cursor=" + cursor),
                     EErrorCode::PermissionDenied);
    }
};

TEST_WITHOUT_WIDGETS(QueryConditionsTest)
#include "tst_query_conditions.moc"
