// SPDX-License-Identifier: Apache-2.0
#include "GroupEditor.h"
#include "Hands.h"
#include "RiskSettings.h"
#include "TourTest.h"

using namespace tour;

/// An installation with one server: nobody is asked for it and nothing names it.
class TourSingleServerTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase() { m_client = std::make_unique<TourClient>("7-single-server", 1); }

    void everyFlowWorksWithoutTheChoiceOfAServer_data()
    {
        const support::DataRows<bool> row("isBound");
        row("admin", false);
        row("bound", true);
    }
    void everyFlowWorksWithoutTheChoiceOfAServer()
    {
        QFETCH(bool, isBound);
        const QString user = QTest::currentDataTag();
        const int scope = isBound ? InstitutionId : 0;
        m_client->start(user, user + "123");
        m_client->chooseServer(Shanghai);
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai, scope));
        QVERIFY(!m_client->table().isColumnVisible(ServerColumn));
        m_client->pictures("groups-" + user);

        const QStringList futures = database().usableAccounts(Shanghai, InstitutionId, Future);
        QVERIFY(futures.size() > 1);
        m_client->addGroup({adding([&](const GroupEditor& editor) {
                                QVERIFY(!editor.server());
                                QVERIFY(!editor.table().isColumnVisible(MemberServerColumn));
                                QCOMPARE(editor.institution().isVisible(), !isBound);
                                editor.typeName("单机一组");
                                if (!isBound) {
                                    editor.typeInstitution("砚池");
                                }
                                editor.pick("期货账号", {futures[0]});
                                m_client->pictures("add-" + user);
                                editor.save();
                            }),
                            box("提示", "添加账号组成功!", "确定")});
        const int group = database().groupId(Shanghai, "单机一组");
        const QString key = QString("SH01|%1|0|").arg(group);
        const QString begin = "SH01|" + user;
        QCOMPARE(database().newAudit(), QStringList(begin + "|2|625|" + key));
        QCOMPARE(database().group(Shanghai, "单机一组"), Institution + "|1|" + user);

        m_client->pressGroupButton("单机一组", "编辑",
                                   {editing([&](const GroupEditor& editor) {
                                        QCOMPARE(editor.institution().text(), Institution);
                                        editor.pick("期货账号", {futures[1]});
                                        editor.save();
                                    }),
                                    box("提示", "编辑账号组成功!", "确定")});
        QCOMPARE(database().newAudit(), QStringList(begin + "|0|625|" + key));
        QCOMPARE(database().members(Shanghai, "单机一组"), QStringList({"1:" + futures[0], "1:" + futures[1]}));

        playRiskSettings(*m_client, "单机一组", [&](const RiskSettings& settings) {
            click(settings.check("对敲交易设置", "账号组禁止对敲交易"), QPoint(8, 8));
            play([&] { settings.save(); }, {box("提示", "保存成功", "确定")});
            settings.close();
        });
        QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
        QCOMPARE(database().newAudit(), QStringList({begin + "|0|7131|" + key, begin + "|3|23460|" + key}));
        QVERIFY(database().riskConfig(Shanghai, group).ratProofSetting.washTradeForbidden);

        m_client->pressGroupButton("单机一组", "删除",
                                   {box("提示", "确定要删除该项?", "是"), box("提示", "删除账号组成功!", "确定")});
        QCOMPARE(database().newAudit(), QStringList(begin + "|3|625|" + key));
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai, scope));
    }
};

TEST_WITH_WIDGETS(TourSingleServerTest)
#include "tst_tour_single_server.moc"
