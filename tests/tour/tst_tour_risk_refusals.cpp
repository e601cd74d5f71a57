// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"
#include "OtherDesk.h"
#include "RiskSettings.h"
#include "TourTest.h"
#include "support/qav/Client.h"

using namespace tour;

namespace
{

const QString Ban = QStringLiteral("账号组禁止对敲交易");

} // namespace

/// What the user is told when risk settings cannot be loaded or saved, and that nothing is lost then. The steps build
/// on each other, in the order in which they are declared.
class TourRiskRefusalsTest : public TourTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        startAsAdmin("5-risk-refusals");
        m_risk = std::make_unique<OtherDesk>(m_client->databaseFile(), Shanghai, "risk", "risk123");
    }

    void aSaveOverSomebodyElsesSettingsNamesHimAndTheTime()
    {
        // A group with settings of every kind, e-mail rules included.
        const QString name = m_client->shown(NameColumn).at(1);
        const int group = idOf(name);
        const nvservice::CAccountGroupRCConfig before = database().riskConfig(Shanghai, group);
        QVERIFY(!before.emailRCs.empty());
        const bool banned = !before.ratProofSetting.washTradeForbidden;
        const QString why =
            QString("账号组“%1”的风控设置已被风控员（risk）于%2修改，请重新打开后再设置").arg(name, Time);
        int futures = 0;
        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            futures = settings.entries("期货账号").size();
            settings.addEntry("期货账号", "CF2603", "CF2603", "黑名单");
            const auto ban = [&](auto& config) { config.ratProofSetting.washTradeForbidden = banned; };
            QCOMPARE(m_risk->configure(group, ban), QString());
            QCOMPARE(database().newAudit(), QStringList(QString("SH01|risk|0|7131|SH01|%1|0|").arg(group)));
            play([&] { settings.save(); }, {boxLike("提示", QRegularExpression(why), "确定",
                                                    [&](QWidget&) { m_client->pictures("changed-by-somebody"); })});
            verifyRefused(group, QRegularExpression(why));
            // What the user put in is still there, and a second try is told the same.
            QCOMPARE(settings.entries("期货账号").size(), futures + 1);
            play([&] { settings.save(); }, {boxLike("提示", QRegularExpression(why), "确定")});
            verifyRefused(group, QRegularExpression(why));
            settings.close();
        });
        const nvservice::CAccountGroupRCConfig others = database().riskConfig(Shanghai, group);
        QCOMPARE(database().riskConfigState(Shanghai, group), QString("3|risk"));
        QCOMPARE(others.ratProofSetting.washTradeForbidden, banned);
        QCOMPARE(others.emailRCs.size(), before.emailRCs.size());

        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            QCOMPARE(settings.check(WashTrade, Ban).isChecked(), banned);
            QCOMPARE(settings.entries("期货账号").size(), futures);
            settings.addEntry("期货账号", "CF2603", "CF2603", "黑名单");
            play([&] { settings.save(); }, {box("提示", "保存成功", "确定")});
            QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
            database().newAudit();
            settings.close();
        });
        QCOMPARE(database().riskConfig(Shanghai, group).ratProofSetting.washTradeForbidden, banned);
        QVERIFY(database().riskConfigState(Shanghai, group).endsWith("|admin"));
    }

    void settingsOfADeletedGroupAreNeitherSavedNorLoaded()
    {
        OtherDesk deleter(m_client->databaseFile(), Shanghai, "deleter", "deleter123");
        const QString name = m_client->shown(NameColumn).at(2);
        const int group = idOf(name);
        const QString why = QString("账号组已被账号组清理员（deleter）于%1删除").arg(Time);
        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            QCOMPARE(deleter.remove(name), QString());
            database().newAudit();
            play([&] { settings.save(); }, {boxLike("提示", QRegularExpression(why), "确定", kept("group-deleted"))});
            verifyRefused(group, QRegularExpression(why));
            settings.close();
        });
        playRiskSettings(*m_client, name,
                         [&](const RiskSettings& settings) {
                             // There is nothing to save.
                             settings.save();
                             QCOMPARE(settings.limits().rowCount(), 0);
                             settings.close();
                         },
                         {boxLike("错误", QRegularExpression(why), "确定", kept("settings-of-a-deleted-group"))});
        QCOMPARE(
            database().value("SELECT count(*) FROM group_risk_config WHERE group_id = ? AND server_id = 1", {group}),
            QVariant(0));
        m_client->refresh();
        QCOMPARE(m_client->shownRows(), database().groups(Shanghai));
    }

    void aRightThatWasTakenAwayMeanwhileIsMissed()
    {
        const QString user = "(SELECT id FROM app_user WHERE login = 'admin' AND server_id = 1)";
        const QString name = m_client->shown(NameColumn).at(0);
        const QString state = database().riskConfigState(Shanghai, idOf(name));
        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            click(settings.check(WashTrade, Ban), QPoint(8, 8));
            database().change("DELETE FROM user_right WHERE right_id = 10719 AND user_id = " + user);
            const QString why = "您没有设置账号组风控的权限";
            play([&] { settings.save(); }, {box("提示", why, "确定", kept("right-taken-away"))});
            verifyRefused(idOf(name), QRegularExpression(why));
            settings.close();
        });
        database().change("INSERT INTO user_right (user_id, right_id) VALUES (" + user + ", 10719)");
        QCOMPARE(database().riskConfigState(Shanghai, idOf(name)), state);
    }

    void anAnswerThatComesTooLateLeavesTheOutcomeOpen()
    {
        const QString name = m_client->shown(NameColumn).at(0);
        const int group = idOf(name);
        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            click(settings.check(WashTrade, Ban), QPoint(8, 8));
            database().lock();
            support::centre().setDeadline(std::chrono::milliseconds(700));
            play([&] { settings.save(); },
                 {box("提示", "分系统“上海分系统”未应答：超过 700 毫秒，未知是否已执行", "确定", [&](QWidget&) {
                     database().unlock();
                     support::centre().setDeadline(std::chrono::seconds(30));
                     m_client->picture("too-late");
                 })});
            // This time it was carried out. The values are still in the dialog and can be saved again.
            QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
            QVERIFY(database().riskConfig(Shanghai, group).ratProofSetting.washTradeForbidden);
            database().newAudit();
            QVERIFY(settings.check(WashTrade, Ban).isChecked());
            play([&] { settings.save(); }, {box("提示", "保存成功", "确定")});
            QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
            database().newAudit();
            settings.close();
        });
        QVERIFY(database().riskConfig(Shanghai, group).ratProofSetting.washTradeForbidden);
    }

    void withoutItsServerAGroupHasNoSettings()
    {
        const QString name = m_client->shown(NameColumn).at(1);
        const QString state = database().riskConfigState(Shanghai, idOf(name));
        m_client->unplug(Shanghai);
        playRiskSettings(*m_client, name,
                         [&](const RiskSettings& settings) {
                             QCOMPARE(settings.limits().rowCount(), 0);
                             settings.save();
                             settings.close();
                         },
                         {boxLike("错误", QRegularExpression(".*服务端拒绝连接或没有启动.*"), "确定",
                                  kept("server-not-reachable"))});
        QCOMPARE(database().riskConfigState(Shanghai, idOf(name)), state);
        m_client->plugIn();
        m_client->start("admin", "admin123");
        playRiskSettings(*m_client, name, [&](const RiskSettings& settings) {
            QVERIFY(settings.entries("期货账号").join('|').contains("CF2603 "));
            settings.close();
        });
    }

private:
    int idOf(const QString& group) { return database().groupId(Shanghai, group); }
    /// The two audit rows of a save whose configuration was refused with this message.
    void verifyRefused(int group, const QRegularExpression& message)
    {
        QTRY_COMPARE_WITH_TIMEOUT(database().newAuditRows(), 2, 60000);
        const QStringList rows = database().newAudit();
        const QRegularExpression whole(QRegularExpression::anchoredPattern(message.pattern()));
        QVERIFY2(rows[0].startsWith(QString("SH01|admin|0|7131|SH01|%1|").arg(group)), qPrintable(rows[0]));
        QVERIFY2(whole.match(rows[0].section('|', -1)).hasMatch(), qPrintable(rows[0]));
        QVERIFY2(rows[1].startsWith(QString("SH01|admin|3|23460|SH01|%1|").arg(group)), qPrintable(rows[1]));
        QVERIFY2(rows[0].section('|', -2, -2) != "0", qPrintable(rows[0]));
    }

    std::function<void(QWidget&)> kept(const QString& name)
    {
        return [this, name](QWidget&) { m_client->picture(name); };
    }

    std::unique_ptr<OtherDesk> m_risk;
};

TEST_WITH_WIDGETS(TourRiskRefusalsTest)
#include "tst_tour_risk_refusals.moc"
