// SPDX-License-Identifier: Apache-2.0
#include "GroupEditor.h"
#include "Hands.h"
#include "OtherDesk.h"
#include "TourTest.h"
#include "support/qav/Client.h"

using namespace tour;

/// What the user is told when the service refuses an operation, and that nothing is half done then. The steps build on
/// each other, in the order in which they are declared.
class TourRefusalsTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        startAsAdmin("3-refusals");
        m_editor = std::make_unique<OtherDesk>(m_client->databaseFile(), Shanghai, "editor", "editor123");
        m_deleter = std::make_unique<OtherDesk>(m_client->databaseFile(), Shanghai, "deleter", "deleter123");
        m_futures = database().usableAccounts(Shanghai, InstitutionId, Future);
        QVERIFY(m_futures.size() > 2);
    }

    void anEditOfAGroupThatSomebodyChangedNamesHimAndTheTime()
    {
        const QString name = m_client->shown(NameColumn).at(0);
        const QString id = key(name);
        const QStringList members = database().members(Shanghai, name);
        const QStringList shown = m_client->shownRows();
        const QString why = QString("账号组“改名一组”已被账号组维护员（editor）于%1修改，请刷新后重试").arg(Time);
        edit(
            name, "我的名称",
            [&] {
                QCOMPARE(m_editor->modify(name, [](auto& group) { group.groupName = "改名一组"; }), QString());
                QCOMPARE(database().newAudit(), QStringList("SH01|editor|0|625|" + id + "|0|"));
            },
            boxLike("提示", QRegularExpression("编辑账号组失败!\\(" + why + "\\)"), "确定",
                    [&](QWidget&) { m_client->pictures("changed-by-somebody"); }));
        verifyAudit("SH01|admin|0|625|" + id + "|", QRegularExpression(why));
        QVERIFY(database().group(Shanghai, "改名一组").endsWith("|2|editor"));
        QCOMPARE(database().members(Shanghai, "改名一组"), members);
        QCOMPARE(m_client->shownRows(), shown);

        // Once refreshed, the user has the other one's state and may change it.
        m_client->refresh();
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
        edit("改名一组", name, [] {}, box("提示", "编辑账号组成功!", "确定"));
        QCOMPARE(database().newAudit(), QStringList("SH01|admin|0|625|" + id + "|0|"));
        QVERIFY(database().group(Shanghai, name).endsWith("|3|admin"));
    }

    void aDeleteOfAGroupThatSomebodyChangedNamesHimAndTheTime()
    {
        const QString name = m_client->shown(NameColumn).at(1);
        const QString id = key(name);
        const QStringList shown = m_client->shownRows();
        const QString why = QString("账号组“%1”已被账号组维护员（editor）于%2修改，请刷新后重试").arg(name, Time);
        remove(
            name,
            [&] {
                QCOMPARE(m_editor->modify(name, [](auto& group) { group.accounts.resize(1); }), QString());
                database().newAudit();
            },
            boxLike("提示", QRegularExpression("删除账号组失败!\\(" + why + "\\)"), "确定",
                    kept("delete-of-a-changed-group")));
        verifyAudit("SH01|admin|3|625|" + id + "|", QRegularExpression(why));
        QVERIFY(database().group(Shanghai, name).endsWith("|2|editor"));
        QCOMPARE(m_client->shownRows(), shown);
        m_client->refresh();
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

    void aGroupThatSomebodyDeletedIsNeitherEditedNorDeleted()
    {
        const QString name = m_client->shown(NameColumn).at(2);
        const QString id = key(name);
        const QStringList shown = m_client->shownRows();
        const QString why = QString("账号组已被账号组清理员（deleter）于%1删除").arg(Time);
        edit(
            name, "还想改名",
            [&] {
                QCOMPARE(m_deleter->remove(name), QString());
                database().newAudit();
            },
            boxLike("提示", QRegularExpression("编辑账号组失败!\\(" + why + "\\)"), "确定",
                    kept("edit-of-a-deleted-group")));
        verifyAudit("SH01|admin|0|625|" + id + "|", QRegularExpression(why));
        QCOMPARE(m_client->shownRows(), shown);
        remove(
            name, [] {},
            boxLike("提示", QRegularExpression("删除账号组失败!\\(" + why + "\\)"), "确定",
                    kept("delete-of-a-deleted-group")));
        verifyAudit("SH01|admin|3|625|" + id + "|", QRegularExpression(why));
        QCOMPARE(m_client->shownRows(), shown);
        m_client->refresh();
        QVERIFY(!m_client->shown(NameColumn).contains(name));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

    void anAccountThatWasClosedMeanwhileIsNotAdded()
    {
        const QString account = m_futures[1];
        const QString change = "UPDATE account SET state_code = ? WHERE account_id = ?";
        const QString why = QString("账号“%1”已销户，不能加入账号组").arg(account);
        add(
            "销户一组", [&] { database().change(change, {5, account}); },
            box("提示", "添加账号组失败!(" + why + ")", "确定", kept("account-closed")));
        verifyAudit("SH01|admin|2|625|", QRegularExpression(QRegularExpression::escape(why)));
        QCOMPARE(database().group(Shanghai, "销户一组"), QString());
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));

        // From now on it is not offered any more.
        m_client->addGroup({adding([&](const GroupEditor& editor) {
            editor.pick([&](QWidget& opened) {
                const AccountPicker picker(opened);
                choose(picker.type(), "期货账号");
                const QString offers = picker.offers().join(' ');
                QVERIFY(offers.contains(m_futures[0]));
                QVERIFY(!offers.contains(account));
                clickButton(opened, "取消");
            });
            editor.close();
        })});
        database().change(change, {0, account});
    }

    void aNameThatTheServiceDoesNotTakeIsExplained()
    {
        const QString longName(65, QChar(0x957f));
        const QString why = "账号组名称不能超过64个字符";
        add(longName, [] {}, box("提示", "添加账号组失败!(" + why + ")", "确定", kept("name-too-long")));
        verifyAudit("SH01|admin|2|625|", QRegularExpression(why));
        QCOMPARE(database().group(Shanghai, longName), QString());
        add(longName.left(64), [] {}, box("提示", "添加账号组成功!", "确定"));
        QCOMPARE(database().newAudit(), QStringList("SH01|admin|2|625|" + key(longName.left(64)) + "|0|"));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
        m_client->search(longName.left(64));
        m_client->picture("longest-name");
        m_client->search(QString());
    }

    void aRightThatWasTakenAwayMeanwhileIsMissed()
    {
        const QString rights = "(SELECT id FROM app_user WHERE login = 'admin' AND server_id ="
                               " (SELECT id FROM sub_system WHERE system_tag = 'SH01'))";
        const auto take = [&](int right) {
            database().change("DELETE FROM user_right WHERE right_id = ? AND user_id = " + rights, {right});
        };
        const auto give = [&](int right) {
            database().change("INSERT INTO user_right (user_id, right_id) VALUES (" + rights + ", ?)", {right});
        };
        const QStringList shown = m_client->shownRows();
        const QString name = m_client->shown(NameColumn).at(0);
        add(
            "无权一组", [&] { take(10717); },
            box("提示", "添加账号组失败!(您没有添加账号组的权限)", "确定", kept("right-taken-away")));
        verifyAudit("SH01|admin|2|625|", QRegularExpression("您没有添加账号组的权限"));
        edit(name, "无权二组", [] {}, box("提示", "编辑账号组失败!(您没有编辑账号组的权限)", "确定"));
        verifyAudit("SH01|admin|0|625|", QRegularExpression("您没有编辑账号组的权限"));
        remove(name, [&] { take(10721); }, box("提示", "删除账号组失败!(您没有删除账号组的权限)", "确定"));
        verifyAudit("SH01|admin|3|625|", QRegularExpression("您没有删除账号组的权限"));

        // The right of an account type, too.
        give(10717);
        const QString why = QString("您没有期货账号的权限，不能添加账号“%1”").arg(m_futures[1]);
        add("无权三组", [&] { take(10037); }, box("提示", "添加账号组失败!(" + why + ")", "确定"));
        verifyAudit("SH01|admin|2|625|", QRegularExpression(why));
        give(10721);
        give(10037);
        QCOMPARE(m_client->shownRows(), shown);
        QCOMPARE(database().groups(Shanghai), shown);
    }

    void anAnswerThatComesTooLateLeavesTheOutcomeOpen()
    {
        const std::chrono::milliseconds deadline(700);
        add(
            "迟到一组",
            [&] {
                database().lock();
                support::centre().setDeadline(deadline);
            },
            box("提示", "添加账号组失败!(分系统“上海分系统”未应答：超过 700 毫秒，未知是否已执行)", "确定",
                [&](QWidget&) {
                    database().unlock();
                    support::centre().setDeadline(std::chrono::seconds(30));
                    m_client->picture("too-late");
                }));
        QVERIFY(!m_client->shown(NameColumn).contains("迟到一组"));
        // This time it was carried out.
        QTRY_VERIFY_WITH_TIMEOUT(database().groupId(Shanghai, "迟到一组") > 0, 60000);
        QCOMPARE(database().newAudit(), QStringList("SH01|admin|2|625|" + key("迟到一组") + "|0|"));
        m_client->refresh();
        QVERIFY(m_client->shown(NameColumn).contains("迟到一组"));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

    void aServerThatCannotBeReachedIsNamed()
    {
        const QStringList before = database().groups(Shanghai);
        const QString name = m_client->shown(NameColumn).at(0);
        m_client->unplug(Shanghai);
        // The accounts of the other servers are there, and the box says whose are missing.
        m_client->pressGroupButton(
            name, "编辑",
            {over("编辑账号组", boxLike("提示", QRegularExpression("分系统“上海分系统”：.*服务端拒绝连接或没有启动.*"),
                                        "确定", kept("accounts-of-one-server-missing"))),
             editing([&](const GroupEditor& editor) {
                 QVERIFY(!editor.accounts().isEmpty());
                 editor.typeName("断线一组");
                 editor.save();
             }),
             boxLike("提示", QRegularExpression("编辑账号组失败!\\(.*服务端拒绝连接或没有启动.*\\)"), "确定",
                     kept("server-not-reachable"))});
        remove(
            name, [] {},
            boxLike("提示", QRegularExpression("删除账号组失败!\\(.*服务端拒绝连接或没有启动.*\\)"), "确定"));
        QCOMPARE(m_client->shownRows(), before);
        m_client->refresh();
        QCOMPARE(m_client->shownRows(), QStringList());
        m_client->picture("no-groups-without-server");
        QCOMPARE(database().groups(Shanghai), before);

        m_client->plugIn();
        m_client->start("admin", "admin123");
        QCOMPARE(m_client->window().currentServer(), Shanghai);
        QCOMPARE(m_client->shownRows(), before);
    }

private:
    void add(const QString& name, const std::function<void()>& meanwhile, const Stage& outcome)
    {
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                editor.typeName(name);
                                editor.typeInstitution("砚池");
                                editor.pick("期货账号", {m_futures[1]});
                                meanwhile();
                                editor.save();
                            }),
                            outcome});
    }

    void edit(const QString& group, const QString& newName, const std::function<void()>& meanwhile,
              const Stage& outcome)
    {
        m_client->pressGroupButton(group, "编辑",
                                   {editing([&](const GroupEditor& editor) {
                                        editor.typeName(newName);
                                        meanwhile();
                                        editor.save();
                                    }),
                                    outcome});
    }

    void remove(const QString& group, const std::function<void()>& meanwhile, const Stage& outcome)
    {
        m_client->pressGroupButton(group, "删除",
                                   {box("提示", "确定要删除该项?", "是", [&](QWidget&) { meanwhile(); }), outcome});
    }

    /// The one new audit row; its message is the last thing in it.
    void verifyAudit(const QString& begin, const QRegularExpression& message)
    {
        const QStringList rows = database().newAudit();
        QCOMPARE(rows.size(), 1);
        QVERIFY2(rows[0].startsWith(begin), qPrintable(rows[0]));
        const QRegularExpression whole(QRegularExpression::anchoredPattern(message.pattern()));
        QVERIFY2(whole.match(rows[0].section('|', -1)).hasMatch(), qPrintable(rows[0]));
        QVERIFY2(rows[0].section('|', -2, -2) != "0", qPrintable(rows[0]));
    }

    std::function<void(QWidget&)> kept(const QString& name)
    {
        return [this, name](QWidget&) { m_client->picture(name); };
    }

    std::unique_ptr<OtherDesk> m_editor;
    std::unique_ptr<OtherDesk> m_deleter;
    QStringList m_futures;
};

TEST_WITH_WIDGETS(TourRefusalsTest)
#include "tst_tour_refusals.moc"
