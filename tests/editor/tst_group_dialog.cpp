// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"

#include <WQ/CMessageTip.h>
#include <WQ/CNormalButton.h>

using namespace editor_test;

namespace
{

const QString NameMissing = QStringLiteral("账号组名称,不能为空");
const auto AnyScript = [](WQ::CBaseDialog& dialog) { dialog.done(0); };

} // namespace

/// What the group dialog takes in, refuses and hands back.
class GroupDialogTest : public EditorTest
{
    Q_OBJECT

private slots:
    void init()
    {
        EditorTest::init();
        m_client->addShanghai();
    }

    void aNewGroupComesOutAsItWasPutIn()
    {
        const int ended = m_client->add("上海分系统", [&](WQ::CBaseDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QString("添加账号组"));
            m_client->waitUntilLoaded();
            support::typeText(*m_client->nameEdit(), "稳健一组");
            m_client->chooseInstitution("招商银行");
            m_client->expectPicker([](QAV::CSelectAccountDialog& picker) {
                picker.findChild<WQ::CComboBox*>()->setCurrentText("证券账号");
                checkAccounts(picker, {"10003"});
            });
            m_client->click("添加账号");
            QCOMPARE(m_client->row(0), QStringList({"证券账号", "10003", "上海分系统", "未关联产品"}));
            m_client->click("保存");
        });
        QCOMPARE(ended, 1);
        const auto group = m_client->result("上海分系统");
        QCOMPARE(group->groupName, std::string("稳健一组"));
        QCOMPARE(group->groupId, -1);
        QCOMPARE(group->institutionId, 102);
        QCOMPARE(group->institutionName, std::string("招商银行"));
        QCOMPARE(group->getSystemTag(), ShanghaiTag);
        QCOMPARE(group->accounts.size(), std::size_t(1));
        QCOMPARE(group->accounts[0]->getKey(), makeAccount(2, "10003", ShanghaiTag)->getKey());
    }

    void aNameOfOnlyBlanksIsRefused()
    {
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog& dialog) {
            m_client->chooseInstitution("远山基金");
            support::typeText(*m_client->nameEdit(), "   ");
            m_client->click("保存");
            QVERIFY(dialog.isVisible());
            QCOMPARE(m_client->nameTip(), NameMissing);
            m_client->click("关闭");
        });
    }

    void aNameIsStoredWithoutTheBlanksAroundIt()
    {
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog&) {
            m_client->chooseInstitution("远山基金");
            support::typeText(*m_client->nameEdit(), "  二 组 ");
            m_client->click("保存");
        });
        QCOMPARE(m_client->result()->groupName, std::string("二 组"));
    }

    void theNameTipGoesWithTheNextGoodSave()
    {
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog&) {
            m_client->chooseInstitution("远山基金");
            m_client->click("保存");
            QCOMPARE(m_client->nameTip(), NameMissing);
            support::typeText(*m_client->nameEdit(), "组");
            m_client->click("保存");
        });
        QCOMPARE(m_client->nameTip(), QString());
    }

    void allFaultsOfOneSaveAreReportedTogether()
    {
        m_client->addShenzhen();
        const auto group = makeGroup(" ", ShenzhenTag, nvservice::NoInstitutionId,
                                     {makeAccount(2, "20001", ShenzhenTag), makeAccount(2, "10002", ShanghaiTag, "A"),
                                      makeAccount(2, "10003", ShanghaiTag)});
        m_client->editLoaded(group, "深圳分系统", [&](WQ::CBaseDialog& dialog) {
            // Only the first account of another server is named, by its identifier alone.
            m_client->boxes.expectMessage(QMessageBox::Information, "错误", "账号10002 必须与账号组 分系统相同！");
            m_client->click("保存");
            QVERIFY(dialog.isVisible());
            QCOMPARE(m_client->nameTip(), NameMissing);
            const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(m_client->institutionEdit());
            QVERIFY(tip);
            QCOMPARE(tip->text(), QString("所属机构不能为空!"));
            QCOMPARE(tip->level(), WQ::MessageError);
            m_client->click("关闭");
        });
    }

    void anAccountThatIsListedAlreadyAddsNoSecondRow()
    {
        const auto group = makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "10003", ShanghaiTag)});
        m_client->editLoaded(group, "上海分系统", [&](WQ::CBaseDialog&) {
            m_client->expectPicker([](QAV::CSelectAccountDialog& picker) {
                picker.findChild<WQ::CComboBox*>()->setCurrentText("证券账号");
                // 10003 is checked already, because it is in the group.
                checkAccounts(picker, {"10002-A"});
            });
            m_client->click("添加账号");
            QCOMPARE(m_client->column(1), QStringList({"10003", "10002-A"}));
            m_client->click("保存");
        });
        QCOMPARE(m_client->result("上海分系统")->accounts.size(), std::size_t(2));
    }

    void aReplyThatRepeatsAnAccountAddsOneRow()
    {
        m_client->shanghai.replies[nvservice::DataType::Account] = support::replyWith(
            {makeWrapper(makeAccount(2, "10003", ShanghaiTag)), makeWrapper(makeAccount(2, "10003", ShanghaiTag))});
        m_client->lookAtNew("上海分系统", [&] {
            m_client->expectPicker([](QAV::CSelectAccountDialog& picker) { checkAccounts(picker, {"10003"}); });
            m_client->click("添加账号");
            QCOMPARE(m_client->column(1), QStringList("10003"));
        });
    }

    void deletingRowsLeavesGapsInTheirIdsAndTheRestInOrder()
    {
        const auto group = makeGroup("组", ShanghaiTag, 101,
                                     {makeAccount(2, "1", ShanghaiTag), makeAccount(2, "2", ShanghaiTag),
                                      makeAccount(2, "3", ShanghaiTag), makeAccount(2, "4", ShanghaiTag)});
        m_client->editLoaded(group, "上海分系统", [&](WQ::CBaseDialog&) {
            const auto rowButton = [&](int index) {
                return m_client->table()->itemWidget(m_client->table()->rowID(index), 4);
            };
            const int firstId = m_client->table()->rowID(0);
            for (const int index : {0, 1}) { // the first, then the one that was the third
                QTRY_VERIFY(rowButton(index)->isVisible());
                m_client->boxes.expectQuestion(QMessageBox::Information, "删除", "确认删除? ", QMessageBox::Yes);
                QTest::mouseClick(rowButton(index), Qt::LeftButton);
            }
            QCOMPARE(m_client->column(1), QStringList({"2", "4"}));
            QCOMPARE(m_client->table()->rowID(0), firstId + 1);
            QCOMPARE(m_client->table()->rowID(1), firstId + 3);
            for (const int index : {0, 1}) {
                QCOMPARE(qobject_cast<WQ::CNormalButton*>(rowButton(index))->id(),
                         m_client->table()->rowID(index) + 1000);
            }
            m_client->click("保存");
        });
        const auto saved = m_client->result("上海分系统");
        QCOMPARE(saved->accounts.size(), std::size_t(2));
        QCOMPARE(saved->accounts[0]->accountId, std::string("2"));
        QCOMPARE(saved->accounts[1]->accountId, std::string("4"));
    }

    void answeringNoToADeletionChangesNothing()
    {
        const auto group = makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "1", ShanghaiTag)});
        m_client->lookAt(group, "上海分系统", [&] {
            QWidget* const button = m_client->table()->itemWidget(m_client->table()->rowID(0), 4);
            QTRY_VERIFY(button->isVisible());
            m_client->boxes.expectQuestion(QMessageBox::Information, "删除", "确认删除? ", QMessageBox::No);
            QTest::mouseClick(button, Qt::LeftButton);
            QCOMPARE(m_client->column(1), QStringList("1"));
        });
        QCOMPARE(m_client->result()->accounts.size(), std::size_t(1));
    }

    void anAccountWithoutAProductSaysSo()
    {
        m_client->createDialog().setAccountProductMap({{"SH|2|1|", nullptr}});
        const auto group =
            makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "1", ShanghaiTag), makeAccount(2, "2", ShanghaiTag)});
        m_client->edit(group, "上海分系统", AnyScript);
        QCOMPARE(m_client->column(3), QStringList({"未关联产品", "未关联产品"}));
    }

    void anAccountWithAProductShowsItsName()
    {
        const AccountPtr account = makeAccount(2, "1", ShanghaiTag);
        m_client->createDialog().setAccountProductMap({{account->getKey(), makeProduct("远山一号")}});
        m_client->edit(makeGroup("组", ShanghaiTag, 101, {account}), "上海分系统", AnyScript);
        QCOMPARE(m_client->column(3), QStringList("远山一号"));
    }

    void closingReturnsZero_data()
    {
        const support::DataRows<bool> row("escape");
        row("by the button", false);
        row("by Esc", true);
    }
    void closingReturnsZero()
    {
        QFETCH(bool, escape);
        const int ended = m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog& dialog) {
            if (escape) {
                QTest::keyClick(&dialog, Qt::Key_Escape);
            } else {
                m_client->click("关闭");
            }
        });
        QCOMPARE(ended, 0);
    }

    void escWithUnsavedEditsClosesAtTheSecondTime_data()
    {
        const support::DataRows<int> row("edit");
        row("name", 0);
        row("institution", 1);
        row("accounts", 2);
    }
    void escWithUnsavedEditsClosesAtTheSecondTime()
    {
        QFETCH(int, edit);
        const int ended = m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog& dialog) {
            QVERIFY(!dialog.hasUnsavedEdits());
            if (edit == 0) {
                support::typeText(*m_client->nameEdit(), "三组");
            } else if (edit == 1) {
                m_client->chooseInstitution("远山基金");
            } else {
                m_client->expectPicker([](QAV::CSelectAccountDialog& picker) {
                    picker.findChild<WQ::CComboBox*>()->setCurrentText("证券账号");
                    checkAccounts(picker, {"10003"});
                });
                m_client->click("添加账号");
            }
            QVERIFY(dialog.hasUnsavedEdits());
            QTest::keyClick(&dialog, Qt::Key_Escape);
            QVERIFY(dialog.isVisible());
            QTest::keyClick(&dialog, Qt::Key_Escape);
            QVERIFY(!dialog.isVisible());
        });
        QCOMPARE(ended, 0);
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog& dialog) {
            QVERIFY(!dialog.hasUnsavedEdits());
            dialog.done(0);
        });
    }

    void inputOfARefusedGroupIsStillUnsaved()
    {
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog&) {
            support::typeText(*m_client->nameEdit(), "三组");
            m_client->chooseInstitution("远山基金");
            m_client->click("保存");
        });
        m_client->again([&](WQ::CBaseDialog& dialog) {
            m_client->waitUntilLoaded();
            QVERIFY(dialog.hasUnsavedEdits());
            dialog.done(0);
        });
    }

    void theInputSurvivesUntilTheNextReset()
    {
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog&) {
            support::typeText(*m_client->nameEdit(), "三组");
            m_client->chooseInstitution("远山基金");
            m_client->click("保存");
        });
        m_client->again([&](WQ::CBaseDialog& dialog) {
            QVERIFY(m_client->mask()->isVisible());
            m_client->waitUntilLoaded();
            QCOMPARE(dialog.windowTitle(), QString("添加账号组"));
            QCOMPARE(m_client->nameEdit()->text(), QString("三组"));
            QCOMPARE(m_client->institutionEdit()->text(), QString("远山基金"));
            m_client->click("保存");
        });
        QCOMPARE(m_client->result()->groupName, std::string("三组"));
    }

    void aResetEmptiesNameTableAndTip()
    {
        m_client->edit(makeGroup("", ShanghaiTag, 101, {makeAccount(2, "1", ShanghaiTag)}), "上海分系统",
                       [&](WQ::CBaseDialog& dialog) {
                           QCOMPARE(dialog.windowTitle(), QString("编辑账号组"));
                           m_client->waitUntilLoaded();
                           m_client->click("保存");
                           QCOMPARE(m_client->nameTip(), NameMissing);
                           m_client->click("关闭");
                       });
        m_client->add("上海分系统", AnyScript);
        QCOMPARE(m_client->dialog->windowTitle(), QString("添加账号组"));
        QCOMPARE(m_client->nameTip(), QString());
        QCOMPARE(m_client->nameEdit()->text(), QString());
        QCOMPARE(m_client->table()->rowCount(), 0);
        QCOMPARE(m_client->result()->accounts.size(), std::size_t(0));
    }

    void strangeNamesPassUnchanged_data()
    {
        const support::DataRows<QString> row("name");
        row("ten thousand characters", QString(10000, QChar(u'组')));
        row("control characters", "a\x01\x07\x1b[31mb\tc");
        row("emoji outside the basic plane", "组😀👨‍👩‍👧");
        row("right to left", "\u0645\u062c\u0645\u0648\u0639\u0629 \u05d0\u202e\u05d1");
        row("markup", "<b>组</b>&amp;%1%2");
    }
    void strangeNamesPassUnchanged()
    {
        QFETCH(QString, name);
        const int ended = m_client->editLoaded(makeGroup(name.toStdString(), ShanghaiTag, 101, {}), "上海分系统",
                                               [&](WQ::CBaseDialog& dialog) {
                                                   QVERIFY(!dialog.grab().isNull());
                                                   m_client->click("保存");
                                               });
        QCOMPARE(ended, 1);
        QCOMPARE(QString::fromStdString(m_client->result()->groupName), name);
    }

    void writeBackFollowsTheDisplayedOrder()
    {
        const auto group = makeGroup(
            "组", ShanghaiTag, 101,
            {makeAccount(2, "30", ShanghaiTag), makeAccount(2, "10", ShanghaiTag), makeAccount(2, "20", ShanghaiTag)});
        m_client->editLoaded(group, "上海分系统", [&](WQ::CBaseDialog&) {
            m_client->table()->sortByColumn(1, Qt::AscendingOrder);
            m_client->click("保存");
        });
        QStringList ids;
        const auto saved = m_client->result();
        for (const auto& account : saved->accounts) {
            ids << QString::fromStdString(account->accountId);
        }
        QCOMPARE(ids, QStringList({"10", "20", "30"}));
    }

    void accountsOfAPercentSignStayWhole()
    {
        m_client->addShenzhen();
        m_client->editLoaded(makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "%2%1", ShenzhenTag)}), "上海分系统",
                             [&](WQ::CBaseDialog&) {
                                 m_client->boxes.expectMessage(QMessageBox::Information, "错误",
                                                               "账号%2%1 必须与账号组 分系统相同！");
                                 m_client->click("保存");
                                 m_client->click("关闭");
                             });
    }

    void foreignAndNullRecordsAreNoGroups()
    {
        const auto foreign = makeAccount(1, "1", ShanghaiTag);
        for (const nvservice::IDataPtr& record : {nvservice::IDataPtr(), nvservice::IDataPtr(foreign)}) {
            m_client->createDialog().setGroupInfo(record, "上海分系统");
            QCOMPARE(m_client->nameEdit()->text(), QString());
            QString serverName("上海分系统");
            m_client->dialog->getGroupInfo(record, serverName);
            QCOMPARE(serverName, QString("上海分系统"));
        }
        const auto group = makeGroup("组", ShanghaiTag, 101, {nullptr, makeAccount(2, "1", ShanghaiTag), nullptr});
        m_client->dialog->setGroupInfo(group, "上海分系统");
        QCOMPARE(m_client->column(1), QStringList("1"));
    }

    void tenThousandAccountsGoInAndComeOut()
    {
        AccountList accounts;
        for (int i = 0; i < 10000; ++i) {
            accounts.push_back(makeAccount(2, std::to_string(i), ShanghaiTag));
        }
        m_client->editLoaded(makeGroup("组", ShanghaiTag, 101, accounts), "上海分系统", [&](WQ::CBaseDialog& dialog) {
            dialog.grab();
            // Only the rows on screen have a button.
            int buttons = 0;
            for (const QPushButton* const button : dialog.findChildren<QPushButton*>()) {
                buttons += button->text() == "删除" ? 1 : 0;
            }
            QVERIFY2(buttons > 5 && buttons < 200, qPrintable(QString::number(buttons)));
            m_client->click("保存");
        });
        const auto saved = m_client->result();
        QCOMPARE(saved->accounts.size(), accounts.size());
        QVERIFY(std::equal(accounts.begin(), accounts.end(), saved->accounts.begin()));
    }

    void eventsOfOthersGoOnToTheBase()
    {
        QAV::CAddAccountGroupDialog& dialog = m_client->createDialog();
        QVERIFY(!dialog.handleEvent(WQ::ButtonClicked, 4, 0, {}, nullptr));
        QVERIFY(!dialog.handleEvent(WQ::ButtonClicked, 999, 0, {}, nullptr));
        QVERIFY(!dialog.handleEvent(WQ::ButtonClicked, -1, 0, {}, nullptr));
        QVERIFY(!dialog.handleEvent(WQ::ComboIndexChanged, 5, 0, {}, nullptr));
        QVERIFY(dialog.handleEvent(WQ::ManagerSelectionChanged, 7, 0, {}, nullptr));
        QVERIFY(dialog.handleEvent(WQ::ManagerDataLoaded, 7, 0, {}, nullptr));
    }
};

TEST_WITH_WIDGETS(GroupDialogTest)
#include "tst_group_dialog.moc"
