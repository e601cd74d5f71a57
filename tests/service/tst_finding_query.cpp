// SPDX-License-Identifier: Apache-2.0
#include "service/PagedQuery.h"
#include "service/RiskSamples.h"
#include "support/TestProgram.h"
#include "support/records/Requests.h"

#include "service/engine/ConsistencyCheck.h"
#include "service/engine/Texts.h"
#include "service/engine/UserRights.h"

#include <nvservice/CFinding.h>
#include <utils/Translation.h>

#include <thread>

using namespace testservice;
using nvservice::CFinding;
using nvservice::EZVRCListKind;
using nvservice::EZvTraderType;
namespace DataType = nvservice::DataType;
namespace UserRight = nvservice::UserRight;

/// What the consistency check finds, for those who may read it.
class FindingQueryTest : public ServiceTest
{
    Q_OBJECT

    std::map<int, int> m_groups; ///< by institution

    /// A group of each institution and one of none, with a closed account, and with settings that contradict each
    /// other.
    void addFindings()
    {
        for (const int institution : {First, Second, None}) {
            const int id = m_fixture->storedGroup("组" + std::to_string(institution), institution)->groupId;
            m_groups[institution] = id;
            const RiskConfigPtr config = m_fixture->loaded(id);
            config->rcRule.list(EZvTraderType::Stock).entries = {
                entry("600000", institution == None ? EZVRCListKind::White : EZVRCListKind::Black)};
            config->ratProofSetting.reverseOrderExemptCategoryIds = {StocksCategory};
            COMPARE_CODE(m_fixture->save(config), EErrorCode::Success);
        }
        m_fixture->exec("UPDATE account SET state_code = 5 WHERE account_id IN ('8001', '9001')");
        m_fixture->exec(QString("INSERT INTO account_group_member (server_id, group_id, account_id, position)"
                                " SELECT 1, %1, id, 5 FROM account WHERE server_id = 1 AND account_id = '8001'")
                            .arg(m_groups[None]));
        m_fixture->exec("DELETE FROM category");
    }

    QStringList found(const std::set<int>& rights, int institution)
    {
        static int users = 0;
        const auto session = m_fixture->session("reader" + std::to_string(++users), rights, institution);
        QStringList texts;
        for (const auto& finding : recordsAs<CFinding>(query(m_fixture->east(), session, DataType::Finding).records)) {
            texts << QString("%1 %2 %3").arg(finding->groupId).arg(finding->kind.c_str(), finding->text.c_str());
        }
        return texts;
    }

private slots:
    void initTestCase()
    {
        service::registerTexts();
        utils::setLanguage(utils::ELanguage::Chinese);
    }

    void findingsAreThoseOfTheCheck()
    {
        addFindings();
        const service::ServerData data{m_fixture->store().connection(), m_fixture->server(0)};
        const auto all = service::checkConsistency(data, {service::userWithEveryRight("all")});
        QStringList expected;
        for (const service::Finding& finding : all) {
            expected
                << QString("%1 %2 %3").arg(finding.groupId).arg(service::keyOf(finding.kind), finding.text.c_str());
        }
        QVERIFY(expected.join('\n').contains("contradicting-groups"));
        QVERIFY(expected.join('\n').contains("closed-account"));
        QVERIFY(expected.join('\n').contains("missing-category"));
        QVERIFY(expected.join('\n').contains("history-mismatch"));
        QCOMPARE(found(everyRight(), None), expected);
    }

    void nobodyReadsFindingsThatTheirRightsAndInstitutionHide()
    {
        addFindings();
        const auto denied = m_fixture->session("denied", {UserRight::SetAccountGroupRisk, UserRight::FutureAccount});
        COMPARE_CODE(query(m_fixture->east(), denied, DataType::Finding), EErrorCode::PermissionDenied);
        for (const bool maySeeRisk : {false, true}) {
            for (const bool mayReadFutures : {false, true}) {
                for (const int institution : {First, Second, None}) {
                    std::set<int> rights = {UserRight::ReadAudit};
                    if (maySeeRisk) {
                        rights.insert(UserRight::SetAccountGroupRisk);
                    }
                    if (mayReadFutures) {
                        rights.insert(UserRight::FutureAccount);
                    }
                    const QString text = found(rights, institution).join('\n');
                    for (const auto& [owner, id] : m_groups) {
                        const bool isOwn = institution == None || institution == owner;
                        QCOMPARE(text.contains(QRegularExpression(QString("(^|\\n)%1 ").arg(id))), isOwn);
                    }
                    QCOMPARE(text.contains("missing-category"), maySeeRisk);
                    // The other group belongs to no institution.
                    QCOMPARE(text.contains("contradicting-groups"), maySeeRisk && institution == None);
                    QCOMPARE(text.contains("8001"), mayReadFutures && institution != Second);
                    QCOMPARE(text.contains("9001"), mayReadFutures && institution != First);
                    QVERIFY(text.contains("closed-account"));
                }
            }
        }
    }

    void everyKindHasANameAndAdviceInBothLanguages()
    {
        for (int i = 0; i <= static_cast<int>(service::EFinding::ContradictingGroups); ++i) {
            const service::FindingKind& kind = service::kindOf(static_cast<service::EFinding>(i));
            for (const char* const text : {kind.name, kind.advice}) {
                QVERIFY(*text != '\0');
                const utils::CLanguageScope english(utils::ELanguage::English);
                QVERIFY2(utils::text("service", text) != text, text);
            }
        }
        addFindings();
        const service::Reply reply = m_fixture->query(DataType::Finding);
        const auto finding = recordsAs<CFinding>(reply.records).at(0);
        QVERIFY(!finding->kindName.empty() && !finding->advice.empty() && !finding->groupName.empty());
    }

    void aCheckEndsWhenItIsTold()
    {
        addFindings();
        const service::ServerData data{m_fixture->store().connection(), m_fixture->server(0)};
        int pulses = 0;
        service::CheckOptions options{service::userWithEveryRight("all")};
        options.pulse = [&pulses] { ++pulses; };
        service::checkConsistency(data, options);
        QVERIFY(pulses > 6); // groups, pairs, rows of histories
        for (int last = 1; last <= pulses; ++last) {
            int left = last;
            options.pulse = [&left] {
                if (--left == 0) {
                    throw std::runtime_error("enough");
                }
            };
            QVERIFY_EXCEPTION_THROWN(service::checkConsistency(data, options), std::runtime_error);
        }
    }

    void aCheckThatNobodyWaitsForEnds()
    {
        addFindings();
        const auto request = support::queryOf(DataType::Finding);
        int asked = 0;
        COMPARE_CODE(m_fixture->east().query(m_fixture->admin(), request, [&asked] { return ++asked > 2; }),
                     EErrorCode::Cancelled);
        QCOMPARE(asked, 3);
        COMPARE_CODE(m_fixture->east().query(m_fixture->admin(), request, [] { return false; }), EErrorCode::Success);
    }

    /// Writers go on while a check reads.
    void aCheckKeepsNobodyFromWriting()
    {
        addFindings();
        m_fixture->admin();
        bool isWritten = false;
        service::CheckOptions options{service::userWithEveryRight("all")};
        options.pulse = [&] {
            if (!isWritten) {
                std::thread([&] {
                    isWritten = m_fixture->operate(EZvDataOperation::Add, group("新", First, {future("8002")}))
                                    .error.isSuccess();
                }).join();
            }
        };
        m_fixture->store().read([&](service::Connection& connection) {
            const auto findings = service::checkConsistency({connection, m_fixture->server(0)}, options);
            QVERIFY(std::none_of(findings.begin(), findings.end(),
                                 [](const service::Finding& finding) { return finding.groupName == "新"; }));
        });
        QVERIFY(isWritten);
    }
};

TEST_WITHOUT_WIDGETS(FindingQueryTest)
#include "tst_finding_query.moc"
