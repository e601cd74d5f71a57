// SPDX-License-Identifier: Apache-2.0
#include "editor/EditorFixture.h"
#include "support/TestProgram.h"

#include <WQ/CMessageTip.h>

#include <QAbstractItemView>

using namespace editor_test;

/// The group dialog on installations of one and of several servers, for bound and unbound users.
class GroupDialogServersTest : public EditorTest
{
    Q_OBJECT

private slots:
    void withOneServerThereIsNoChoiceAndNoServerColumn()
    {
        m_client->addShanghai();
        m_client->lookAtNew("上海分系统", [&] {
            QVERIFY(!m_client->systemCombo());
            QVERIFY(!m_client->label("  分系统:"));
            QVERIFY(!m_client->table()->isColumnVisible(2));
            QVERIFY(m_client->institutionEdit()->isVisible());
        });
    }

    void withOneServerEveryAccountThatIsNotExcludedIsOffered()
    {
        m_client->addShanghai().replies[nvservice::DataType::Account] = support::replyWith(
            {makeWrapper(makeAccount(2, "1", ShanghaiTag)), makeWrapper(makeAccount(2, "2", "other")),
             makeWrapper(makeAccount(2, "3", ShanghaiTag), 0, true)});
        m_client->lookAtNew("上海分系统", [&] { QCOMPARE(offered(), QStringList({"证券账号 1", "证券账号 2"})); });
    }

    void withOneServerAccountsOfUnknownTagsAreNotChecked()
    {
        m_client->addShanghai();
        const auto group = makeGroup("组", ShanghaiTag, 101, {makeAccount(2, "1", "gone")});
        const int ended = m_client->editLoaded(group, "上海分系统", [&](WQ::CBaseDialog&) { m_client->click("保存"); });
        QCOMPARE(ended, 1);
    }

    void theTagOfAGroupWithoutAChoiceIsThatOfTheCallersServer()
    {
        m_client->addShanghai();
        m_client->createDialog();
        QCOMPARE(m_client->result("上海分系统")->getSystemTag(), ShanghaiTag);
        // Without a name it is the only server there is.
        QCOMPARE(m_client->result("")->getSystemTag(), ShanghaiTag);
    }

    void aBoundUserOnSeveralServersSeesTheColumnButNoChoice_data()
    {
        const support::DataRows<QString> row("server");
        row("on his server", "上海分系统");
        row("on all servers", "");
    }
    void aBoundUserOnSeveralServersSeesTheColumnButNoChoice()
    {
        QFETCH(QString, server);
        m_client->logIn(102, ShanghaiTag);
        m_client->addBothServers();
        m_client->addLoaded(server, [&](WQ::CBaseDialog&) {
            QVERIFY(m_client->table()->isColumnVisible(2));
            QVERIFY(!m_client->systemCombo());
            QCOMPARE(m_client->institutionEdit()->text(), QString("招商银行"));
            QVERIFY(!m_client->institutionEdit()->isEnabled());
            QVERIFY(!m_client->institutionEdit()->isVisible());
            support::typeText(*m_client->nameEdit(), "组");
            m_client->click("保存");
        });
        const auto group = m_client->result("上海分系统");
        QCOMPARE(group->institutionId, 102);
        QCOMPARE(group->institutionName, std::string("招商银行"));
    }

    void aBoundUsersAccountsOfEveryServerAreOfferedAndPass()
    {
        m_client->logIn(102, ShanghaiTag);
        m_client->addBothServers();
        const int ended = m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog&) {
            QVERIFY(offered().contains("证券账号 20001"));
            QVERIFY(offered().contains("证券账号 10003"));
            m_client->expectPicker([](QAV::CSelectAccountDialog& picker) {
                picker.findChild<WQ::CComboBox*>()->setCurrentText("证券账号");
                checkAccounts(picker, {"20001", "10003"});
            });
            m_client->click("添加账号");
            QCOMPARE(m_client->column(2), QStringList({"上海分系统", "深圳分系统"}));
            support::typeText(*m_client->nameEdit(), "组");
            m_client->click("保存");
        });
        QCOMPARE(ended, 1);
    }

    void theIdMinusOneIsUnbound()
    {
        m_client->logIn(-1, ShanghaiTag);
        m_client->addBothServers();
        m_client->lookAtNew("", [&] {
            QVERIFY(m_client->systemCombo()->isVisible());
            QVERIFY(m_client->institutionEdit()->isEnabled());
        });
    }

    void withoutTheModuleTheInstitutionIsHiddenAndSaveIsRefused_data()
    {
        const support::DataRows<QString> row("modules");
        row("no portal", "return {}");
        row("portal without institutions", "return { mdl_portal = { mdl_portal_pb = false } }");
    }
    void withoutTheModuleTheInstitutionIsHiddenAndSaveIsRefused()
    {
        QFETCH(QString, modules);
        support::switchModules(modules);
        m_client->addShanghai();
        m_client->addLoaded("上海分系统", [&](WQ::CBaseDialog& dialog) {
            QVERIFY(!m_client->institutionEdit()->isVisible());
            support::typeText(*m_client->nameEdit(), "组");
            m_client->click("保存");
            QVERIFY(dialog.isVisible());
            const WQ::CMessageTip* const tip = WQ::CMessageTip::tipOf(m_client->institutionEdit());
            QVERIFY(tip);
            QVERIFY(tip->isVisible());
            QCOMPARE(tip->text(), QString("所属机构不能为空!"));
            m_client->click("关闭");
        });
    }

    void withoutTheModuleAnEditedGroupKeepsItsInstitution()
    {
        support::switchModules("return {}");
        m_client->addShanghai();
        const int ended = m_client->editLoaded(makeGroup("组", ShanghaiTag, 101, {}), "上海分系统",
                                               [&](WQ::CBaseDialog&) { m_client->click("保存"); });
        QCOMPARE(ended, 1);
        QCOMPARE(m_client->result()->institutionId, 101);
        QCOMPARE(m_client->result()->institutionName, std::string("远山基金"));
    }

    void theChoiceListsTheServersByName()
    {
        m_client->addShenzhen();
        m_client->addShanghai();
        m_client->createDialog();
        QCOMPARE(m_client->systemCombo()->count(), 2);
        QCOMPARE(m_client->systemCombo()->itemText(0), QString("上海分系统"));
        QCOMPARE(m_client->systemCombo()->itemText(1), QString("深圳分系统"));
        QVERIFY(!m_client->systemCombo()->itemData(0).isValid());
    }

    void aFixedServerHidesTheChoiceAndSelectsIt()
    {
        m_client->addBothServers();
        m_client->lookAtNew("深圳分系统", [&] {
            QVERIFY(!m_client->systemCombo()->isVisible());
            QVERIFY(!m_client->label("  分系统:")->isVisible());
            QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
        });
        // A name that no server has leaves the choice where it is.
        m_client->dialog->setServerName("北京分系统");
        QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
    }

    void anOpenServerShowsTheChoice()
    {
        m_client->addBothServers();
        m_client->createDialog().setServerName("深圳分系统");
        m_client->lookAtNew("", [&] {
            QVERIFY(m_client->systemCombo()->isVisible());
            QVERIFY(m_client->label("  分系统:")->isVisible());
            QVERIFY(m_client->systemCombo()->isEnabled());
        });
    }

    void onlyAccountsOfTheChosenServerAreOffered()
    {
        m_client->addBothServers();
        m_client->lookAtNew("", [&] {
            m_client->systemCombo()->setFocus();
            QTest::keyClick(m_client->systemCombo(), Qt::Key_End);
            QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
            QCOMPARE(offered(), QStringList({"证券账号 20001", "证券账号 20002"}));
            QTest::keyClick(m_client->systemCombo(), Qt::Key_Home);
            QCOMPARE(offered(),
                     QStringList({"期货账号 10001", "证券账号 10002", "证券账号 10002-A", "证券账号 10003"}));
        });
    }

    void theChosenServerGoesIntoTheGroup()
    {
        m_client->addBothServers();
        m_client->add("深圳分系统", [](WQ::CBaseDialog& dialog) { dialog.done(0); });
        const auto group = boost::make_shared<nvservice::CAccountGroup>();
        QString serverName("上海分系统");
        m_client->dialog->getGroupInfo(group, serverName);
        QCOMPARE(serverName, QString("深圳分系统"));
        QCOMPARE(group->getSystemTag(), ShenzhenTag);
    }

    void choosingAnInstitutionFixesItsServer()
    {
        m_client->addBothServers();
        m_client->addLoaded("", [&](WQ::CBaseDialog&) {
            m_client->chooseInstitution("南海信托");
            QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
            QVERIFY(!m_client->systemCombo()->isVisible());
            support::typeText(*m_client->nameEdit(), "组");
            // The institution that was chosen stays chosen when the institutions of its server have come.
            QTRY_COMPARE(m_client->shenzhen.queries(nvservice::DataType::Institution), 2);
            QCOMPARE(m_client->institutionEdit()->text(), QString("南海信托"));
            m_client->click("保存");
        });
        const auto group = m_client->result();
        QCOMPARE(group->institutionId, 201);
        QCOMPARE(group->getSystemTag(), ShenzhenTag);
    }

    void givingUpTheInstitutionShowsTheRowWithoutChoice()
    {
        m_client->addBothServers();
        m_client->lookAtNew("", [&] {
            QWidget* const row = m_client->systemCombo()->parentWidget();
            m_client->chooseInstitution("远山基金");
            QVERIFY(!row->isVisible());
            m_client->institutionEdit()->selectAll();
            QTest::keyClick(m_client->institutionEdit(), Qt::Key_Delete);
            QVERIFY(row->isVisible());
            QVERIFY(!m_client->systemCombo()->isVisible());
        });
    }

    void inEditModeTheChoiceIsFixedAndInAddModeFree()
    {
        m_client->addBothServers();
        m_client->createDialog().setServerName("");
        m_client->lookAt(makeGroup("组", ShenzhenTag, 201, {}), "深圳分系统", [&] {
            QVERIFY(m_client->systemCombo()->isVisible());
            QVERIFY(!m_client->systemCombo()->isEnabled());
            QCOMPARE(m_client->systemCombo()->currentText(), QString("深圳分系统"));
            QVERIFY(m_client->institutionEdit()->isEnabled());
        });
        m_client->lookAtNew("", [&] { QVERIFY(m_client->systemCombo()->isEnabled()); });
    }

    void editingAGroupOfAnotherServerOffersItsInstitutions()
    {
        m_client->addBothServers();
        m_client->add("上海分系统", [](WQ::CBaseDialog& dialog) { dialog.done(0); });
        m_client->lookAt(makeGroup("组", ShenzhenTag, 201, {}), "深圳分系统", [&] {
            QCOMPARE(m_client->institutionEdit()->text(), QString("南海信托"));
            m_client->chooseInstitution("远山基金");
            QCOMPARE(m_client->institutionEdit()->text(), QString());
        });
    }

    void closedAndExcludedAccountsAreNeverOffered()
    {
        m_client->addShanghai().replies[nvservice::DataType::Account] = support::replyWith(
            {makeWrapper(makeAccount(2, "1", ShanghaiTag), 5), makeWrapper(makeAccount(2, "2", ShanghaiTag), 5, true),
             makeWrapper(makeAccount(2, "3", ShanghaiTag), 4), makeWrapper(makeAccount(2, "4", ShanghaiTag), 0, true)});
        m_client->lookAtNew("上海分系统", [&] { QCOMPARE(offered(), QStringList("证券账号 3")); });
    }

private:
    /// Types and texts that the picker offers: "证券账号 10002(未关联产品)".
    QStringList offered()
    {
        QStringList texts;
        m_client->boxes.expectDialog([&](WQ::CBaseDialog& picker) {
            auto* const types = picker.findChild<WQ::CComboBox*>();
            auto* const box = picker.findChild<QAV::CUserCombobox*>();
            for (int i = 0; i < types->count(); ++i) {
                types->setCurrentIndex(i);
                box->showPopup();
                const auto* const items = box->findChild<QAbstractItemView*>("items")->model();
                for (int row = 0; row < items->rowCount(); ++row) {
                    texts << types->currentText() + ' ' + items->index(row, 0).data().toString().section('(', 0, 0);
                }
                box->hidePopup();
            }
            clickButton(picker, "取消");
        });
        m_client->click("添加账号");
        return texts;
    }
};

TEST_WITH_WIDGETS(GroupDialogServersTest)
#include "tst_group_dialog_servers.moc"
