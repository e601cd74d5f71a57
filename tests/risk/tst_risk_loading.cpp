// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

#include <WQ/CCheckBox.h>

#include <boost/make_shared.hpp>

#include <thread>

using namespace risk_test;
using nvservice::DataType::Category;
using nvservice::DataType::GroupRiskConfig;

static void addBothOrders()
{
    const support::DataRows<bool> row("categoriesFirst");
    row("configuration first", false);
    row("categories first", true);
}

/// What the risk settings dialog loads.
class RiskLoadingTest : public RiskTest
{
    Q_OBJECT

private slots:
    void openingAGroupAsksItsOwnServerForConfigurationAndCategories()
    {
        m_client->open(makeGroup(-12, "一", ShenzhenTag));
        const auto config = m_client->shenzhen->takeQueryOf(GroupRiskConfig).request;
        QCOMPARE(config.dataType, 7131);
        QCOMPARE(config.queryKey, std::string("-12"));
        const auto categories = m_client->shenzhen->takeQueryOf(Category).request;
        QCOMPARE(categories.dataType, 614);
        QCOMPARE(categories.queryKey, std::string("-1_-1"));
        QCOMPARE(m_client->shenzhen->asked(), QStringList({"query 7131 -12", "query 614 -1_-1"}));
        QCOMPARE(m_client->shanghai->asked(), QStringList());
    }

    void theMaskStandsUntilBothRepliesAreIn_data() { addBothOrders(); }

    void theMaskStandsUntilBothRepliesAreIn()
    {
        QFETCH(bool, categoriesFirst);
        m_client->open(makeGroup(7, "一"));
        const auto waits = [&] {
            return m_client->mask().isVisible() && m_client->mask().text() == "正在加载风控数据" &&
                   m_client->mask().target() == m_client->dialog().innerWidget();
        };
        QVERIFY(waits());
        if (categoriesFirst) {
            m_client->answerCategories(someCategories());
        } else {
            m_client->answerConfig({makeConfig(7, "一")});
        }
        support::settleCallbacks();
        QVERIFY(waits());
        if (categoriesFirst) {
            m_client->answerConfig({makeConfig(7, "一")});
        } else {
            m_client->answerCategories(someCategories());
        }
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void theExemptPagesGetTheSettingsOnceAfterTheSecondReply_data() { addBothOrders(); }

    void theExemptPagesGetTheSettingsOnceAfterTheSecondReply()
    {
        QFETCH(bool, categoriesFirst);
        m_client->open(makeGroup(7, "一"));
        auto& reverseOrder = dynamic_cast<WQ::CCheckBox&>(m_client->button("账号组反向单交易检查"));
        if (categoriesFirst) {
            m_client->answerCategories(someCategories());
        } else {
            m_client->answerConfig({makeConfig(7, "一")});
        }
        support::settleCallbacks();
        QVERIFY(!reverseOrder.isChecked());
        QCOMPARE(m_client->exemptNames(0) + m_client->exemptNames(1), QStringList());

        if (categoriesFirst) {
            m_client->answerConfig({makeConfig(7, "一")});
        } else {
            m_client->answerCategories(someCategories());
        }
        QTRY_VERIFY(reverseOrder.isChecked());
        QCOMPARE(m_client->exemptNames(0), QStringList({"国债"}));
        QCOMPARE(m_client->exemptNames(1), QStringList({"期货", "国债"}));

        // What the user sets afterwards stays: nothing gives the settings again.
        reverseOrder.setChecked(false);
        support::settleCallbacks();
        QVERIFY(!reverseOrder.isChecked());
    }

    void everyTabShowsTheConfiguration()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QCOMPARE(m_client->assetRemarks(), QStringList({"一"}));
        const nvservice::CAccountGroupRCRule rule = m_client->tradeLimits();
        QCOMPARE(rule.lists.size(), std::size_t(8));
        for (const nvservice::CTradeLimitList& list : rule.lists) {
            QCOMPARE(list.entries.front().securityName, std::string("一"));
        }
        for (const QAV::CAccountStockTradeLimit* const table :
             m_client->dialog().findChildren<QAV::CAccountStockTradeLimit*>()) {
            QCOMPARE(table->accountGroupId(), 7);
        }
        QVERIFY(m_client->button("账号组反向单交易检查").isChecked());
        QVERIFY(m_client->button(" 不统计已撤 (无成交) 委托 ").isChecked());
        QVERIFY(!m_client->button(" 反向单交易只警告不禁止 ").isChecked());
        QVERIFY(m_client->button("账号组禁止对敲交易").isChecked());
    }

    void aReplyForAGroupThatIsNoLongerOpenIsDropped()
    {
        m_client->open(makeGroup(1, "A"));
        const auto replyOfA = m_client->shanghai->takeQueryOf(GroupRiskConfig);
        m_client->answerCategories(someCategories());
        m_client->open(makeGroup(2, "B"));
        const auto replyOfB = m_client->shanghai->takeQueryOf(GroupRiskConfig);

        replyOfA.handler(support::replyWith({makeConfig(1, "A")}));
        m_client->answerCategories(someCategories());
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
        QCOMPARE(m_client->assetRemarks(), QStringList());

        replyOfB.handler(support::replyWith({makeConfig(2, "B")}));
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"B"}));
        QCOMPARE(m_client->tradeLimits().lists.front().entries.front().securityName, std::string("B"));
    }

    void ofTwoConfigurationsOnlyTheFirstIsUsed()
    {
        m_client->open(makeGroup(7, "一"));
        m_client->answerCategories(someCategories());
        m_client->answerConfig({makeConfig(7, "一"), makeConfig(7, "二")});
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"一"}));
    }

    void aFirstRecordOfAnotherClassIsNoConfiguration()
    {
        m_client->open(makeGroup(7, "一"));
        m_client->answerCategories(someCategories());
        m_client->answerConfig({makeGroup(7, "一"), makeConfig(7, "一")});
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList());
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
    }

    void aGroupWithoutAConfigurationEndsTheLoadingWithoutAMessage()
    {
        m_client->open(makeGroup(7, "一"));
        m_client->answerConfig({});
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
        // The pages offer the categories all the same.
        m_client->tabs().setCurrentIndex(2);
        QCOMPARE(offeredInPicker(), QStringList({"国债", "股票", "期货", "期权"}));
    }

    void aFailedConfigurationQueryIsToldWithTheServicesText()
    {
        m_client->boxes->expectMessage(QMessageBox::Information, "错误", "数据库 %1 忙");
        m_client->open(makeGroup(7, "一"));
        m_client->answerCategories(someCategories());
        m_client->shanghai->takeQueryOf(GroupRiskConfig)
            .handler(support::replyWithError(utils::EErrorCode::StorageFailure, "数据库 %1 忙"));
        QTRY_VERIFY(m_client->mask().isHidden());
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
        // A load that succeeds later lets the user save.
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(2));
    }

    void recordsBesideAFailureAreUsedAllTheSame()
    {
        m_client->boxes->expectMessage(QMessageBox::Information, "错误", "不完整");
        m_client->open(makeGroup(7, "一"));
        m_client->answerCategories(someCategories());
        QAV::ITransport::Reply reply = support::replyWithError(utils::EErrorCode::Failed, "不完整");
        reply.records = {makeConfig(7, "一")};
        m_client->shanghai->takeQueryOf(GroupRiskConfig).handler(reply);
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"一"}));
    }

    void aFailedCategoryQueryIsNotTold()
    {
        m_client->open(makeGroup(7, "一"));
        m_client->answerConfig({makeConfig(7, "一")});
        m_client->shanghai->takeQueryOf(Category).handler(
            support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙"));
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->exemptNames(0), QStringList());
        QVERIFY(m_client->button("账号组反向单交易检查").isChecked());
    }

    void withoutAConfigurationTheTabsKeepWhatTheyShowedButTheAssets()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->open(makeGroup(8, "二"));
        QCOMPARE(m_client->assetRemarks(), QStringList());
        const std::string lists = nvservice::encodeRecord(m_client->tradeLimits()).toString();
        m_client->answerConfig({});
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->exemptNames(1), QStringList({"期货", "国债"}));
        QVERIFY(m_client->button("账号组禁止对敲交易").isChecked());
        QCOMPARE(m_client->assetRemarks(), QStringList());
        QCOMPARE(nvservice::encodeRecord(m_client->tradeLimits()).toString(), lists);
        QCOMPARE(m_client->tradeLimits().lists.front().entries.front().securityName, std::string("一"));
    }

    void internalCategoriesAndForbiddenSystemTypesAreNeverOffered()
    {
        m_client->open(makeGroup(7, "一"));
        m_client->answerConfig({makeConfig(7, "一")});
        m_client->answerCategories({makeCategory(10, "国债"), makeCategory(11, "内部", AllowedSysType, 2),
                                    makeCategory(12, "无权", ForbiddenSysType), makeGroup(1, "不是分类"),
                                    makeCategory(13, "期权", OtherAllowedSysType, 1),
                                    makeCategory(14, "内部无权", ForbiddenSysType, 2)});
        QTRY_VERIFY(m_client->mask().isHidden());
        m_client->tabs().setCurrentIndex(2);
        QCOMPARE(offeredInPicker(), QStringList({"期权"}));
        QCOMPARE(m_client->exemptNames(0), QStringList({"国债"}));
        QCOMPARE(m_client->exemptNames(1), QStringList({"国债"}));
    }

    void anUnknownServerEndsTheLoadingWithItsText()
    {
        const auto group = makeGroup(7, "一", "nowhere");
        QString text;
        support::centre().getClientBySystemTag("nowhere")->queryData_async(
            boost::make_shared<nvservice::CKolmQueryDataReq>(),
            [&](const utils::NVError& error, const std::vector<nvservice::IDataPtr>&, int, bson::BSONObj) {
                text = QString::fromStdString(error.errorMsg());
            },
            0);
        support::settleCallbacks();
        QVERIFY(!text.isEmpty());
        m_client->boxes->expectMessage(QMessageBox::Information, "错误", text);
        m_client->open(group);
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void openingTheSameGroupAgainLoadsItAgain()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "旧"));
        m_client->load(makeGroup(7, "一"), makeConfig(7, "新"));
        QCOMPARE(m_client->assetRemarks(), QStringList({"新"}));
    }

    void repliesAfterTheDialogHasGoneFindNobody()
    {
        m_client->open(makeGroup(7, "一"));
        m_client->destroyDialog();
        m_client->answerConfig({makeConfig(7, "一")});
        m_client->answerCategories(someCategories());
        support::settleCallbacks();
    }

    void repliesFromManyThreadsWhileGroupsChange()
    {
        for (int round = 0; round < 30; ++round) {
            std::vector<std::thread> servers;
            int last = 0;
            for (int group = 1; group <= 4; ++group) {
                last = round * 4 + group;
                m_client->open(makeGroup(last, std::to_string(last)));
                const auto config = m_client->shanghai->takeQueryOf(GroupRiskConfig);
                const auto categories = m_client->shanghai->takeQueryOf(Category);
                servers.emplace_back(
                    [config, last] { config.handler(support::replyWith({makeConfig(last, std::to_string(last))})); });
                servers.emplace_back([categories] { categories.handler(support::replyWith(someCategories())); });
                QCoreApplication::processEvents();
            }
            for (std::thread& server : servers) {
                server.join();
            }
            support::settleCallbacks();
            QVERIFY(m_client->mask().isHidden());
            QCOMPARE(m_client->assetRemarks(), QStringList({QString::number(last)}));
        }
    }

private:
    QStringList offeredInPicker()
    {
        QStringList offered;
        m_client->boxes->expectDialog([&](WQ::CBaseDialog& picker) {
            offered = shownIn(picker, 0);
            picker.done(0);
        });
        QTest::mouseClick(&m_client->button("设置豁免分类"), Qt::LeftButton);
        return offered;
    }
};

TEST_WITH_WIDGETS(RiskLoadingTest)
#include "tst_risk_loading.moc"
