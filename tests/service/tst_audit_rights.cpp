// SPDX-License-Identifier: Apache-2.0
#include "service/PagedQuery.h"
#include "service/RiskSamples.h"
#include "support/TestProgram.h"

#include <nvservice/CAuditEntry.h>
#include <nvservice/Codec.h>
#include <nvservice/CustomEmailRC.h>

using namespace testservice;
using nvservice::CAuditEntry;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;
namespace UserRight = nvservice::UserRight;

namespace
{

struct Reader {
    QString name;
    std::set<int> rights;
    int institution;
};

/// Every combination of the rights that matter, bound to each institution and to none.
std::vector<Reader> readers()
{
    const std::vector<int> possible = {UserRight::ReadAudit, UserRight::SetAccountGroupRisk, UserRight::FutureAccount,
                                       UserRight::StockAccount};
    std::vector<Reader> all;
    for (unsigned choice = 0; choice < 1U << possible.size(); ++choice) {
        for (const int institution : {First, Second, None}) {
            Reader reader{QString("rights"), {}, institution};
            for (std::size_t i = 0; i < possible.size(); ++i) {
                if (choice >> i & 1U) {
                    reader.rights.insert(possible[i]);
                    reader.name += QString(" %1").arg(possible[i]);
                }
            }
            reader.name += QString(", ") + QString::number(institution);
            all.push_back(reader);
        }
    }
    return all;
}

bool has(const Reader& reader, int right)
{
    return reader.rights.count(right) != 0;
}

/// Everything in an entry, as text.
QString textOf(const CAuditEntry& entry)
{
    return QString::fromStdString(nvservice::encodeRecord(entry).toString());
}

} // namespace

/// Who reads which rows of the audit, and what of them.
class AuditRightsTest : public ServiceTest
{
    Q_OBJECT

    std::map<int, int> m_groups; ///< by institution

    /// Successes and refusals that name an account of each type, settings with a secret remark, and work of an
    /// administrator.
    void fillAudit()
    {
        const auto worker = m_fixture->session("worker", everyRight());
        service::DataEngine& engine = m_fixture->east();
        m_fixture->exec("INSERT INTO account (server_id, broker_type, account_id, institution_id)"
                        " VALUES (1, 2, 'stock-second', 2), (1, 1, 'future-first', 1), (1, 2, 'stock-first', 1),"
                        " (1, 1, 'future-second', 2)");
        for (const int institution : {First, Second}) {
            const std::string suffix = institution == First ? "-first" : "-second";
            const auto record = group("组" + suffix, institution,
                                      {future("future" + suffix), account(EZVBrokerType::Stock, "stock" + suffix)});
            COMPARE_CODE(testservice::operate(engine, worker, EZvDataOperation::Add, record), EErrorCode::Success);
            const int id = static_cast<int>(m_fixture->number("SELECT max(group_id) FROM account_group"));
            m_groups[institution] = id;
            const GroupPtr changed = m_fixture->current(id);
            changed->accounts = {account(EZVBrokerType::Stock, "no-such-account" + suffix), future("future" + suffix)};
            COMPARE_CODE(testservice::operate(engine, worker, EZvDataOperation::Modify, changed),
                         EErrorCode::InvalidValue);
            const RiskConfigPtr config = loaded(engine, worker, id);
            config->assetsRCs = {stockLimit()};
            config->assetsRCs[0].remark = "secret-limit" + suffix;
            COMPARE_CODE(save(engine, worker, config), EErrorCode::Success);
            const RiskConfigPtr invalid = loaded(engine, worker, id);
            invalid->rcRule.list(nvservice::EZvTraderType::Stock).entries = {entry("secret entry" + suffix)};
            COMPARE_CODE(save(engine, worker, invalid), EErrorCode::InvalidValue);
        }
        m_fixture->exec("INSERT INTO audit (server_id, at, login, operation, data_type, record_key, operation_id,"
                        " outcome, message) VALUES (1, 1, 'boss', 0, 0, 'user|worker', '', 0, ''),"
                        " (1, 1, 'boss', 2, 12203, 'E|2|secret-key|', '', 0, '')");
    }

private slots:
    void everybodyReadsWhatTheirRightsAndInstitutionAllow()
    {
        fillAudit();
        int number = 0;
        for (const Reader& reader : readers()) {
            const auto session =
                m_fixture->session("reader" + std::to_string(++number), reader.rights, reader.institution);
            nvservice::CQueryKey key;
            key.set(QueryCondition::Details, 1);
            const service::Reply reply = query(m_fixture->east(), session, DataType::Audit, key.text());
            if (!has(reader, UserRight::ReadAudit)) {
                COMPARE_CODE(reply, EErrorCode::PermissionDenied);
                continue;
            }
            COMPARE_CODE(reply, EErrorCode::Success);
            const auto entries = recordsAs<CAuditEntry>(reply.records);
            QVERIFY2(entries.size() == std::size_t(reader.institution == None ? 10 : 4), qPrintable(reader.name));
            for (const auto& entry : entries) {
                check(reader, *entry);
            }
            // The same without details, which has the texts of refusals, too.
            for (const auto& entry :
                 recordsAs<CAuditEntry>(query(m_fixture->east(), session, DataType::Audit).records)) {
                QVERIFY(!entry->before && !entry->after && entry->withheldReason.empty());
                checkTexts(reader, *entry);
            }
        }
    }

    void nobodyWithoutAnInstitutionOfTheirOwnReadsByConditions()
    {
        fillAudit();
        const auto bound = m_fixture->session("bound", everyRight(), First);
        const std::string other = std::to_string(m_groups[Second]);
        for (const std::string& conditions :
             {"group=" + other, "group=" + other + "&outcome=refused", "group=" + other + "&user=worker",
              std::string("data-type=0"), std::string("user=boss")}) {
            QVERIFY2(query(m_fixture->east(), bound, DataType::Audit, conditions).records.empty(), conditions.c_str());
        }
        QCOMPARE(query(m_fixture->east(), bound, DataType::Audit, "outcome=refused").records.size(), std::size_t(2));
        QCOMPARE(query(m_fixture->east(), bound, DataType::Audit, "outcome=12&user=worker").records.size(),
                 std::size_t(2));
    }

    void theNameOfAGroupThatHasMovedStaysWithItsNewInstitution()
    {
        fillAudit();
        const GroupPtr moved = m_fixture->current(m_groups[First]);
        moved->groupName = "geheim";
        moved->institutionId = Second;
        moved->accounts = {future("9001")};
        COMPARE_CODE(m_fixture->operate(EZvDataOperation::Modify, moved), EErrorCode::Success);
        const auto first = m_fixture->session("first", everyRight(), First);
        const auto second = m_fixture->session("second", everyRight(), Second);
        const auto ofFirst =
            recordsAs<CAuditEntry>(query(m_fixture->east(), first, DataType::Audit, "details=1").records);
        QCOMPARE(ofFirst.size(), std::size_t(4));
        for (const auto& entry : ofFirst) {
            QVERIFY2(!textOf(*entry).contains("geheim"), qPrintable(textOf(*entry)));
            QCOMPARE(entry->groupName, std::string("组-first"));
        }
        const auto ofSecond =
            recordsAs<CAuditEntry>(query(m_fixture->east(), second, DataType::Audit, "details=1").records);
        QCOMPARE(ofSecond.size(), std::size_t(5));
        QVERIFY(!ofSecond[0]->before); // with the accounts of the other institution
        QVERIFY(ofSecond[0]->after);
        QVERIFY(!ofSecond[0]->withheldReason.empty());
    }

    void aUserIsToldWhatTheOwnAttemptsWereTold()
    {
        fillAudit();
        const auto session = m_fixture->session("own", {UserRight::ReadAudit, UserRight::EditAccountGroup}, First);
        const auto reply = testservice::operate(m_fixture->east(), session, EZvDataOperation::Add,
                                                group("新", First, {account(EZVBrokerType::Stock, "stock-first")}));
        COMPARE_CODE(reply, EErrorCode::PermissionDenied);
        const auto unbound = m_fixture->session("own2", {UserRight::ReadAudit, UserRight::EditAccountGroup});
        const auto text = testservice::operate(m_fixture->east(), unbound, EZvDataOperation::Add,
                                               group("新", First, {account(EZVBrokerType::Stock, "stock-first")}))
                              .error.errorMsg();
        const auto entries =
            recordsAs<CAuditEntry>(query(m_fixture->east(), unbound, DataType::Audit, "user=own2").records);
        QCOMPARE(entries.at(0)->outcomeText, text);
    }

private:
    static void checkTexts(const Reader& reader, const CAuditEntry& entry)
    {
        const QString text = textOf(entry);
        const auto mustNot = [&](bool isHidden, const char* what) {
            QVERIFY2(!isHidden || !text.contains(what), qPrintable(reader.name + " reads " + what + " in " + text));
        };
        const bool isBound = reader.institution != None;
        mustNot(isBound && reader.institution != First, "-first");
        mustNot(isBound && reader.institution != Second, "-second");
        mustNot(isBound, "user|worker");
        mustNot(!has(reader, UserRight::FutureAccount), "future-");
        mustNot(!has(reader, UserRight::StockAccount), "stock-");
        mustNot(!has(reader, UserRight::StockAccount), "no-such-account");
        mustNot(isBound || !has(reader, UserRight::StockAccount), "secret-key");
        mustNot(!has(reader, UserRight::SetAccountGroupRisk), "secret-limit");
        mustNot(!has(reader, UserRight::SetAccountGroupRisk), "secret entry");
    }

    /// What is hidden, and that the rest is there.
    static void check(const Reader& reader, const CAuditEntry& entry)
    {
        checkTexts(reader, entry);
        const bool isRisk = entry.dataType == DataType::GroupRiskConfig;
        const bool isGroup = entry.dataType == DataType::AccountGroup;
        QVERIFY(entry.userId == "boss" || entry.userName == "姓名worker");
        QVERIFY2(!isRisk || (entry.after != nullptr) == has(reader, UserRight::SetAccountGroupRisk),
                 qPrintable(reader.name));
        QCOMPARE(entry.withheldReason.empty(), !isRisk || has(reader, UserRight::SetAccountGroupRisk));
        if (isGroup) {
            const auto after = boost::dynamic_pointer_cast<CAccountGroup>(entry.after);
            QVERIFY(after);
            QCOMPARE(after->accounts.size(), std::size_t(2));
            // A refused request does not tell whose account it names.
            const bool isSeen =
                has(reader, UserRight::FutureAccount) && (entry.outcome == 0 || reader.institution == None);
            QCOMPARE(textOf(entry).contains("future-"), isSeen);
        }
        const bool seesIt = isGroup ? has(reader, UserRight::FutureAccount) && has(reader, UserRight::StockAccount)
                                    : has(reader, UserRight::SetAccountGroupRisk);
        if (entry.outcome != 0 && seesIt && reader.institution == None) {
            QVERIFY2(entry.outcomeText != "值无效", qPrintable(reader.name));
        }
    }
};

TEST_WITHOUT_WIDGETS(AuditRightsTest)
#include "tst_audit_rights.moc"
