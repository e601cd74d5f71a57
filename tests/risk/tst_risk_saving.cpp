// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

#include <WQ/EventType.h>
#include <nvservice/CustomEmailRC.h>
#include <nvservice/NoInstitutionId.h>
#include <nvservice/SystemTag.h>

#include <boost/make_shared.hpp>

#include <future>

using namespace risk_test;
using nvservice::CAccountGroupRCConfig;
using nvservice::CustomEmailRC;
using nvservice::EZvDataOperation;
using nvservice::DataType::EmailRule;
using nvservice::DataType::GroupRiskConfig;

/// What a save of the risk settings sends and what the user is told.
class RiskSavingTest : public RiskTest
{
    Q_OBJECT

private slots:
    void withoutAConfigurationNothingHappens()
    {
        m_client->clickSave();
        m_client->load(makeGroup(7, "一"), {});
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
        QVERIFY(m_client->mask().isHidden());
    }

    void beforeTheConfigurationIsThereNothingHappens()
    {
        m_client->open(makeGroup(7, "一"));
        m_client->dialog().handleEvent(WQ::ButtonClicked, 0, 0, QString(), nullptr);
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
        QCOMPARE(m_client->mask().text(), QString("正在加载风控数据"));
    }

    void invalidAssetLimitsAreNotSentAndNotCovered()
    {
        const auto config = makeConfig(7, "一");
        config->assetsRCs.front().assetClass = nvservice::EZVRCAssetClass::ByCategory;
        config->assetsRCs.front().categoryId = -1;
        m_client->load(makeGroup(7, "一"), config);
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
        QVERIFY(m_client->mask().isHidden());
    }

    void aSaveModifiesTheConfigurationAndDeletesTheGroupsEmailRules()
    {
        const auto config = makeConfig(7, "一");
        const auto expected = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(config->copy());
        nvservice::setSystemTagOfAll(*expected, ShanghaiTag);
        expected->emailRCs.clear();
        m_client->load(makeGroup(7, "一"), config);
        expectSuccess();
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(2));

        const auto modify = m_client->shanghai->takeOperationOf(GroupRiskConfig);
        QCOMPARE(modify.request.operation, EZvDataOperation::Modify);
        const auto sent = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(modify.request.data);
        QVERIFY(sent);
        QCOMPARE(sent->revision(), std::int64_t(3));
        QCOMPARE(nvservice::encodeRecord(*sent).toString(), nvservice::encodeRecord(*expected).toString());

        const auto remove = m_client->shanghai->takeOperationOf(EmailRule);
        QCOMPARE(remove.request.operation, EZvDataOperation::Delete);
        const auto rules = boost::dynamic_pointer_cast<CustomEmailRC>(remove.request.data);
        QVERIFY(rules);
        QCOMPARE(rules->emailRCs.size(), std::size_t(1));
        QCOMPARE(rules->emailRCs.front().ruleKind, std::string("2"));
        QCOMPARE(rules->emailRCs.front().accountKey, std::string("7"));
        QCOMPARE(rules->emailRCs.front().ruleKey, std::string());
        modify.handler(support::replyWith({}));
        support::settleCallbacks();
    }

    void bothOperationsGoToTheServerOfTheGroup()
    {
        m_client->dialog().setAccountGroup(makeGroup(7, "一", ShenzhenTag));
        m_client->shenzhen->takeQueryOf(GroupRiskConfig).handler(support::replyWith({makeConfig(7, "一")}));
        m_client->shenzhen->takeQueryOf(nvservice::DataType::Category).handler(support::replyWith(someCategories()));
        QTRY_VERIFY(m_client->mask().isHidden());
        m_client->clickSave();
        QCOMPARE(m_client->shenzhen->operations(), std::size_t(2));
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
    }

    void theConfigurationIsSavedBeforeTheEmailRulesAreDeleted()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        const int before = m_client->shanghai->asked().size();
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->asked().mid(before), QStringList({"operate 7131 0", "operate 23460 3"}));
    }

    void whatTheUserChangedIsSent()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->assets().clearAssetsRCs();
        m_client->tabs().setCurrentIndex(2);
        QTest::mouseClick(&m_client->button(" 反向单交易只警告不禁止 "), Qt::LeftButton);
        m_client->tabs().setCurrentIndex(3);
        QTest::mouseClick(&m_client->button("账号组禁止对敲交易"), Qt::LeftButton);
        const auto sent = saved();
        QVERIFY(sent->assetsRCs.empty());
        QVERIFY(sent->ratProofSetting.reverseOrderCheck && sent->ratProofSetting.reverseOrderWarnOnly);
        QVERIFY(!sent->ratProofSetting.washTradeForbidden);
        // The held record has taken the changes over: a second save starts from them.
        QVERIFY(saved()->ratProofSetting.reverseOrderWarnOnly);
    }

    void aTradeTypeWithoutATabComesBackAsItWas()
    {
        m_client.reset();
        m_client = std::make_unique<RiskFixture>(QStringList{"mdl_tradetype_stock"});
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        const auto sent = saved();
        QCOMPARE(sent->rcRule.lists.size(), std::size_t(8));
        for (const nvservice::CTradeLimitList& list : sent->rcRule.lists) {
            QCOMPARE(list.entries.size(), std::size_t(1));
        }
    }

    void exemptCategoriesThatAreNotOfferedAreLost()
    {
        const auto config = makeConfig(7, "一");
        config->ratProofSetting.washTradeExemptCategoryIds = {99, 12, -3, 10, 98};
        m_client->load(makeGroup(7, "一"), config);
        QCOMPARE(saved()->ratProofSetting.washTradeExemptCategoryIds, std::vector<std::int32_t>({12, 10}));
    }

    void theMaskCoversTheDialogUntilTheReply()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        QVERIFY(m_client->mask().isVisible());
        QCOMPARE(m_client->mask().text(), QString("正在保存"));
        QCOMPARE(m_client->mask().target(), static_cast<QWidget*>(&m_client->dialog()));
        expectSuccess();
        m_client->answerSave(support::replyWith({}));
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void aSuccessIsToldAndTheDialogStaysOpen()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QVERIFY(saved());
        QVERIFY(m_client->dialog().isVisible());
    }

    void aFailureIsToldWithTheServicesTextAndTheUserMaySaveAgain()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->tabs().setCurrentIndex(3);
        QTest::mouseClick(&m_client->button("账号组禁止对敲交易"), Qt::LeftButton);
        m_client->boxes->expectMessage(QMessageBox::Critical, "提示", "已被 王五 修改");
        m_client->clickSave();
        m_client->answerSave(support::replyWithError(utils::EErrorCode::Conflict, "已被 王五 修改"));
        QTRY_VERIFY(m_client->mask().isHidden());
        QVERIFY(m_client->dialog().isVisible());
        QVERIFY(!saved()->ratProofSetting.washTradeForbidden);
    }

    void theResultDocumentIsNotLookedAt()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        expectSuccess();
        m_client->clickSave();
        QAV::ITransport::Reply reply;
        reply.document = BSON("reason" << "locked");
        m_client->answerSave(reply);
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void theReplyAboutTheEmailRulesIsIgnored()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        m_client->shanghai->takeOperationOf(EmailRule).handler(
            support::replyWithError(utils::EErrorCode::StorageFailure, "邮件规则删除失败"));
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
        expectSuccess();
        m_client->shanghai->takeOperationOf(GroupRiskConfig).handler(support::replyWith({}));
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void aSaveReplyForAGroupThatIsNoLongerOpenIsDropped()
    {
        m_client->load(makeGroup(1, "A"), makeConfig(1, "A"));
        m_client->clickSave();
        m_client->open(makeGroup(2, "B"));
        m_client->answerSave(support::replyWithError(utils::EErrorCode::Conflict, "已被修改"));
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
        m_client->answerConfig({makeConfig(2, "B")});
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"B"}));
    }

    void aSaveReplyThatComesAfterTheGroupWasOpenedAgainIsToldAllTheSame()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        m_client->open(makeGroup(7, "一"));
        m_client->boxes->expectMessage(QMessageBox::Critical, "提示", "数据库忙");
        m_client->answerSave(support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙"));
        support::settleCallbacks();
        QVERIFY(m_client->boxes->verify());
        m_client->answerConfig({makeConfig(7, "新")});
        m_client->answerCategories(someCategories());
        support::settleCallbacks();
        QCOMPARE(m_client->assetRemarks(), QStringList({"新"}));
    }

    void aSaveReplyThatNeverComesEndsWithTheDeadline()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        support::centre().setDeadline(std::chrono::milliseconds(1));
        // The text of a deadline is the client centre's; a modify that nobody answers shows it beforehand.
        std::promise<std::string> promise;
        const auto request = boost::make_shared<nvservice::COperateDataReq>();
        request->data = makeConfig(7, "一");
        support::centre().getClientByName(Shanghai)->operateData_async(
            request, [&](const utils::NVError& error, bson::BSONObj) { promise.set_value(error.errorMsg()); }, 0);
        const QString text = QString::fromStdString(promise.get_future().get());
        m_client->boxes->expectMessage(QMessageBox::Critical, "提示", text);
        m_client->clickSave();
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void aSaveReplyAfterTheDialogHasGoneFindsNobody()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        m_client->destroyDialog();
        m_client->answerSave(support::replyWith({}));
        support::settleCallbacks();
    }

    void eventsWithTheIdOneEndInTheDialog()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QVERIFY(m_client->dialog().handleEvent(WQ::ButtonClicked, 1, 0, QString(), nullptr));
        QVERIFY(m_client->dialog().handleEvent(WQ::LineEditTextChanged, 1, 0, "text", nullptr));
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
        QVERIFY(m_client->mask().isHidden());
    }

    void otherEventsGoOnToTheBase()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QVERIFY(!m_client->dialog().handleEvent(WQ::ButtonClicked, 2, 0, QString(), nullptr));
        QVERIFY(!m_client->dialog().handleEvent(WQ::ButtonOrEnter, 0, 0, QString(), nullptr));
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
    }

    void theDialogIsSavedByKeyboardAlone()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QApplication::setActiveWindow(&m_client->dialog());
        m_client->tabs().setFocus();
        const auto press = [](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
            QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        };
        press(Qt::Key_Tab, Qt::ControlModifier);
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(m_client->tabs().currentIndex(), 2);
        const auto pressUntil = [&](const QAbstractButton& wanted) {
            for (int i = 0; i < 100 && QApplication::focusWidget() != &wanted; ++i) {
                press(Qt::Key_Tab);
            }
            QCOMPARE(QApplication::focusWidget(), static_cast<const QWidget*>(&wanted));
        };
        pressUntil(m_client->button(" 反向单交易只警告不禁止 "));
        press(Qt::Key_Space);
        pressUntil(m_client->button("保存设置"));
        press(Qt::Key_Space);
        const auto operation = m_client->shanghai->takeOperationOf(GroupRiskConfig);
        const auto sent = boost::dynamic_pointer_cast<CAccountGroupRCConfig>(operation.request.data);
        QVERIFY(sent->ratProofSetting.reverseOrderWarnOnly);
    }

    void closingTheDialogSavesNothing()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QTest::keyClick(&m_client->dialog(), Qt::Key_Escape);
        QVERIFY(!m_client->dialog().isVisible());
        QCOMPARE(m_client->dialog().result(), 0);
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
    }

    void escWithUnsavedEditsClosesAtTheSecondTime()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QVERIFY(!m_client->dialog().hasUnsavedEdits());
        m_client->button(" 反向单交易只警告不禁止 ").click();
        QVERIFY(m_client->dialog().hasUnsavedEdits());
        QTest::keyClick(&m_client->dialog(), Qt::Key_Escape);
        QVERIFY(m_client->dialog().isVisible());
        QTest::keyClick(&m_client->dialog(), Qt::Key_Escape);
        QVERIFY(!m_client->dialog().isVisible());
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
    }

    void editsAreUnsavedUntilTheServiceHasThem()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->button(" 反向单交易只警告不禁止 ").click();
        m_client->boxes->expectMessage(QMessageBox::Critical, "提示", "不行");
        m_client->clickSave();
        m_client->answerSave(support::replyWithError(utils::EErrorCode::Conflict, "不行"));
        QTRY_VERIFY(m_client->mask().isHidden());
        QVERIFY(m_client->dialog().hasUnsavedEdits());
        expectSuccess();
        m_client->clickSave();
        m_client->answerSave(support::replyWith({}));
        QTRY_VERIFY(!m_client->dialog().hasUnsavedEdits());
        m_client->open(makeGroup(8, "二"));
        QVERIFY(!m_client->dialog().hasUnsavedEdits());
    }

    void theInputOfARefusedSaveCanBeRecalledWhenItsGroupIsOpenedAgain()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QVERIFY(!recall().isVisible());
        m_client->button(" 反向单交易只警告不禁止 ").click();
        m_client->button("账号组禁止对敲交易").click();
        m_client->assets().clearAssetsRCs();
        refuseSave();
        QVERIFY(!recall().isVisible()); // the dialog still shows the input
        m_client->dialog().done(0);

        m_client->dialog().show();
        m_client->open(makeGroup(7, "一", ShenzhenTag));
        m_client->load(makeGroup(8, "二"), makeConfig(8, "二"));
        QVERIFY(!recall().isVisible());

        const auto changed = makeConfig(7, "三");
        changed->setRevision(12);
        m_client->open(makeGroup(7, "一"));
        m_client->answerConfig({changed});
        QVERIFY(!recall().isVisible()); // there is nothing yet to recall it over
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(recall().isVisible());
        QVERIFY(!m_client->assetRemarks().isEmpty());
        QTest::mouseClick(&recall(), Qt::LeftButton);
        QVERIFY(!recall().isVisible());
        QVERIFY(m_client->dialog().hasUnsavedEdits());
        QVERIFY(m_client->assetRemarks().isEmpty());
        const auto sent = saved();
        QCOMPARE(sent->revision(), std::int64_t(12));
        QVERIFY(sent->ratProofSetting.reverseOrderWarnOnly && !sent->ratProofSetting.washTradeForbidden);
        QCOMPARE(sent->rcRule.lists.front().entries.front().securityCode,
                 makeConfig(7, "一")->rcRule.lists.front().entries.front().securityCode);
        QVERIFY(sent->assetsRCs.empty());
        m_client->load(makeGroup(7, "一"), changed);
        QVERIFY(!recall().isVisible());
    }

    void aSuccessfulSaveEndsTheOfferOfEarlierInput()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        refuseSave();
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        QTRY_VERIFY(recall().isVisible());
        QVERIFY(saved());
        QTRY_VERIFY(!recall().isVisible());
    }

private:
    QAbstractButton& recall() { return m_client->button("恢复上次未保存的输入"); }

    void refuseSave()
    {
        m_client->boxes->expectMessage(QMessageBox::Critical, "提示", "已被 王五 修改");
        m_client->clickSave();
        m_client->answerSave(support::replyWithError(utils::EErrorCode::Conflict, "已被 王五 修改"));
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    /// What the next save sends as the configuration; answers both operations with success.
    boost::shared_ptr<CAccountGroupRCConfig> saved()
    {
        expectSuccess();
        m_client->clickSave();
        const auto operation = m_client->shanghai->takeOperationOf(GroupRiskConfig);
        operation.handler(support::replyWith({}));
        m_client->shanghai->takeOperationOf(EmailRule).handler(support::replyWith({}));
        support::settleCallbacks();
        return boost::dynamic_pointer_cast<CAccountGroupRCConfig>(operation.request.data);
    }

    void expectSuccess() { m_client->boxes->expectMessage(QMessageBox::Information, "提示", "保存成功"); }
};

TEST_WITH_WIDGETS(RiskSavingTest)
#include "tst_risk_saving.moc"
