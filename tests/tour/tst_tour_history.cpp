// SPDX-License-Identifier: Apache-2.0
#include "Hands.h"
#include "OtherDesk.h"
#include "TourTest.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/IBaseHpfTableModel.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CKolmAccountInfo.h>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>

using namespace tour;

/// The second plug-in beside the first: what was changed is found, compared, restored; the findings lead to a group.
/// The steps build on each other, in the order in which they are declared.
class TourHistoryTest : public TourTest
{
    Q_OBJECT

    QAV::IkolmDockableWidget& panel() const { return *m_client->window().panel("QAV::CHistoryPanel"); }

    template <class Control>
    Control& control(const QString& name) const
    {
        for (Control* const found : panel().findChildren<Control*>()) {
            if (found->accessibleName() == name) {
                return *found;
            }
        }
        qFatal("there is no %s", qPrintable(name));
    }
    WQ::CStandardHpfTable& changes() const { return control<WQ::CStandardHpfTable>("修改记录"); }
    WQ::CStandardHpfTable& comparison() const { return control<WQ::CStandardHpfTable>("变更内容"); }

    static QStringList texts(const WQ::CStandardHpfTable& table, int column)
    {
        QStringList texts;
        for (int row = 0; row < table.dataModel()->rowCount(); ++row) {
            texts << table.dataModel()->index(row, column).data().toString();
        }
        return texts;
    }
    bool isRead(const QString& text) const
    {
        const QList<QLabel*> labels = panel().findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel* label) { return label->isVisible() && label->text().contains(text); });
    }
    /// Clicks a row of the changes.
    void clickRow(int row, Qt::KeyboardModifiers keys = Qt::NoModifier) const
    {
        const QRect cell = changes().view()->visualRect(changes().dataModel()->index(row, 0));
        QTest::mouseClick(changes().view()->viewport(), Qt::LeftButton, keys, cell.center());
    }

private slots:
    void initTestCase()
    {
        startAsAdmin("10-history");
        m_group = m_client->shown(NameColumn).first();
        OtherDesk desk(m_client->databaseFile(), Shanghai, "admin", "admin123");
        QCOMPARE(desk.modify(m_group, [](nvservice::CAccountGroup& group) { group.groupName = "中间名的组"; }),
                 QString());
        QCOMPARE(desk.modify("中间名的组",
                             [](nvservice::CAccountGroup& group) {
                                 group.groupName = "改名后的组";
                                 group.accounts.pop_back();
                             }),
                 QString());
        QCOMPARE(desk.configure(database().groupId(Shanghai, "改名后的组"),
                                [](nvservice::CAccountGroupRCConfig& config) {
                                    config.ratProofSetting.washTradeForbidden =
                                        !config.ratProofSetting.washTradeForbidden;
                                }),
                 QString());
        QVERIFY(!desk.add("改名后的组", "改名后的组").isEmpty()); // refused: the name is taken
        database().newAudit();
    }

    void thePanelShowsWhatOthersDidAndTried()
    {
        m_client->window().openPanel("QAV::CHistoryPanel");
        QTRY_VERIFY_WITH_TIMEOUT(changes().dataModel()->rowCount() >= 3, Patience);
        QCOMPARE(texts(changes(), 5).mid(0, 3), QStringList({"被拒绝", "成功", "成功"}));
        QCOMPARE(texts(changes(), 3).mid(0, 3), QStringList({"账号组", "风控配置", "账号组"}));
        QVERIFY(texts(changes(), 1)[0].contains("admin"));
        m_client->pictures("changes");
    }

    void theGroupIsFoundByPinyin()
    {
        auto& edit = control<WQ::CLineEdit>("账号组");
        QTRY_VERIFY(texts(control<WQ::CStandardHpfTable>("账号组列表"), 0).contains("改名后的组"));
        type(edit, "gaiminghou");
        QTRY_COMPARE(texts(changes(), 2), QStringList({"改名后的组", "改名后的组", "改名后的组"}));
    }

    void aChangeOfTheGroupIsOpened()
    {
        const int row = texts(changes(), 4).indexOf("编辑") + 1;
        QTRY_COMPARE(texts(changes(), 3).value(row), QString("账号组"));
        clickRow(row);
        QTRY_COMPARE(texts(comparison(), 0), QStringList({"账号组名", "账号"}));
        QCOMPARE(texts(comparison(), 2)[0], QString("中间名的组"));
        QCOMPARE(texts(comparison(), 3)[0], QString("改名后的组"));
        QCOMPARE(texts(comparison(), 1)[1], QString("移除"));
        clickRow(row - 1);
        QTRY_COMPARE(texts(comparison(), 0), QStringList("禁止对敲交易"));
        m_client->pictures("change");
        click(control<QCheckBox>("原始记录"));
        QTRY_VERIFY(texts(comparison(), 0).contains("ratProofSetting.washTradeForbidden"));
        m_client->picture("raw");
        click(control<QCheckBox>("原始记录"));
    }

    void anEarlierStateIsRestoredAsANewRevision()
    {
        const QStringList kinds = texts(changes(), 3);
        const int last = kinds.lastIndexOf("账号组");
        clickRow(last);
        QTRY_COMPARE(texts(comparison(), 2), QStringList(m_group));
        clickButton(panel(), "恢复到此版本");
        QTRY_VERIFY(isRead("将要发生的变更"));
        QTRY_COMPARE(texts(comparison(), 0).value(0), QString("账号组名"));
        m_client->pictures("preview");
        play([this] { clickButton(panel(), "执行恢复"); },
             {box("恢复", "确定要把账号组“改名后的组”恢复到此版本吗？\n恢复会保存为一个新的修订。", "是")});
        QTRY_COMPARE_WITH_TIMEOUT(texts(changes(), 2).value(0), QString("中间名的组"), Patience);
        QTRY_VERIFY(texts(comparison(), 2).contains("改名后的组"));
        QVERIFY(texts(comparison(), 3).contains("中间名的组"));
        QCOMPARE(database().newAuditRows(), 1);
        QCOMPARE(database().groupId(Shanghai, "改名后的组"), 0);
        QVERIFY(database().groupId(Shanghai, "中间名的组") > 0);
        QVERIFY(!isRead("有新的修改")); // the user has made it, and sees it
        m_client->pictures("restored");
        database().newAudit();
    }

    void twoVersionsAreCompared()
    {
        const QStringList kinds = texts(changes(), 3);
        const QStringList outcomes = texts(changes(), 5);
        const int first = 0;
        const int second = kinds.lastIndexOf("账号组");
        QVERIFY(second > first && outcomes[second] == "成功");
        clickRow(first);
        clickRow(second, Qt::ControlModifier);
        clickButton(panel(), "比较所选两项");
        QTRY_VERIFY(isRead("的两个版本（0项变更"));
        m_client->picture("compared");
    }

    void theStateAtATimeIsShown()
    {
        type(control<WQ::CLineEdit>("查看状态的时间"), QDate::currentDate().toString(Qt::ISODate));
        clickButton(panel(), "查看当时状态");
        QTRY_VERIFY(isRead("只读"));
        QCOMPARE(texts(comparison(), 3).value(0), QString("中间名的组"));
        m_client->picture("state");
    }

    void theDataAreCheckedAndAFindingLeadsToItsGroup()
    {
        database().change(
            "UPDATE account SET state_code = ? WHERE id = (SELECT account_id FROM account_group_member"
            " WHERE group_id = ? AND server_id = (SELECT id FROM sub_system WHERE name = ?) LIMIT 1)",
            {nvservice::CKolmAccountInfo::ClosedState, database().groupId(Shanghai, "中间名的组"), Shanghai});
        auto& tabs = *panel().findChild<WQ::CStandardTabControl*>();
        tabs.setCurrentIndex(1);
        auto& findings = control<WQ::CStandardHpfTable>("一致性检查结果");
        QTRY_VERIFY_WITH_TIMEOUT(findings.dataModel()->rowCount() > 0, Patience);
        const auto* const counts = m_client->window().findChild<QLabel*>("rowCounts");
        QTRY_COMPARE(counts->text(), QString("共%1条").arg(findings.dataModel()->rowCount()));
        m_client->pictures("findings");
        const QString group = "中间名的组";
        QVERIFY(texts(findings, 1).contains(group));
        clickRowButton(findings, 1, group, "查看历史");
        QCOMPARE(tabs.currentIndex(), 0);
        QTRY_VERIFY(!texts(changes(), 2).isEmpty());
        for (const QString& name : texts(changes(), 2)) {
            QCOMPARE(name, group);
        }
    }

    void aUserWithoutTheAuditSeesTheHistoryOfAGroup()
    {
        m_client->start("editor", "editor123");
        m_client->chooseServer(Shanghai);
        m_client->window().openPanel("QAV::CHistoryPanel");
        QTRY_VERIFY(texts(control<WQ::CStandardHpfTable>("账号组列表"), 0).size() > 1);
        QCOMPARE(changes().dataModel()->rowCount(), 0);
        m_client->pictures("without-audit");
        auto& groups = control<WQ::CStandardHpfTable>("账号组列表");
        const QString group = texts(groups, 0)[1];
        click(*groups.view()->viewport(), groups.view()->visualRect(groups.dataModel()->index(1, 0)).center());
        QTRY_VERIFY(changes().dataModel()->rowCount() > 0);
        clickRow(0);
        QTRY_VERIFY(comparison().dataModel()->rowCount() > 0);
        QVERIFY(texts(comparison(), 3).contains(group));
        m_client->picture("history-of-a-group");
    }

private:
    QString m_group;
};

TEST_WITH_WIDGETS(TourHistoryTest)
#include "tst_tour_history.moc"
