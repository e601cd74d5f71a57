// SPDX-License-Identifier: Apache-2.0
#include "GroupEditor.h"
#include "Hands.h"
#include "TourTest.h"

using namespace tour;

/// A user who looks at all servers at once says on which one a new group is to be.
class TourServersTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_client = std::make_unique<TourClient>("8-servers");
        m_client->start("admin", "admin123");
    }

    void inAllServersTheUserChoosesTheServer()
    {
        const QString shenzhen = "深圳分系统";
        const QStringList futures = database().usableAccounts(shenzhen, InstitutionId, Future);
        QVERIFY(!futures.isEmpty());
        m_client->chooseServer(QString());
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                QVERIFY(editor.server() && editor.server()->isVisible() &&
                                        editor.server()->isEnabled());
                                QCOMPARE(editor.server()->count(), 3);
                                m_client->pictures("add-on-any-server");
                                choose(*editor.server(), shenzhen);
                                editor.pick("期货账号", {futures[0]});
                                editor.typeName("深圳一组");
                                retype(editor.institution(), "yczq");
                                m_client->pictures("institutions-of-every-server");
                                editor.pickInstitution("yczq", Institution + " (深圳分系统)");
                                // The institution says which server it is.
                                QVERIFY(!editor.server()->isVisible());
                                editor.save();
                            }),
                            box("提示", "添加账号组成功!", "确定")});
        QCOMPARE(m_client->shownRows(), QStringList());
        QCOMPARE(database().group(shenzhen, "深圳一组"), Institution + "|1|admin");
        QCOMPARE(database().members(shenzhen, "深圳一组"), QStringList("1:" + futures[0]));
        const QString id = QString::number(database().groupId(shenzhen, "深圳一组"));
        QCOMPARE(database().newAudit(), QStringList({"SZ01|admin|2|625|SZ01|" + id + "|0|"}));
        m_client->chooseServer(shenzhen);
        QCOMPARE(m_client->shownRows(), database().groups(shenzhen));

        // A group stays on its server.
        m_client->pressGroupButton("深圳一组", "编辑", {editing([&](const GroupEditor& editor) {
                                       QCOMPARE(editor.server()->currentText(), shenzhen);
                                       QVERIFY(!editor.server()->isEnabled());
                                       editor.close();
                                   })});
    }

    void anAccountOfAnotherServerIsRefused()
    {
        const QString future = database().usableAccounts(Shanghai, InstitutionId, Future).at(0);
        m_client->chooseServer(QString());
        m_client->addGroup({adding([&](const GroupEditor& editor) {
            choose(*editor.server(), Shanghai);
            editor.pick("期货账号", {future});
            editor.typeName("跨分系统组");
            editor.pickInstitution("yczq", Institution + " (深圳分系统)");
            const QString text = QString("账号%1 必须与账号组 分系统相同！").arg(future);
            play([&] { editor.save(); },
                 {box("错误", text, "确定", [&](QWidget&) { m_client->picture("account-of-another-server"); })});
            QCOMPARE(editor.accounts(), QStringList(future));
            editor.close();
        })});
        m_client->chooseServer(Shanghai);
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }
};

TEST_WITH_WIDGETS(TourServersTest)
#include "tst_tour_servers.moc"
