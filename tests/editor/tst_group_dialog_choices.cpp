// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"

using namespace editor_test;
using nvservice::DataType::Institution;

/// What the choice of an institution, a server and accounts leads to in the group dialog.
class GroupDialogChoicesTest : public EditorTest
{
    Q_OBJECT

private slots:
    void aResetKeepsTheInstitution()
    {
        m_client->addShanghai();
        m_client->lookAt(makeGroup("组", ShanghaiTag, 102, {}), "上海分系统", [&] {});
        m_client->lookAtNew("上海分系统", [&] {
            QCOMPARE(m_client->nameEdit()->text(), QString());
            QCOMPARE(m_client->institutionEdit()->text(), QString("招商银行"));
        });
        QCOMPARE(m_client->result("上海分系统")->institutionId, 102);
    }

    void theServerOfThePanelIsAskedForItsInstitutions()
    {
        m_client->addBothServers();
        m_client->createDialog();
        QCOMPARE(m_client->shanghai.queries(Institution), 0);
        m_client->dialog->setServerName("深圳分系统");
        QCOMPARE(m_client->shanghai.queries(Institution), 0);
        QCOMPARE(m_client->shenzhen.queries(Institution), 1);
        m_client->dialog->setServerName("");
        QCOMPARE(m_client->shanghai.queries(Institution), 1);
        QCOMPARE(m_client->shenzhen.queries(Institution), 2);
    }

    void withOneServerChoosingAnInstitutionChangesNothing()
    {
        m_client->addShanghai();
        m_client->lookAtNew("上海分系统", [&] {
            const int asked = m_client->shanghai.queries(Institution);
            m_client->chooseInstitution("招商银行");
            QCOMPARE(m_client->institutionEdit()->text(), QString("招商银行"));
            QCOMPARE(m_client->shanghai.queries(Institution), asked);
            QVERIFY(m_client->mask()->isHidden());
        });
    }

    void anInstitutionOfAServerThatIsNotThereLeavesTheChoice()
    {
        m_client->addBothServers();
        m_client->shanghai.replies[Institution] = support::replyWith({makeInstitution(901, "远方机构", "BJ")});
        m_client->lookAtNew("", [&] {
            m_client->systemCombo()->setCurrentIndex(1);
            m_client->chooseInstitution("远方机构");
            QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
            QVERIFY(!m_client->systemCombo()->isVisible());
        });
        QCOMPARE(m_client->result()->institutionId, 901);
        QCOMPARE(m_client->result()->getSystemTag(), ShenzhenTag);
    }

    void afterTheInstitutionIsGivenUpItsServerStays()
    {
        m_client->addBothServers();
        m_client->lookAtNew("", [&] {
            m_client->chooseInstitution("南海信托");
            m_client->institutionEdit()->selectAll();
            QTest::keyClick(m_client->institutionEdit(), Qt::Key_Delete);
            QVERIFY(!m_client->label("  分系统:")->isVisible());
            QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
            // Nothing but the institutions of that server can be chosen.
            m_client->chooseInstitution("远山基金");
            QCOMPARE(m_client->institutionEdit()->text(), QString());
        });
        QCOMPARE(m_client->result()->getSystemTag(), ShenzhenTag);
    }

    void theNameOfTheInstitutionIsStoredAsItStands()
    {
        m_client->addShanghai().replies[Institution] =
            support::replyWith({makeInstitution(101, "  远山基金 ", ShanghaiTag)});
        m_client->editLoaded(makeGroup("组", ShanghaiTag, 101, {}), "上海分系统",
                             [&](WQ::CBaseDialog&) { m_client->click("保存"); });
        QCOMPARE(m_client->result()->institutionName, std::string("  远山基金 "));
    }

    void ofServersWithOneNameTheLastIsFixedAndTheFirstIsEdited()
    {
        m_client->addBothServers();
        m_client->createDialog();
        m_client->systemCombo()->addItem("上海分系统", QVariant());
        m_client->dialog->setServerName("上海分系统");
        QCOMPARE(m_client->systemCombo()->currentIndex(), 2);
        m_client->dialog->setGroupInfo(makeGroup("组", ShanghaiTag, 101, {}), "上海分系统");
        QCOMPARE(m_client->systemCombo()->currentIndex(), 0);
        m_client->lookAtNew("", [&] {
            m_client->systemCombo()->setCurrentIndex(2);
            m_client->chooseInstitution("远山基金");
            // Choosing the institution selects the first; that its server is fixed then selects the last.
            QCOMPARE(m_client->systemCombo()->currentIndex(), 2);
        });
    }

    void serverNamesAreComparedExactly()
    {
        QVERIFY(support::centre().addServer("Nord", "N", m_client->shanghai.transport).isSuccess());
        QVERIFY(support::centre().addServer("nord", "n", m_client->shenzhen.transport).isSuccess());
        QVERIFY(support::centre().addServer("nord ", "n_", boost::make_shared<support::CFakeTransport>()).isSuccess());
        m_client->createDialog();
        for (const QString& name : {QString("nord"), QString("Nord"), QString("nord ")}) {
            m_client->dialog->setServerName(name);
            QCOMPARE(m_client->systemCombo()->currentText(), name);
            m_client->dialog->setGroupInfo(makeGroup("组", "n", 101, {}), name);
            QCOMPARE(m_client->systemCombo()->currentText(), name);
        }
    }

    void aGroupOfAServerThatIsGoneLeavesTheChoice()
    {
        m_client->addBothServers();
        m_client->createDialog().setServerName("深圳分系统");
        m_client->dialog->setGroupInfo(makeGroup("组", "BJ", 101, {}), "");
        QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
        QVERIFY(!m_client->systemCombo()->isEnabled());
    }

    void theFirstWrongAccountIsTheFirstOnDisplay()
    {
        m_client->addBothServers();
        const auto group = makeGroup(
            "组", ShanghaiTag, 101,
            {makeAccount(2, "30", ShenzhenTag), makeAccount(2, "10", ShanghaiTag), makeAccount(2, "20", ShenzhenTag)});
        m_client->lookAt(group, "上海分系统", [&] {
            m_client->table()->sortByColumn(1, Qt::AscendingOrder);
            m_client->boxes.expectMessage(QMessageBox::Information, "错误", "账号20 必须与账号组 分系统相同！");
            m_client->click("保存");
            m_client->table()->sortByColumn(1, Qt::DescendingOrder);
            m_client->boxes.expectMessage(QMessageBox::Information, "错误", "账号30 必须与账号组 分系统相同！");
            m_client->click("保存");
        });
    }

    void aWrongAccountIsNamedOnceAndWithoutItsUnit()
    {
        m_client->addBothServers();
        m_client->lookAt(makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "20", "BJ", "A")}), "上海分系统", [&] {
            QCOMPARE(m_client->row(0), QStringList({"证券账号", "20-A", "", "未关联产品"}));
            m_client->boxes.expectMessage(QMessageBox::Information, "错误", "账号20 必须与账号组 分系统相同！");
            m_client->click("保存");
        });
    }

    void accountsKeepTheirServerWhenTheGroupComesBack()
    {
        m_client->logIn(102, ShanghaiTag);
        m_client->addBothServers();
        const auto group = makeGroup("组", ShanghaiTag, 102, {makeAccount(2, "10", ShanghaiTag)});
        const auto addShenzhens = [&](WQ::CBaseDialog&) {
            m_client->waitUntilLoaded();
            m_client->expectPicker([](QAV::CSelectAccountDialog& picker) {
                picker.findChild<WQ::CComboBox*>()->setCurrentText("证券账号");
                checkAccounts(picker, {"20001"});
            });
            m_client->click("添加账号");
            m_client->click("保存");
        };
        m_client->edit(group, "上海分系统", addShenzhens);
        QString serverName("上海分系统");
        m_client->dialog->getGroupInfo(group, serverName);
        // The group comes back, because somebody finds fault with it, and is written a second time.
        m_client->again([&](WQ::CBaseDialog&) {
            m_client->waitUntilLoaded();
            m_client->click("保存");
        });
        m_client->dialog->getGroupInfo(group, serverName);
        QCOMPARE(group->getSystemTag(), ShanghaiTag);
        QCOMPARE(group->accounts.size(), std::size_t(2));
        QCOMPARE(group->accounts[0]->getSystemTag(), ShanghaiTag);
        QCOMPARE(group->accounts[1]->getSystemTag(), ShenzhenTag);
    }

    void aBoundUserKeepsTheInstitutionOfTheGroupThatHeEdits()
    {
        m_client->logIn(102, ShanghaiTag);
        m_client->addBothServers();
        m_client->editLoaded(makeGroup("组", ShenzhenTag, 201, {}), "深圳分系统", [&](WQ::CBaseDialog&) {
            QVERIFY(!m_client->institutionEdit()->isEnabled());
            m_client->click("保存");
        });
        QCOMPARE(m_client->result("深圳分系统")->institutionId, 201);
        QCOMPARE(m_client->result("深圳分系统")->institutionName, std::string("南海信托"));
    }

    void aCancelledPickerAddsNothingAndIsReleased()
    {
        m_client->addShanghai();
        m_client->lookAtNew("上海分系统", [&] {
            QPointer<WQ::CBaseDialog> shown;
            m_client->boxes.expectDialog([&](WQ::CBaseDialog& picker) {
                shown = &picker;
                QCOMPARE(picker.parentWidget(), m_client->dialog.get());
                checkAccounts(*qobject_cast<QAV::CSelectAccountDialog*>(&picker), {"10001"});
                clickButton(picker, "取消");
            });
            m_client->click("添加账号");
            QVERIFY(shown);
            QCOMPARE(m_client->table()->rowCount(), 0);
            QCoreApplication::sendPostedEvents(shown, QEvent::DeferredDelete);
            QVERIFY(!shown);
        });
        QCOMPARE(m_client->result()->accounts.size(), std::size_t(0));
    }

    void thePickerKnowsTheProductsAndWhatIsListed()
    {
        m_client->addShanghai();
        const AccountPtr known = makeAccount(2, "10003", ShanghaiTag);
        m_client->createDialog().setAccountProductMap({{known->getKey(), makeProduct("远山一号")}});
        m_client->lookAt(makeGroup("组", ShanghaiTag, 101, {known}), "上海分系统", [&] {
            m_client->expectPicker([](QAV::CSelectAccountDialog& picker) {
                auto* const box = picker.findChild<QAV::CUserCombobox*>();
                picker.findChild<WQ::CComboBox*>()->setCurrentText("证券账号");
                QCOMPARE(box->currentText(), QString("已选 1 个账号"));
                checkAccounts(picker, {"10003(远山一号)"});
                QCOMPARE(box->currentText(), QString("请选择账号"));
            });
            m_client->click("添加账号");
            // What is no longer checked stays in the group; accounts leave it by their own button.
            QCOMPARE(m_client->column(1), QStringList("10003"));
        });
    }
};

TEST_WITH_WIDGETS(GroupDialogChoicesTest)
#include "tst_group_dialog_choices.moc"
