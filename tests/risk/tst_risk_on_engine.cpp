// SPDX-License-Identifier: Apache-2.0
#include "EngineFixture.h"
#include "support/TestProgram.h"

#include <WQ/CLineEdit.h>

#include <QAbstractItemView>

#include <algorithm>

using namespace risk_test;
using nvservice::CAccountGroupRCConfig;
using nvservice::EZvDataOperation;
using nvservice::EZvTraderType;

namespace
{

constexpr std::size_t FirstDesk = 0;
constexpr std::size_t SecondDesk = 1;
constexpr int ReverseOrderPage = 2;
constexpr int WashTradePage = 3;
const QString Administrator = QStringLiteral("系统管理员（admin）");

/// From here on, the ids of the sample data's exempt categories belong to no category.
constexpr std::int32_t FirstUnknownCategory = 990000;

bool isUnknown(std::int32_t categoryId)
{
    return categoryId >= FirstUnknownCategory;
}

/// The document of a configuration after a save that changes nothing, by a user who may use every category.
std::string expectedAfterSave(const CAccountGroupRCConfig& before, std::int64_t revision)
{
    const auto expected = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(before.copy());
    expected->setRevision(revision);
    expected->emailRCs.clear();
    nvservice::CRatProofSetting& setting = expected->ratProofSetting;
    for (auto* const ids : {&setting.reverseOrderExemptCategoryIds, &setting.washTradeExemptCategoryIds}) {
        ids->erase(std::remove_if(ids->begin(), ids->end(), isUnknown), ids->end());
    }
    return nvservice::encodeRecord(*expected).toString();
}

} // namespace

/// The risk settings dialog, the client centre, the transport, the data engine and the database together.
class RiskOnEngineTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_client = std::make_unique<EngineFixture>(); }

    void init()
    {
        m_client->logIn(FirstDesk, "admin");
        m_user = std::make_unique<RiskDialogUser>();
        m_user->createDialog();
    }

    void cleanup()
    {
        m_user.reset();
        m_client->boxes.verify();
    }

    void cleanupTestCase() { m_client.reset(); }

    void whatIsSetInEveryTabIsFoundAgainAfterTheDatabaseIsReopened()
    {
        const GroupPtr group = m_client->takeGroup();
        m_client->load(*m_user, group);
        addSecurity(*m_user, 0, "zz9999");
        addSecurity(*m_user, 7, "019999");
        addLimit(*m_user, "12.25", "reopened");
        chooseExempt(*m_client, *m_user, ReverseOrderPage, [](int row) { return row == 2 || row == 5; });
        m_user->button("账号组反向单交易检查").setChecked(true);
        m_user->button(" 反向单交易只警告不禁止 ").setChecked(true);
        m_user->button(" 不统计已撤 (无成交) 委托 ").setChecked(false);
        m_user->button("账号组禁止对敲交易").setChecked(true);
        const QStringList exempt = m_user->exemptNames(0);
        QVERIFY(exempt.size() >= 2);
        m_client->expectSaved();
        m_client->save(*m_user);

        m_user.reset();
        m_client->reopen();
        init();
        m_client->load(*m_user, group);
        const nvservice::CAccountGroupRCRule lists = m_user->tradeLimits();
        QCOMPARE(lists.findList(EZvTraderType::Future)->entries.back().securityCode, std::string("zz9999"));
        QCOMPARE(lists.findList(EZvTraderType::Interbank)->entries.back().securityCode, std::string("019999"));
        std::vector<nvservice::CAssetsRC> limits;
        m_user->assets().getAssetsRCs(limits);
        QCOMPARE(limits.back().remark, std::string("reopened"));
        QCOMPARE(limits.back().threshold, 12.25);
        QVERIFY(limits.back().ruleId > 0);
        QVERIFY(m_user->button("账号组反向单交易检查").isChecked());
        QVERIFY(m_user->button(" 反向单交易只警告不禁止 ").isChecked());
        QVERIFY(!m_user->button(" 不统计已撤 (无成交) 委托 ").isChecked());
        QVERIFY(m_user->button("账号组禁止对敲交易").isChecked());
        QCOMPARE(m_user->exemptNames(0), exempt);
    }

    void everyStoredConfigurationSurvivesASaveThatChangesNothing()
    {
        std::ptrdiff_t unknown = 0;
        int withLists = 0;
        for (const GroupPtr& group : m_client->groups()) {
            const ConfigPtr before = m_client->stored(group->groupId);
            const auto& ids = before->ratProofSetting.reverseOrderExemptCategoryIds;
            unknown += std::count_if(ids.begin(), ids.end(), isUnknown);
            withLists += before->rcRule.lists.empty() ? 0 : 1;
            m_client->load(*m_user, group);
            m_client->expectSaved();
            m_client->save(*m_user);
            // The next load comes after both operations of the save.
            m_client->load(*m_user, group);
            const ConfigPtr after = m_client->stored(group->groupId);
            QVERIFY(after->revision() > before->revision());
            QCOMPARE(nvservice::encodeRecord(*after).toString(), expectedAfterSave(*before, after->revision()));
        }
        // The sample data have what the test is about.
        QVERIFY(unknown > 0);
        QVERIFY(withLists > 3);
    }

    void categoriesThatAUserMayNotUseAreLostAndTheOthersKeepTheirOrder()
    {
        const GroupPtr group = m_client->takeGroup();
        m_client->load(*m_user, group);
        chooseExempt(*m_client, *m_user, WashTradePage, [](int) { return true; });
        m_client->expectSaved();
        m_client->save(*m_user);
        const auto all = m_client->stored(group->groupId)->ratProofSetting.washTradeExemptCategoryIds;
        QVERIFY(all.size() > 100);

        m_client->logIn(SecondDesk, "risk");
        m_client->load(*m_user, group);
        const auto offered = std::size_t(m_user->exemptNames(1).size());
        QVERIFY(offered > 0 && offered < all.size());
        m_client->expectSaved();
        m_client->save(*m_user);
        const auto left = m_client->stored(group->groupId)->ratProofSetting.washTradeExemptCategoryIds;
        QCOMPARE(left.size(), offered);
        std::size_t found = 0;
        for (const std::int32_t id : all) {
            found += found < left.size() && left[found] == id ? 1 : 0;
        }
        QCOMPARE(found, left.size());
    }

    void theSecondOfTwoUsersIsToldWhoChangedItAndNothingOfTheFirstIsLost()
    {
        const GroupPtr group = m_client->takeGroup();
        RiskDialogUser& first = *m_user;
        m_client->load(first, group);
        m_client->logIn(SecondDesk, "risk");
        RiskDialogUser second;
        second.createDialog();
        m_client->load(second, group);

        m_client->sitAt(FirstDesk);
        addSecurity(first, 0, "first1");
        addLimit(first, "11", "first");
        m_client->expectSaved();
        m_client->save(first);

        m_client->sitAt(SecondDesk);
        addSecurity(second, 0, "second1");
        addLimit(second, "22", "second");
        m_client->expectRefusal(m_client->outdatedText(*group, Administrator));
        m_client->save(second);
        // What the second user has entered is still there, and none of it is stored.
        QCOMPARE(second.assetRemarks().last(), QString("second"));
        ConfigPtr stored = m_client->stored(group->groupId);
        QVERIFY(hasSecurity(stored, EZvTraderType::Future, "first1") && hasLimit(stored, "first"));
        QVERIFY(!hasSecurity(stored, EZvTraderType::Future, "second1") && !hasLimit(stored, "second"));

        // Once more without reading, the same again. Opened anew, the work of both is kept.
        m_client->expectRefusal(m_client->outdatedText(*group, Administrator));
        m_client->save(second);
        m_client->load(second, group);
        QCOMPARE(second.assetRemarks().last(), QString("first"));
        addSecurity(second, 0, "second1");
        addLimit(second, "22", "second");
        m_client->expectSaved();
        m_client->save(second);
        stored = m_client->stored(group->groupId);
        QVERIFY(hasSecurity(stored, EZvTraderType::Future, "first1") && hasLimit(stored, "first"));
        QVERIFY(hasSecurity(stored, EZvTraderType::Future, "second1") && hasLimit(stored, "second"));
    }

    void aRefusedSaveLeavesTheEmailRules()
    {
        const GroupPtr group = m_client->takeGroup();
        m_client->logIn(SecondDesk, "risk");
        m_client->load(*m_user, group);
        m_client->writeEmailRule(group->groupId);
        m_client->expectRefusal(m_client->outdatedText(*group, Administrator));
        m_client->save(*m_user);
        // The next load comes after both operations of the save.
        m_client->load(*m_user, group);
        QCOMPARE(m_client->stored(group->groupId)->emailRCs.size(), std::size_t(1));
    }

    void theSameUserSavesTwiceAndLosesNothing()
    {
        const GroupPtr group = m_client->takeGroup();
        m_client->writeEmailRule(group->groupId);
        m_client->load(*m_user, group);
        for (const char* const code : {"code1", "code2"}) {
            addSecurity(*m_user, 0, code);
            m_client->expectSaved();
            m_client->save(*m_user);
        }
        const ConfigPtr stored = m_client->stored(group->groupId);
        QVERIFY(hasSecurity(stored, EZvTraderType::Future, "code1") &&
                hasSecurity(stored, EZvTraderType::Future, "code2"));
    }

    void aSaveDeletesTheGroupsEmailRules()
    {
        const GroupPtr group = m_client->takeGroup();
        m_client->writeEmailRule(group->groupId);
        m_client->load(*m_user, group);
        m_client->expectSaved();
        m_client->save(*m_user);
        m_client->load(*m_user, group);
        QVERIFY(m_client->stored(group->groupId)->emailRCs.empty());
    }

    void aUserWithoutTheRightIsToldSo()
    {
        const GroupPtr group = m_client->takeGroup();
        m_client->logIn(FirstDesk, "viewer");
        m_client->boxes.expectMessage(QMessageBox::Information, "错误", "您没有设置账号组风控的权限");
        m_client->load(*m_user, group);
        QCOMPARE(m_user->assetRemarks(), QStringList());
    }

    void aGroupOfAnotherInstitutionIsNotOpened()
    {
        const auto groups = m_client->groups();
        const auto foreign =
            std::find_if(groups.begin(), groups.end(), [](const GroupPtr& group) { return group->institutionId != 1; });
        QVERIFY(foreign != groups.end());
        m_client->logIn(FirstDesk, "bound");
        m_client->boxes.expectMessage(QMessageBox::Information, "错误", "您只能操作本机构的账号组");
        m_client->load(*m_user, *foreign);
        QCOMPARE(m_user->assetRemarks(), QStringList());
    }

    void aGroupThatWasDeletedMeanwhileCannotBeSaved()
    {
        const GroupPtr group = m_client->takeGroup();
        m_client->logIn(SecondDesk, "risk");
        m_client->load(*m_user, group);
        m_client->write(nvservice::DataType::AccountGroup, EZvDataOperation::Delete, group);
        m_client->expectRefusal(m_client->deletedText(*group, Administrator));
        m_client->save(*m_user);
        // Nor opened again.
        m_client->boxes.expectMessage(QMessageBox::Information, "错误", m_client->deletedText(*group, Administrator));
        m_client->load(*m_user, group);
    }

    void securitiesAreLookedUpOnTheServerOfTheGroup()
    {
        m_client->load(*m_user, m_client->takeGroup());
        const QString stock = m_client->someSecurity(EZvTraderType::Stock);
        auto* const tabs = m_user->tabs().tabWidget(0)->findChild<WQ::CStandardTabControl*>();
        tabs->setCurrentIndex(1);
        auto* const security = tabs->tabWidget(1)->findChild<WQ::CLineEdit*>("security");
        QApplication::setActiveWindow(&m_user->dialog());
        security->setFocus();
        QTest::keyClicks(security, stock.section(' ', 0, 0));
        const auto offers = [] { return qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget()); };
        QTRY_VERIFY(offers());
        QCOMPARE(offers()->model()->index(0, 0).data().toString(), stock);
        offers()->hide();
    }

private:
    std::unique_ptr<EngineFixture> m_client;
    std::unique_ptr<RiskDialogUser> m_user;
};

TEST_WITH_WIDGETS(RiskOnEngineTest)
#include "tst_risk_on_engine.moc"
