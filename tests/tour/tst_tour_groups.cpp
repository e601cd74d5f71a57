// SPDX-License-Identifier: Apache-2.0
#include "GroupEditor.h"
#include "Hands.h"
#include "OtherDesk.h"
#include "TourTest.h"

#include <WQ/CMessageTip.h>

#include <QPushButton>

using namespace tour;

/// Groups are added, edited and deleted on an installation with three servers, by a user who may do everything. The
/// steps build on each other, in the order in which they are declared.
class TourGroupsTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        startAsAdmin("2-groups");
        m_futures = database().usableAccounts(Shanghai, InstitutionId, Future);
        m_stocks = database().usableAccounts(Shanghai, InstitutionId, Stock);
        for (const int type : {Future, Stock}) {
            m_units += database().usableAccounts(Shanghai, InstitutionId, type, true);
        }
        QVERIFY(m_futures.size() > 2 && m_stocks.size() > 2 && !m_units.isEmpty());
    }

    void aGroupWithoutNameInstitutionOrAccountsIsNotSent()
    {
        const QStringList before = database().groups(Shanghai);
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                m_client->pictures("add");
                                editor.save();
                                QCOMPARE(editor.nameTip(), QString("账号组名称,不能为空"));
                                QCOMPARE(editor.institutionTip(), QString("所属机构不能为空!"));
                                QTRY_COMPARE(WQ::CMessageTip::tipOf(&editor.institution())->opacity(), 1.0);
                                m_client->pictures("nothing-filled-in");
                                editor.typeName("   ");
                                editor.typeInstitution("yczq");
                                QCOMPARE(editor.institution().text(), Institution);
                                editor.save();
                                QCOMPARE(editor.nameTip(), QString("账号组名称,不能为空"));
                                editor.typeName("  量化一组 ");
                                editor.save();
                            }),
                            box("保存账号组", "保存账号组失败: 请选择账号!", "确定",
                                [&](QWidget&) { m_client->pictures("no-accounts"); }),
                            adding([&](const GroupEditor& editor) {
                                QCOMPARE(editor.name().text(), QString("  量化一组 "));
                                QCOMPARE(editor.institution().text(), Institution);
                                editor.close();
                            })});
        QCOMPARE(database().groups(Shanghai), before);
        QCOMPARE(m_client->shownRows(), before);
    }

    void aGroupIsAddedWithAccountsOfSeveralTypes()
    {
        m_client->addGroup(
            {adding([&](const GroupEditor& editor) {
                 // The form is a fresh one.
                 QCOMPARE(editor.name().text(), QString());
                 editor.typeName("量化一组");
                 editor.typeInstitution("砚池");
                 editor.pick([&](QWidget& opened) {
                     const AccountPicker picker(opened);
                     QVERIFY(!picker.types().contains("全业务账号"));
                     QVERIFY(!picker.types().contains("理财账号"));
                     choose(picker.type(), "期货账号");
                     click(picker.box());
                     m_client->pictures("picker");
                     click(picker.box());
                     picker.toggle({m_futures[0], m_futures[1]});
                     m_client->picture("picker-two-checked");
                     clickButton(opened, "确定");
                 });
                 QCOMPARE(editor.accounts(), m_futures.mid(0, 2));
                 // What is in the group is checked; what was checked of another type stays in the group.
                 editor.pick([&](QWidget& opened) {
                     const AccountPicker picker(opened);
                     choose(picker.type(), "期货账号");
                     QCOMPARE(picker.box().checkedCount(), 2);
                     choose(picker.type(), "证券账号");
                     QCOMPARE(picker.box().checkedCount(), 0);
                     picker.toggle({m_stocks[1]});
                     clickButton(opened, "确定");
                 });
                 editor.pick([](QWidget& opened) { clickButton(opened, "确定"); });
                 QCOMPARE(editor.accounts(), m_futures.mid(0, 2) << m_stocks[1]);
                 QCOMPARE(editor.accounts(MemberTypeColumn), QStringList({"期货账号", "期货账号", "证券账号"}));
                 QCOMPARE(editor.accounts(MemberServerColumn), QStringList({Shanghai, Shanghai, Shanghai}));
                 m_client->pictures("accounts-added");
                 editor.removeAccount(m_futures[0], "否");
                 QCOMPARE(editor.accounts().size(), 3);
                 editor.removeAccount(m_futures[0], "是");
                 QCOMPARE(editor.accounts(), QStringList({m_futures[1], m_stocks[1]}));
                 editor.save();
             }),
             box("提示", "添加账号组成功!", "确定", [&](QWidget&) { m_client->pictures("added"); })});

        QCOMPARE(database().group(Shanghai, "量化一组"), Institution + "|1|admin");
        QCOMPARE(database().members(Shanghai, "量化一组"), QStringList({"1:" + m_futures[1], "2:" + m_stocks[1]}));
        QCOMPARE(database().newAudit(), QStringList({"SH01|admin|2|625|" + key("量化一组") + "|0|"}));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
        m_client->search("量化一组");
        m_client->picture("row-of-the-new-group");
        m_client->search(QString());
    }

    void anAccountIsNotPickedTogetherWithItsOwnUnit()
    {
        const QString unit = m_units.first();
        const QString account = unit.section('-', 0, 0);
        const QString type = m_futures.contains(account) ? "期货账号" : "证券账号";
        m_client->addGroup({adding([&](const GroupEditor& editor) {
            editor.pick([&](QWidget& opened) {
                const AccountPicker picker(opened);
                choose(picker.type(), type);
                picker.toggle({unit, account});
                const QString text = QString("账号和下属账号单元不能配在同一组中!(%1 %2)").arg(account, unit);
                play([&] { clickButton(opened, "确定"); },
                     {box("错误提示", text, "确定", [&](QWidget&) { m_client->pictures("account-and-unit"); })});
                QCOMPARE(picker.box().checkedCount(), 2);
                picker.toggle({account});
                clickButton(opened, "确定");
            });
            QCOMPARE(editor.accounts(), QStringList(unit));
            editor.close();
        })});
        QCOMPARE(database().groups(Shanghai), m_client->shownRows());
    }

    void aNameThatTheTableShowsIsRefusedBeforeItIsSent()
    {
        const QStringList before = database().groups(Shanghai);
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                editor.typeName("量化一组");
                                editor.typeInstitution("砚池");
                                editor.pick("期货账号", {m_futures[2]});
                                editor.save();
                            }),
                            box("保存账号组", "保存账号组失败: 已存在相同的账号组名称!", "确定",
                                [&](QWidget&) { m_client->picture("name-in-the-table"); }),
                            adding([&](const GroupEditor& editor) {
                                QCOMPARE(editor.name().text(), QString("量化一组"));
                                QCOMPARE(editor.accounts(), QStringList(m_futures[2]));
                                m_client->picture("form-kept");
                                editor.typeName("量化一组a");
                                editor.save();
                            }),
                            box("提示", "添加账号组成功!", "确定")});
        QCOMPARE(database().groups(Shanghai).size(), before.size() + 1);
        QCOMPARE(database().newAudit(), QStringList({"SH01|admin|2|625|" + key("量化一组a") + "|0|"}));

        // Another letter case is another name.
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                editor.typeName("量化一组A");
                                editor.typeInstitution("砚池");
                                editor.pick("期货账号", {m_futures[2]});
                                editor.save();
                            }),
                            box("提示", "添加账号组成功!", "确定")});
        QCOMPARE(database().newAudit(), QStringList({"SH01|admin|2|625|" + key("量化一组A") + "|0|"}));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

    void aNameThatSomebodyTookMeanwhileIsRefusedByTheService()
    {
        OtherDesk editor(m_client->databaseFile(), Shanghai, "editor", "editor123");
        QCOMPARE(editor.add("抢先一组", "量化一组"), QString());
        QCOMPARE(database().newAudit(), QStringList({"SH01|editor|2|625|" + key("抢先一组") + "|0|"}));
        const QStringList shown = m_client->shownRows();
        m_client->addGroup({adding([&](const GroupEditor& form) {
                                form.typeName("抢先一组");
                                form.typeInstitution("砚池");
                                form.pick("期货账号", {m_futures[2]});
                                form.save();
                            }),
                            box("提示", "添加账号组失败!(账号组名称“抢先一组”已被使用)", "确定",
                                [&](QWidget&) { m_client->picture("name-taken-meanwhile"); })});
        QCOMPARE(m_client->shownRows(), shown);
        const QStringList audit = database().newAudit();
        QCOMPARE(audit.size(), 1);
        QVERIFY2(audit[0].startsWith("SH01|admin|2|625|"), qPrintable(audit[0]));
        QVERIFY2(audit[0].endsWith("|账号组名称“抢先一组”已被使用"), qPrintable(audit[0]));
        m_client->refresh();
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
        QVERIFY(m_client->shown(NameColumn).contains("抢先一组"));
    }

    void aGroupIsEditedAndKeepsItsName()
    {
        const QString id = key("量化一组");
        m_client->pressGroupButton(
            "量化一组", "编辑",
            {editing([&](const GroupEditor& editor) {
                 QCOMPARE(editor.name().text(), QString("量化一组"));
                 QCOMPARE(editor.institution().text(), Institution);
                 QCOMPARE(editor.accounts(), QStringList({m_futures[1], m_stocks[1]}));
                 m_client->pictures("edit");
                 editor.removeAccount(m_futures[1], "是");
                 editor.removeAccount(m_stocks[1], "是");
                 editor.save();
             }),
             box("保存账号组", "保存账号组失败: 请选择账号!", "确定"), editing([&](const GroupEditor& editor) {
                 QCOMPARE(editor.accounts(), QStringList());
                 editor.pick("证券账号", {m_stocks[0]});
                 editor.pick("期货账号", {m_futures[0]});
                 editor.save();
             }),
             box("提示", "编辑账号组成功!", "确定", [&](QWidget&) { m_client->picture("edited"); })});
        QCOMPARE(database().group(Shanghai, "量化一组"), Institution + "|2|admin");
        QCOMPARE(database().members(Shanghai, "量化一组"), QStringList({"2:" + m_stocks[0], "1:" + m_futures[0]}));
        QCOMPARE(database().newAudit(), QStringList({"SH01|admin|0|625|" + id + "|0|"}));

        m_client->pressGroupButton(
            "量化一组", "编辑",
            {editing([&](const GroupEditor& editor) {
                 editor.typeName("量化一组a");
                 editor.save();
             }),
             box("保存账号组", "保存账号组失败: 已存在相同的账号组名称!", "确定"),
             editing([&](const GroupEditor& editor) {
                 editor.typeName("量化二组");
                 editor.typeInstitution("qwjj");
                 editor.save();
             }),
             // The accounts belong to the former institution.
             boxLike("提示", QRegularExpression("编辑账号组失败!\\(账号“.+”不属于账号组的所属机构\\)"), "确定",
                     [&](QWidget&) { m_client->picture("accounts-of-another-institution"); })});
        QCOMPARE(database().group(Shanghai, "量化一组"), Institution + "|2|admin");
        QVERIFY(database().newAudit().value(0).startsWith("SH01|admin|0|625|" + id));

        m_client->pressGroupButton("量化一组", "编辑",
                                   {editing([&](const GroupEditor& editor) {
                                        QCOMPARE(editor.institution().text(), Institution);
                                        editor.typeName("量化二组");
                                        editor.save();
                                    }),
                                    box("提示", "编辑账号组成功!", "确定")});
        QCOMPARE(database().newAudit(), QStringList({"SH01|admin|0|625|" + id + "|0|"}));
        QCOMPARE(key("量化二组"), id);
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

    void anEditThatIsClosedChangesNothing()
    {
        const QStringList before = database().groups(Shanghai);
        m_client->pressGroupButton("量化二组", "编辑", {editing([&](const GroupEditor& editor) {
                                       editor.typeName("不要的名称");
                                       editor.removeAccount(m_futures[0], "是");
                                       editor.close();
                                   })});
        // The working copy is gone, too.
        m_client->pressGroupButton("量化二组", "编辑", {editing([&](const GroupEditor& editor) {
                                       QCOMPARE(editor.name().text(), QString("量化二组"));
                                       QCOMPARE(editor.accounts(), QStringList({m_stocks[0], m_futures[0]}));
                                       QTest::keyClick(editor.name().window(), Qt::Key_Escape);
                                   })});
        QCOMPARE(database().groups(Shanghai), before);
        QCOMPARE(m_client->shownRows(), before);
    }

    void aGroupIsDeletedOnlyAfterYes()
    {
        const QStringList before = database().groups(Shanghai);
        m_client->pressGroupButton("量化二组", "删除", {box("提示", "确定要删除该项?", "否", [&](QWidget&) {
                                       m_client->pictures("delete");
                                   })});
        QCOMPARE(database().groups(Shanghai), before);
        QCOMPARE(m_client->shownRows(), before);

        const QString id = key("量化二组");
        m_client->pressGroupButton(
            "量化二组", "删除",
            {box("提示", "确定要删除该项?", "是"),
             box("提示", "删除账号组成功!", "确定", [&](QWidget&) { m_client->picture("deleted"); })});
        QCOMPARE(database().groupId(Shanghai, "量化二组"), 0);
        QCOMPARE(database().groups(Shanghai).size(), before.size() - 1);
        QCOMPARE(database().newAudit(), QStringList({"SH01|admin|3|625|" + id + "|0|"}));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

private:
    QStringList m_futures;
    QStringList m_stocks;
    QStringList m_units;
};

TEST_WITH_WIDGETS(TourGroupsTest)
#include "tst_tour_groups.moc"
