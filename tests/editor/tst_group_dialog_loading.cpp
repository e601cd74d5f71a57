// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

#include <QThread>

using namespace editor_test;
using nvservice::DataType::Account;
using nvservice::DataType::Institution;

namespace
{

/// Counts the replies that have reached the dialog on the user-interface thread, each after the dialog's own slot.
class HandledReplies : public QObject
{
public:
    explicit HandledReplies(const QAV::CAddAccountGroupDialog& dialog)
    {
        connect(&dialog, &QAV::CAddAccountGroupDialog::sigQuaryAccountInfo, this, [this] { ++m_count; });
    }
    int count() const { return m_count; }

private:
    int m_count = 0;
};

} // namespace

/// How the group dialog waits for its data, and what it does with the answers.
class GroupDialogLoadingTest : public EditorTest
{
    Q_OBJECT

private slots:
    void init()
    {
        EditorTest::init();
        m_client->addShanghai();
    }

    void theMaskStaysUntilBothAccountsAndInstitutionsAreThere_data()
    {
        const support::DataRows<bool> row("accountsFirst");
        row("accounts first", true);
        row("institutions first", false);
    }
    void theMaskStaysUntilBothAccountsAndInstitutionsAreThere()
    {
        QFETCH(bool, accountsFirst);
        m_client->shanghai.held = {Account, Institution};
        m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) {
            QCOMPARE(m_client->mask()->text(), QString("正在加载基础数据"));
            QCOMPARE(m_client->mask()->target(), &dialog);
            QVERIFY(m_client->mask()->isVisible());
            const HandledReplies replies(*m_client->dialog);
            if (accountsFirst) {
                m_client->shanghai.release(Account);
                QTRY_COMPARE(replies.count(), 1);
                QCoreApplication::processEvents();
            } else {
                m_client->shanghai.release(Institution);
                m_client->institutionEdit()->setCurrentManagerId(101);
                QTRY_COMPARE(m_client->institutionEdit()->text(), QString("远山基金"));
                QCoreApplication::processEvents();
            }
            QVERIFY(m_client->mask()->isVisible());
            m_client->shanghai.release(accountsFirst ? Institution : Account);
            m_client->waitUntilLoaded();
            m_client->click("关闭");
        });
    }

    void makingTheDialogAsksNobody()
    {
        m_client->createDialog();
        QCoreApplication::processEvents();
        QCOMPARE(m_client->shanghai.keys.size(), std::size_t(0));
        QVERIFY(m_client->mask()->isHidden());
    }

    void everyShowingAsksAllServersForAllAccounts()
    {
        m_client->addShenzhen();
        m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) { dialog.done(0); });
        m_client->again([&](WQ::CBaseDialog& dialog) { dialog.done(0); });
        QCOMPARE(m_client->shanghai.queries(Account), 2);
        QCOMPARE(m_client->shenzhen.queries(Account), 2);
        QCOMPARE(m_client->shanghai.keys, std::set<std::string>({""}));
    }

    void aShowingWithoutAResetWaitsForTheAccountsOnly()
    {
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog& dialog) { dialog.done(0); });
        m_client->shanghai.held = {Account, Institution};
        m_client->again([&](WQ::CBaseDialog&) {
            QVERIFY(m_client->mask()->isVisible());
            QCOMPARE(m_client->shanghai.waiting(Institution), std::size_t(0));
            m_client->shanghai.release(Account);
            m_client->waitUntilLoaded();
            m_client->click("关闭");
        });
    }

    void theEventOfAnotherEditLiftsNoMask()
    {
        m_client->shanghai.held = {Account, Institution};
        m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) {
            const HandledReplies replies(*m_client->dialog);
            m_client->shanghai.release(Account);
            QTRY_COMPARE(replies.count(), 1);
            QVERIFY(dialog.handleEvent(WQ::ManagerDataLoaded, 7, 0, {}, nullptr));
            QVERIFY(m_client->mask()->isVisible());
            QVERIFY(dialog.handleEvent(WQ::ManagerDataLoaded, 4, 0, {}, nullptr));
            QVERIFY(m_client->mask()->isHidden());
            m_client->click("关闭");
        });
    }

    void withoutAnyServerTheDialogIsUnlockedAndSaysWhy()
    {
        support::centre().shutDown();
        m_client->createDialog().setServerName("");
        m_client->boxes.expectDialog([&](WQ::CBaseDialog&) {
            m_client->boxes.expectMessage(QMessageBox::Information, "提示", "没有已连接的分系统");
            m_client->waitUntilLoaded();
            QTRY_VERIFY(m_client->boxes.failures().isEmpty());
            m_client->click("关闭");
        });
        QCOMPARE(m_client->dialog->execDialog(true), 0);
    }

    void aServerThatIsDownIsNamedAndTheRestIsShown_data()
    {
        const support::DataRows<QString, QString> row("how", "message");
        row("it refuses", "refuses", "分系统“深圳分系统”：数据库忙");
        row("it never answers", "silent", "分系统“深圳分系统”未应答：超过 50 毫秒");
    }
    void aServerThatIsDownIsNamedAndTheRestIsShown()
    {
        QFETCH(QString, how);
        QFETCH(QString, message);
        AnsweringServer& down = m_client->addShenzhen();
        if (how == "refuses") {
            down.replies[Account] = support::replyWithError(utils::EErrorCode::StorageFailure, "数据库忙");
        } else {
            down.held = {Account};
            support::centre().setDeadline(Shenzhen, std::chrono::milliseconds(50));
        }
        m_client->createDialog().setServerName("上海分系统");
        m_client->boxes.expectDialog([&](WQ::CBaseDialog&) {
            m_client->boxes.expectMessage(QMessageBox::Information, "提示", message);
            m_client->waitUntilLoaded();
            QTRY_VERIFY(m_client->boxes.failures().isEmpty());
            QCOMPARE(candidates("证券账号"), 3);
            m_client->systemCombo()->setCurrentText("深圳分系统");
            QCOMPARE(candidates("证券账号"), 0);
            m_client->systemCombo()->setCurrentText("上海分系统");
            m_client->expectPicker([](QAV::CSelectAccountDialog& picker) { checkAccounts(picker, {"10001"}); });
            m_client->click("添加账号");
            QCOMPARE(m_client->column(1), QStringList("10001"));
            m_client->click("关闭");
        });
        m_client->dialog->execDialog(true);
    }

    void aFailedAccountQueryShowsTheServicesMessageAndKeepsWhatCame()
    {
        QAV::ITransport::Reply& reply = m_client->shanghai.replies[Account];
        reply.error = utils::NVError(utils::EErrorCode::StorageFailure, "数据库忙, 请稍后再试");
        m_client->createDialog();
        m_client->dialog->setServerName("上海分系统");
        m_client->boxes.expectDialog([&](WQ::CBaseDialog&) {
            m_client->boxes.expectMessage(QMessageBox::Information, "提示", "分系统“上海分系统”：数据库忙, 请稍后再试");
            m_client->waitUntilLoaded();
            QCoreApplication::processEvents();
            QCOMPARE(candidates("证券账号"), 3);
            m_client->click("关闭");
        });
        m_client->dialog->execDialog(true);
    }

    void aFailedInstitutionQueryLiftsTheMaskToo()
    {
        m_client->shanghai.replies[Institution] = support::replyWithError(utils::EErrorCode::Failed, "没有");
        m_client->lookAtNew("上海分系统", [&] { QVERIFY(m_client->institutionEdit()->toolTip().contains("没有")); });
    }

    void nullAndForeignRecordsAreSkipped()
    {
        const auto empty = boost::make_shared<nvservice::CKolmAccountInfo>();
        empty->account.reset();
        m_client->shanghai.replies[Account] = support::replyWith(
            {nullptr, makeProduct("产品"), makeAccount(2, "1", ShanghaiTag), empty,
             makeWrapper(makeAccount(2, "2", ShanghaiTag)), makeInstitution(1, "机构", ShanghaiTag)});
        m_client->shanghai.replies[Institution] =
            support::replyWith({nullptr, makeProduct("产品"), makeInstitution(101, "远山基金", ShanghaiTag)});
        m_client->lookAtNew("上海分系统", [&] {
            QCOMPARE(candidates("证券账号"), 1);
            m_client->chooseInstitution("远山基金");
            QCOMPARE(m_client->result()->institutionId, 101);
        });
    }

    void theReplyIsHandledOnTheUserInterfaceThread()
    {
        m_client->shanghai.held = {Account};
        m_client->add("上海分系统", [&](WQ::CBaseDialog&) {
            std::atomic<QThread*> emitted{nullptr};
            QThread* handled = nullptr;
            QObject receiver;
            connect(
                m_client->dialog.get(), &QAV::CAddAccountGroupDialog::sigQuaryAccountInfo, &receiver,
                [&] { emitted = QThread::currentThread(); }, Qt::DirectConnection);
            connect(m_client->dialog.get(), &QAV::CAddAccountGroupDialog::sigQuaryAccountInfo, &receiver,
                    [&] { handled = QThread::currentThread(); });
            m_client->shanghai.release(Account);
            QTRY_COMPARE(handled, thread());
            QVERIFY(emitted && emitted != thread());
            m_client->waitUntilLoaded();
            m_client->click("关闭");
        });
    }

    void aReplyAfterClosingFindsNobody()
    {
        m_client->shanghai.held = {Account};
        m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
        const HandledReplies replies(*m_client->dialog);
        // A message box now would have no dialog to belong to; the presenter would report it.
        m_client->shanghai.releaseWith(Account, support::replyWithError(utils::EErrorCode::Failed, "太晚"));
        support::centre().shutDown();
        QCoreApplication::processEvents();
        QCOMPARE(replies.count(), 0);
    }

    void aReplyToAnEarlierShowingDoesNotCountForTheNext()
    {
        m_client->shanghai.held = {Account};
        m_client->add("上海分系统", [&](WQ::CBaseDialog&) { m_client->dialog->done(0); });
        m_client->again([&](WQ::CBaseDialog&) {
            const HandledReplies replies(*m_client->dialog);
            m_client->shanghai.release(Account);
            m_client->shanghai.release(Account);
            m_client->waitUntilLoaded();
            QCOMPARE(replies.count(), 1);
            QCOMPARE(candidates("证券账号"), 3);
            m_client->click("关闭");
        });
    }

    void aReplyThatIsAlreadyOnItsWayWhenTheDialogIsShownAgainIsDropped()
    {
        m_client->shanghai.held = {Account};
        m_client->add("上海分系统", [&](WQ::CBaseDialog&) {
            std::atomic<bool> emitted{false};
            const auto connection = connect(
                m_client->dialog.get(), &QAV::CAddAccountGroupDialog::sigQuaryAccountInfo, m_client->dialog.get(),
                [&] { emitted = true; }, Qt::DirectConnection);
            m_client->shanghai.release(Account);
            while (!emitted) { // without letting events be handled
                QThread::yieldCurrentThread();
            }
            disconnect(connection);
            m_client->dialog->done(0);
        });
        m_client->again([&](WQ::CBaseDialog&) {
            QCoreApplication::processEvents();
            QVERIFY(m_client->mask()->isVisible());
            m_client->shanghai.release(Account);
            m_client->waitUntilLoaded();
            QCOMPARE(candidates("证券账号"), 3);
            m_client->click("关闭");
        });
    }

    void aReplyAfterDestructionFindsNobody()
    {
        m_client->shanghai.held = {Account, Institution};
        m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) { dialog.done(0); });
        m_client->dialog.reset();
        m_client->shanghai.release(Account);
        while (m_client->shanghai.waiting(Institution) > 0) {
            m_client->shanghai.release(Institution);
        }
        support::centre().shutDown();
        QCoreApplication::processEvents();
        QVERIFY(!m_client->dialog);
    }

    void serversMayAnswerInAnyOrder_data()
    {
        const support::DataRows<bool> row("shanghaiFirst");
        row("shanghai first", true);
        row("shenzhen first", false);
    }
    void serversMayAnswerInAnyOrder()
    {
        QFETCH(bool, shanghaiFirst);
        m_client->addShenzhen();
        m_client->shanghai.held = {Account, Institution};
        m_client->shenzhen.held = {Account, Institution};
        m_client->add("", [&](WQ::CBaseDialog&) {
            AnsweringServer& first = shanghaiFirst ? m_client->shanghai : m_client->shenzhen;
            AnsweringServer& second = shanghaiFirst ? m_client->shenzhen : m_client->shanghai;
            first.release(Institution);
            second.release(Account);
            first.release(Account);
            QVERIFY(m_client->mask()->isVisible());
            second.release(Institution);
            m_client->waitUntilLoaded();
            QCOMPARE(candidates("证券账号"), 3);
            m_client->systemCombo()->setCurrentIndex(1);
            QCOMPARE(candidates("证券账号"), 2);
            m_client->click("关闭");
        });
    }

    void theTitleBarStaysFreeWhileTheDialogLoads()
    {
        m_client->shanghai.held = {Account, Institution};
        const int ended = m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) {
            QVERIFY(m_client->mask()->isVisible());
            // What lies under the mask is out of reach.
            QCOMPARE(dialog.childAt(m_client->button("保存")->mapTo(&dialog, QPoint(5, 5))), m_client->mask());
            QTest::keyClick(m_client->mask(), Qt::Key_Escape);
        });
        QCOMPARE(ended, 0);
    }

private:
    /// How many accounts of a type the picker offers.
    int candidates(const QString& type)
    {
        int count = -1;
        m_client->boxes.expectDialog([&](WQ::CBaseDialog& picker) {
            picker.findChild<WQ::CComboBox*>()->setCurrentText(type);
            count = picker.findChild<QAV::CUserCombobox*>()->itemCount();
            clickButton(picker, "取消");
        });
        m_client->click("添加账号");
        return count;
    }
};

TEST_WITH_WIDGETS(GroupDialogLoadingTest)
#include "tst_group_dialog_loading.moc"
