// SPDX-License-Identifier: Apache-2.0
#include "service/PagedQuery.h"
#include "support/TestProgram.h"

#include "service/store/AuditPages.h"
#include "service/store/Query.h"
#include "service/store/Schema.h"

#include <nvservice/CAuditEntry.h>

#include <random>

using namespace testservice;
using service::AuditFilter;
using service::AuditPage;
using service::AuditPosition;
using service::AuditRow;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

namespace
{

struct ModelRow {
    AuditRow row;
    service::InstitutionId institution;
};

bool matches(const AuditFilter& filter, const ModelRow& each)
{
    const AuditRow& row = each.row;
    const auto& types = filter.dataTypes;
    return (!filter.login || row.login == *filter.login) && (!filter.since || row.at >= *filter.since) &&
           (!filter.until || row.at <= *filter.until) && (!filter.recordKey || row.recordKey == *filter.recordKey) &&
           (types.empty() || std::count(types.begin(), types.end(), row.dataType) != 0) &&
           (!filter.operation || row.operation == *filter.operation) &&
           (!filter.isSuccess || row.outcome.isSuccess() == *filter.isSuccess) &&
           (!filter.outcome || row.outcome.code() == *filter.outcome) &&
           (!filter.institution || each.institution == filter.institution);
}

bool isLater(const ModelRow& a, const ModelRow& b)
{
    return std::make_pair(a.row.at, a.row.id) > std::make_pair(b.row.at, b.row.id);
}

} // namespace

class AuditPagesTest : public ServiceTest
{
    Q_OBJECT

    std::mt19937 m_random{20260105};
    std::vector<ModelRow> m_model;
    std::vector<int> m_groups;

    int random(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    template <typename Value>
    std::optional<Value> maybe(const Value& value)
    {
        return random(3) == 0 ? std::make_optional(value) : std::nullopt;
    }
    service::ServerData east() { return {m_fixture->store().connection(), m_fixture->server(0)}; }

    /// Few values, so that filters match some rows, and rows share their times.
    void insertRandomRow()
    {
        AuditRow row;
        row.at = 1000 + random(40);
        row.login = "user" + std::to_string(random(4));
        row.operation = random(2) == 0 ? 0 : 2;
        row.dataType = random(3) == 0 ? DataType::GroupRiskConfig : DataType::AccountGroup;
        const int group = m_groups[static_cast<std::size_t>(random(static_cast<int>(m_groups.size())))];
        row.recordKey = service::groupKey(m_fixture->server(0), group);
        if (random(3) == 0) {
            row.outcome = {random(2) == 0 ? EErrorCode::Conflict : EErrorCode::NotFound, "nein"};
        }
        service::Transaction transaction(east().connection, service::Transaction::EKind::Write);
        service::insertAudit(east(), row);
        transaction.commit();
        row.id = m_fixture->number("SELECT max(id) FROM audit");
        const std::int64_t institution = m_fixture->number(
            QString("SELECT coalesce(institution_id, -1) FROM account_group WHERE group_id = %1").arg(group));
        m_model.push_back({row, institution == -1 ? service::InstitutionId() : service::InstitutionId(institution)});
    }

    AuditFilter randomFilter()
    {
        AuditFilter filter;
        filter.login = maybe("user" + std::to_string(random(5)));
        filter.since = maybe(std::int64_t{1000 + random(40)});
        filter.until = maybe(std::int64_t{1000 + random(40)});
        filter.recordKey =
            maybe(service::groupKey(m_fixture->server(0), m_groups[static_cast<std::size_t>(random(3))]));
        if (random(3) == 0) {
            filter.dataTypes = {DataType::GroupRiskConfig, DataType::EmailRule};
        }
        filter.operation = maybe(2);
        filter.isSuccess = maybe(random(2) == 0);
        filter.outcome = maybe(random(2) == 0 ? EErrorCode::Success : EErrorCode::Conflict);
        filter.institution = maybe(std::int64_t{First});
        return filter;
    }

    /// All rows that the filter matches, the latest first.
    std::vector<std::int64_t> expected(const AuditFilter& filter)
    {
        std::sort(m_model.begin(), m_model.end(), &isLater);
        std::vector<std::int64_t> ids;
        for (const ModelRow& each : m_model) {
            if (matches(filter, each)) {
                ids.push_back(each.row.id);
            }
        }
        return ids;
    }

    void addGroupsAndRows(int rows)
    {
        for (const int institution : {First, Second, None}) {
            m_groups.push_back(m_fixture->storedGroup("组" + std::to_string(institution), institution)->groupId);
        }
        for (int i = 0; i < rows; ++i) {
            insertRandomRow();
        }
    }

protected:
    void begin() override
    {
        ServiceTest::begin();
        m_model.clear();
        m_groups.clear();
    }

private slots:
    void pagesHaveWhatTheFilterMatchesInTheOrderOfTime()
    {
        addGroupsAndRows(300);
        for (int round = 0; round < 150; ++round) {
            const AuditFilter filter = randomFilter();
            const int limit = 1 + random(round % 2 == 0 ? 5 : 400);
            std::vector<std::int64_t> found;
            std::optional<AuditPosition> from;
            do {
                const AuditPage page = service::readAuditPage(east(), filter, from, limit);
                QVERIFY(page.rows.size() <= static_cast<std::size_t>(limit));
                QVERIFY(!page.next || !page.rows.empty());
                for (const AuditRow& row : page.rows) {
                    found.push_back(row.id);
                }
                from = page.next;
            } while (from);
            QCOMPARE(found, expected(filter));
        }
    }

    void rowsThatComeMeanwhileNeitherRepeatNorHideOthers()
    {
        addGroupsAndRows(60);
        for (int round = 0; round < 40; ++round) {
            const AuditFilter filter = randomFilter();
            const std::vector<std::int64_t> before = expected(filter);
            std::vector<std::int64_t> found;
            std::optional<AuditPosition> from;
            do {
                const AuditPage page = service::readAuditPage(east(), filter, from, 1 + random(6));
                for (const AuditRow& row : page.rows) {
                    found.push_back(row.id);
                }
                insertRandomRow();
                from = page.next;
            } while (from);
            // What was there is there, in its order; nothing else but what matches; nothing twice.
            const std::vector<std::int64_t> after = expected(filter);
            std::vector<std::int64_t> ofBefore;
            std::copy_if(found.begin(), found.end(), std::back_inserter(ofBefore),
                         [&](std::int64_t id) { return std::count(before.begin(), before.end(), id) != 0; });
            QCOMPARE(ofBefore, before);
            std::vector<std::int64_t> ofAfter;
            std::copy_if(after.begin(), after.end(), std::back_inserter(ofAfter),
                         [&](std::int64_t id) { return std::count(found.begin(), found.end(), id) != 0; });
            QCOMPARE(found, ofAfter);
        }
    }

    /// Many rows that no index leads past.
    void aPageEndsBeforeItHasReadTooMuch()
    {
        addGroupsAndRows(0);
        const QString key = QString::fromStdString(service::groupKey(m_fixture->server(0), m_groups[0]));
        const auto insert = [&](int from, int count, const char* login) {
            m_fixture->exec("INSERT INTO audit (server_id, at, login, operation, data_type, record_key, operation_id,"
                            " outcome, message) " +
                            numbers(count) +
                            QString(" SELECT 1, %1 + i, '%2', 0, 625, '%3', '', 0, '' FROM n")
                                .arg(QString::number(from), login, key));
        };
        insert(0, 3, "rare");
        insert(100, 2 * service::MostAuditRowsRead, "frequent");
        AuditFilter filter;
        filter.recordKey = key.toStdString();
        filter.login = "rare";
        int pages = 0;
        std::vector<AuditRow> rows;
        std::optional<AuditPosition> from;
        do {
            const AuditPage page = service::readAuditPage(east(), filter, from, 10);
            rows.insert(rows.end(), page.rows.begin(), page.rows.end());
            from = page.next;
            ++pages;
        } while (from);
        QCOMPARE(rows.size(), std::size_t(3));
        QCOMPARE(pages, 3);
    }

    void aRowBelongsToTheInstitutionOfItsGroupAtThatTime()
    {
        const auto lastInstitution = [this] {
            return m_fixture->number("SELECT coalesce(institution_id, -1) FROM audit ORDER BY id DESC LIMIT 1");
        };
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, group("甲", First, {future("8001")})),
                     EErrorCode::Success);
        QCOMPARE(lastInstitution(), std::int64_t{First});
        const GroupPtr moved = m_fixture->current(1);
        moved->institutionId = Second;
        moved->accounts = {future("9001")};
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, moved), EErrorCode::Success);
        QCOMPARE(lastInstitution(), std::int64_t{Second});
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, moved), EErrorCode::Conflict);
        QCOMPARE(lastInstitution(), std::int64_t{Second});
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, m_fixture->current(1)), EErrorCode::Success);
        QCOMPARE(lastInstitution(), std::int64_t{Second});
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Delete, moved), EErrorCode::NotFound);
        QCOMPARE(lastInstitution(), std::int64_t{Second});
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Add, group("", First, {future("8001")})),
                     EErrorCode::InvalidValue);
        QCOMPARE(lastInstitution(), std::int64_t{-1});
        QCOMPARE(m_fixture->column("SELECT coalesce(institution_id, -1) FROM audit ORDER BY id"),
                 std::string("1,2,2,2,2,-1"));
    }

    void rowsFromBeforeTheirInstitutionWasStoredGetIt()
    {
        constexpr std::size_t WithoutInstitutions = 5;
        const TestDatabase database;
        service::StoreOptions options;
        options.location = database.location();
        {
            const auto& all = service::schemaMigrations();
            service::Connection connection(options, "old");
            service::migrateSchema(connection,
                                   {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(WithoutInstitutions)});
            connection.exec("INSERT INTO sub_system (name, system_tag) VALUES ('旧', 'A|B\\C')");
            const QString revision = "INSERT INTO account_group_history (server_id, group_id, revision, operation,"
                                     " changed_by, changed_at, name, institution_id, members)"
                                     " VALUES (1, 7, %1, 0, 'x', %2, '组', %3, '')";
            connection.exec(revision.arg(1).arg(100).arg(3));
            connection.exec(revision.arg(2).arg(200).arg(4));
            connection.exec(revision.arg(3).arg(300).arg("NULL"));
            const QString row = "INSERT INTO audit (server_id, at, login, operation, data_type, record_key,"
                                " operation_id, outcome, message) VALUES (1, %1, 'x', 0, %2, '%3', '', 0, '')";
            for (const int at : {99, 100, 250, 300}) {
                connection.exec(row.arg(at).arg(625).arg("A\\|B\\\\C|7"));
            }
            connection.exec(row.arg(150).arg(7131).arg("A\\|B\\\\C|7"));
            connection.exec(row.arg(150).arg(12224).arg("A\\|B\\\\C|7"));
            connection.exec(row.arg(150).arg(625).arg("A\\|B\\\\C|8"));
        }
        const support::RealService service(options.location);
        QCOMPARE(service.column("SELECT coalesce(institution_id, -1) FROM audit ORDER BY id"),
                 std::string("-1,3,4,-1,3,-1,-1"));
    }

    void pagesOfAQueryFollowTheirCursors()
    {
        addGroupsAndRows(50);
        nvservice::CQueryKey key;
        key.set(QueryCondition::PageSize, 7);
        int pages = 1;
        const auto entries = recordsAs<nvservice::CAuditEntry>(
            everyPage(m_fixture->east(), m_fixture->admin(), DataType::Audit, key, [&pages] { ++pages; }));
        QCOMPARE(pages, 8);
        std::vector<std::int64_t> ids;
        for (const auto& entry : entries) {
            ids.push_back(entry->entryId);
        }
        QCOMPARE(ids, expected({}));
        QCOMPARE(entries[0]->getSystemTag(), std::string("E"));
        QCOMPARE(entries[0]->groupName, std::string("组") + (entries[0]->groupId == m_groups[0]   ? "1"
                                                             : entries[0]->groupId == m_groups[1] ? "2"
                                                                                                  : "2147483647"));
    }

    /// Details of a megabyte each.
    void aPageOfDetailsEndsBeforeItIsTooLarge()
    {
        const int id = m_fixture->storedGroup("组")->groupId;
        const std::string key = service::groupKey(m_fixture->server(0), id);
        service::Transaction transaction(east().connection, service::Transaction::EKind::Write);
        constexpr int Rows = 12;
        for (int i = 0; i < Rows; ++i) {
            bson::BSONObjBuilder document;
            document.append("_type", "nvservice::CAccountGroup");
            document.append("more", std::string(i == 0 ? std::size_t{15} << 20 : std::size_t{1} << 20, 'x'));
            AuditRow row;
            row.at = 1000 + i;
            row.login = "admin";
            row.dataType = DataType::AccountGroup;
            row.recordKey = key;
            row.after = document.obj();
            service::insertAudit(east(), row);
        }
        transaction.commit();
        std::vector<int> sizes;
        std::string cursor;
        nvservice::CQueryKey conditions;
        conditions.set(QueryCondition::Details, 1);
        std::vector<boost::shared_ptr<nvservice::CAuditEntry>> entries;
        do {
            const service::Reply reply = m_fixture->query(DataType::Audit, conditions.text());
            COMPARE_CODE(reply, EErrorCode::Success);
            sizes.push_back(static_cast<int>(reply.records.size()));
            for (const auto& entry : recordsAs<nvservice::CAuditEntry>(reply.records)) {
                entries.push_back(entry);
            }
            cursor = nextOf(reply);
            conditions.set(QueryCondition::Cursor, cursor);
        } while (!cursor.empty());
        QCOMPARE(sizes, (std::vector<int>{4, 4, 4}));
        for (int i = 0; i < Rows - 1; ++i) {
            QVERIFY(entries[static_cast<std::size_t>(i)]->after);
            QVERIFY(entries[static_cast<std::size_t>(i)]->withheldReason.empty());
        }
        QVERIFY(!entries.back()->after);
        QVERIFY(!entries.back()->withheldReason.empty());
    }

    void countedAttemptsAreOneEntryWithTheirNumber()
    {
        constexpr int Attempts = 50;
        {
            const support::RealService service(m_fixture->location(), {}, {1, 1024 * 1024, std::chrono::hours(1)});
            const auto session = m_fixture->session("viewer", {});
            for (int i = 0; i < Attempts; ++i) {
                testservice::operate(service.engine(), session, EZvDataOperation::Add, group("新", First, {}));
            }
        } // writes what it has counted
        const service::Reply reply = m_fixture->query(DataType::Audit, "user=viewer&outcome=refused");
        QCOMPARE(static_cast<int>(reply.records.size()), 2);
        std::int64_t attempts = 0;
        for (const auto& entry : recordsAs<nvservice::CAuditEntry>(reply.records)) {
            attempts += entry->attempts;
        }
        QCOMPARE(attempts, std::int64_t(Attempts));
    }
};

TEST_WITHOUT_WIDGETS(AuditPagesTest)
#include "tst_audit_pages.moc"
