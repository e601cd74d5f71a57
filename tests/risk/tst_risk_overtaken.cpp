// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"

#include "exempt/ControlId.h"
#include "support/TestProgram.h"

#include <WQ/CCheckBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMessageBox.h>
#include <WQ/EventType.h>

#include <QAccessible>

using namespace risk_test;
using nvservice::CAccountGroupRCConfig;
using nvservice::DataType::Category;
using nvservice::DataType::GroupRiskConfig;

namespace
{

/// Runs something while a message box is open.
class BusyPresenter : public WQ::IMessagePresenter
{
public:
    explicit BusyPresenter(std::function<void()> meanwhile)
        : m_before(WQ::CMessageBox::setPresenter(this)), m_meanwhile(std::move(meanwhile))
    {
    }
    ~BusyPresenter() override { WQ::CMessageBox::setPresenter(m_before); }

    QMessageBox::StandardButton showMessage(const WQ::MessageRequest& request) override
    {
        texts << request.text;
        if (const auto meanwhile = std::exchange(m_meanwhile, {})) {
            meanwhile();
        }
        return QMessageBox::Ok;
    }

    QStringList texts;

private:
    WQ::IMessagePresenter* m_before;
    std::function<void()> m_meanwhile;
};

} // namespace

/// What the risk settings dialog does with replies to what it has asked before something else.
class RiskOvertakenTest : public RiskTest
{
    Q_OBJECT

private slots:
    void aReplyThatWaitsWhileAnotherGroupIsOpenedIsNotShownThere_data()
    {
        const support::DataRows<int, QString> row("id", "systemTag");
        row("another group", 2, ShanghaiTag);
        row("the same group", 1, ShanghaiTag);
        row("the same id on another server", 1, ShenzhenTag);
    }
    void aReplyThatWaitsWhileAnotherGroupIsOpenedIsNotShownThere()
    {
        QFETCH(int, id);
        QFETCH(QString, systemTag);
        KeepingTransport& server = systemTag == ShanghaiTag ? *m_client->shanghai : *m_client->shenzhen;
        m_client->open(makeGroup(1, "A"));
        answer(*m_client->shanghai, "A");
        support::awaitCallbacks();

        m_client->dialog().setAccountGroup(makeGroup(id, "B", systemTag.toStdString()));
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
        QCOMPARE(m_client->assetRemarks(), QStringList());
        QVERIFY(!m_client->button("账号组反向单交易检查").isChecked());

        answer(server, "B");
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"B"}));
        QCOMPARE(m_client->tradeLimits().lists.front().entries.front().securityName, std::string("B"));
        m_client->clickSave();
        const auto sent = sentBy(server);
        QCOMPARE(sent->groupId, id);
        QCOMPARE(sent->assetsRCs.front().remark, std::string("B"));
    }

    void repliesOfAGroupWithTheSameIdOnAnotherServerAreDropped()
    {
        m_client->open(makeGroup(1, "A", ShanghaiTag));
        m_client->dialog().setAccountGroup(makeGroup(1, "B", ShenzhenTag));
        answer(*m_client->shanghai, "A");
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
        QCOMPARE(m_client->assetRemarks(), QStringList());
        answer(*m_client->shenzhen, "B");
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"B"}));
    }

    void ofTwoLoadsOfOneGroupTheLaterOneCounts()
    {
        m_client->dialog().setAccountGroup(makeGroup(1, "A"));
        const auto earlier = m_client->shanghai->takeQueryOf(GroupRiskConfig);
        m_client->dialog().setAccountGroup(makeGroup(1, "A"));
        answer(*m_client->shanghai, "新");
        QTRY_VERIFY(m_client->mask().isHidden());
        earlier.handler(support::replyWith({makeConfig(1, "旧")}));
        support::settleCallbacks();
        QCOMPARE(m_client->assetRemarks(), QStringList({"新"}));
    }

    void categoriesOfAnEarlierLoadNeitherReplaceTheOfferedOnesNorResetThePages()
    {
        m_client->dialog().setAccountGroup(makeGroup(1, "A", ShanghaiTag));
        const auto earlier = m_client->shanghai->takeQueryOf(Category);
        m_client->dialog().setAccountGroup(makeGroup(2, "B", ShenzhenTag));
        answer(*m_client->shenzhen, "B");
        QTRY_VERIFY(m_client->mask().isHidden());
        m_client->tabs().setCurrentIndex(2);
        QTest::mouseClick(&m_client->button("账号组反向单交易检查"), Qt::LeftButton);
        QVERIFY(!m_client->button("账号组反向单交易检查").isChecked());

        earlier.handler(support::replyWith({makeCategory(10, "上海国债"), makeCategory(99, "上海")}));
        support::settleCallbacks();
        QVERIFY(!m_client->button("账号组反向单交易检查").isChecked());
        QCOMPARE(m_client->exemptNames(1), QStringList({"期货", "国债"}));
        m_client->boxes->expectDialog([](WQ::CBaseDialog& picker) {
            QStringList names = shownIn(picker, QAV::AvailableCategoryTableId);
            names << shownIn(picker, QAV::SelectedCategoryTableId);
            names.sort();
            QCOMPARE(names, QStringList({"国债", "期权", "期货", "股票"}));
            picker.done(0);
        });
        QTest::mouseClick(&m_client->button("设置豁免分类"), Qt::LeftButton);
    }

    void categoriesOfAnEarlierLoadDoNotEndTheLoading()
    {
        m_client->dialog().setAccountGroup(makeGroup(1, "A"));
        const auto earlier = m_client->shanghai->takeQueryOf(Category);
        m_client->dialog().setAccountGroup(makeGroup(2, "B"));
        m_client->shanghai->takeQueryOf(GroupRiskConfig).handler(support::replyWith({}));
        m_client->answerConfig({makeConfig(2, "B")});
        earlier.handler(support::replyWith(someCategories()));
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
        QVERIFY(!m_client->button("账号组反向单交易检查").isChecked());
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->exemptNames(0), QStringList({"国债"}));
    }

    void aSaveReplyLeavesTheMaskOfALoadThatIsUnderWay()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        m_client->open(makeGroup(7, "一"));
        m_client->boxes->expectMessage(QMessageBox::Information, "提示", "保存成功");
        m_client->answerSave(support::replyWith({}));
        support::settleCallbacks();
        QVERIFY(m_client->boxes->verify());
        QVERIFY(m_client->mask().isVisible());
        pressSaveInEveryWay();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
        m_client->answerConfig({makeConfig(7, "新")});
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
        m_client->clickSave();
        QCOMPARE(sentBy(*m_client->shanghai)->assetsRCs.front().remark, std::string("新"));
    }

    void aSaveReplyLeavesTheMaskOfALaterSave()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        const auto earlier = m_client->shanghai->takeOperationOf(GroupRiskConfig);
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        m_client->boxes->expectMessage(QMessageBox::Critical, "提示", "数据库忙");
        earlier.handler(support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙"));
        support::settleCallbacks();
        QVERIFY(m_client->boxes->verify());
        QVERIFY(m_client->mask().isVisible());
        m_client->boxes->expectMessage(QMessageBox::Information, "提示", "保存成功");
        m_client->answerSave(support::replyWith({}));
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void aSaveReplyInTheSameTurnLeavesTheMaskOfALoad()
    {
        // As from a client that calls back on the user-interface thread.
        m_client->open(makeGroup(7, "一"));
        m_client->boxes->expectMessage(QMessageBox::Information, "提示", "保存成功");
        emit m_client->dialog().sigUpdateAccountGroupRisk(QString());
        QVERIFY(m_client->mask().isVisible());
        emit m_client->dialog().sigQuaryCategories(someCategories(), true, QString());
        QVERIFY(m_client->mask().isVisible());
        emit m_client->dialog().sigQuaryAccountGroupRisk({makeConfig(7, "一")}, true, QString());
        QVERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"一"}));
    }

    void aSaveReplyThatWaitsWhileAnotherGroupIsOpenedIsNotTold_data()
    {
        const support::DataRows<int, QString> row("id", "systemTag");
        row("another group", 8, ShanghaiTag);
        row("the same id on another server", 7, ShenzhenTag);
    }
    void aSaveReplyThatWaitsWhileAnotherGroupIsOpenedIsNotTold()
    {
        QFETCH(int, id);
        QFETCH(QString, systemTag);
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        m_client->answerSave(support::replyWithError(utils::EErrorCode::Conflict, "已被修改"));
        support::awaitCallbacks();
        m_client->dialog().setAccountGroup(makeGroup(id, "B", systemTag.toStdString()));
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
    }

    void aSaveReplyOfAGroupWithTheSameIdOnAnotherServerIsDropped()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        m_client->dialog().setAccountGroup(makeGroup(7, "B", ShenzhenTag));
        m_client->answerSave(support::replyWith({}));
        support::settleCallbacks();
        QVERIFY(m_client->mask().isVisible());
    }

    void aLoadThatSucceedsWhileTheBoxOfAFailedOneIsOpenCanBeSaved()
    {
        BusyPresenter boxes([this] {
            m_client->dialog().setAccountGroup(makeGroup(2, "B"));
            answer(*m_client->shanghai, "B");
            QTRY_VERIFY(m_client->mask().isHidden());
        });
        m_client->open(makeGroup(1, "A"));
        m_client->shanghai->takeQueryOf(GroupRiskConfig)
            .handler(support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙"));
        QTRY_COMPARE(boxes.texts, QStringList({"数据库忙"}));
        support::settleCallbacks();
        QVERIFY(m_client->mask().isHidden());
        QCOMPARE(m_client->assetRemarks(), QStringList({"B"}));
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(2));
        QCOMPARE(sentBy(*m_client->shanghai)->groupId, 2);
    }

    void ofTwoFailedLoadsEachIsToldAndTheEarlierOneEndsNothing()
    {
        const auto failed = support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙");
        BusyPresenter boxes([&] {
            m_client->dialog().setAccountGroup(makeGroup(2, "B"));
            m_client->shanghai->takeQueryOf(GroupRiskConfig).handler(failed);
            support::settleCallbacks();
        });
        m_client->open(makeGroup(1, "A"));
        m_client->shanghai->takeQueryOf(GroupRiskConfig).handler(failed);
        QTRY_COMPARE(boxes.texts, QStringList({"数据库忙", "数据库忙"}));
        QVERIFY(m_client->mask().isVisible());
        while (m_client->shanghai->queries(Category) > 0) {
            m_client->answerCategories(someCategories());
        }
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void nothingIsChangedWhileALoadOrASaveIsUnderWay_data()
    {
        const support::DataRows<bool> row("saves");
        row("load", false);
        row("save", true);
    }
    void nothingIsChangedWhileALoadOrASaveIsUnderWay()
    {
        QFETCH(bool, saves);
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        auto* const security = m_client->dialog().findChild<WQ::CLineEdit*>("security");
        security->setText("600000");
        if (saves) {
            m_client->clickSave();
        } else {
            m_client->open(makeGroup(7, "一"));
        }
        const QStringList remarks = m_client->assetRemarks();
        const std::string lists = nvservice::encodeRecord(m_client->tradeLimits()).toString();
        for (int tab = 0; tab < m_client->tabs().count(); ++tab) {
            m_client->tabs().setCurrentIndex(tab);
            for (QAbstractButton* const button : m_client->tabs().tabWidget(tab)->findChildren<QAbstractButton*>()) {
                const bool isChecked = button->isChecked();
                button->click();
                button->setFocus();
                QTest::keyClick(button, Qt::Key_Space);
                QTest::keyClick(m_client->dialog().windowHandle(), Qt::Key_Space);
                QTest::mouseClick(button, Qt::LeftButton);
                QAccessibleActionInterface* const actions =
                    QAccessible::queryAccessibleInterface(button)->actionInterface();
                for (const QString& action : actions->actionNames()) {
                    actions->doAction(action);
                }
                QCOMPARE(button->isChecked(), isChecked);
            }
        }
        QTest::keyClick(security, Qt::Key_Return);
        QTest::keyClick(security, Qt::Key_Z, Qt::ControlModifier);
        support::settleCallbacks();
        QCOMPARE(m_client->assetRemarks(), remarks);
        QCOMPARE(nvservice::encodeRecord(m_client->tradeLimits()).toString(), lists);
        QCOMPARE(m_client->exemptNames(0), QStringList({"国债"}));
        QVERIFY(m_client->mask().isVisible());
    }

    void nothingIsSavedWhileALoadIsUnderWay()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->open(makeGroup(7, "一"));
        pressSaveInEveryWay();
        m_client->answerConfig({makeConfig(7, "新")});
        support::settleCallbacks();
        pressSaveInEveryWay();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(0));
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
        m_client->clickSave();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(2));
    }

    void nothingIsSavedWhileASaveIsUnderWay()
    {
        m_client->load(makeGroup(7, "一"), makeConfig(7, "一"));
        m_client->clickSave();
        pressSaveInEveryWay();
        QCOMPARE(m_client->shanghai->operations(), std::size_t(2));
    }

private:
    /// Answers what the dialog has asked last, after what the tabs have asked on their own account.
    static void answer(KeepingTransport& server, const std::string& mark)
    {
        const auto config = server.takeQueryOf(GroupRiskConfig);
        config.handler(support::replyWith({makeConfig(std::stoi(config.request.queryKey), mark)}));
        while (server.queries(Category) > 0) {
            server.takeQueryOf(Category).handler(support::replyWith(someCategories()));
        }
    }

    static boost::shared_ptr<CAccountGroupRCConfig> sentBy(KeepingTransport& server)
    {
        return boost::dynamic_pointer_cast<CAccountGroupRCConfig>(server.takeOperationOf(GroupRiskConfig).request.data);
    }

    void pressSaveInEveryWay()
    {
        QAbstractButton& save = m_client->button("保存设置");
        m_client->dialog().handleEvent(WQ::ButtonClicked, 0, 0, QString(), nullptr);
        QTest::mouseClick(m_client->dialog().windowHandle(), Qt::LeftButton, {},
                          save.mapTo(&m_client->dialog(), save.rect().center()));
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            save.setFocus();
            QTest::keyClick(m_client->dialog().windowHandle(), key);
            QTest::keyClick(&save, key);
        }
        save.animateClick(0);
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&save);
        accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        support::settleCallbacks();
    }
};

TEST_WITH_WIDGETS(RiskOvertakenTest)
#include "tst_risk_overtaken.moc"
