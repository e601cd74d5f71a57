// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"
#include "support/TestProgram.h"

using namespace panel_test;

/// The search by group name.
class GroupSearchTest : public PanelTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PanelTest::init();
        m_client->addShanghai();
    }

    void enterWithAnEmptySearchFieldRemovesTheFilter()
    {
        m_client->showGroups({makeGroup(1, "甲组", ShanghaiTag), makeGroup(2, "乙组", ShanghaiTag)});
        m_client->typeInSearchEdit("甲");
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QCOMPARE(m_client->shown(0), QStringList({"甲组"}));
        m_client->searchEdit()->clear();
        QCOMPARE(m_client->shown(0), QStringList({"甲组"}));
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QCOMPARE(m_client->shown(0), QStringList({"甲组", "乙组"}));
    }

    void enterWithAnEmptySearchFieldRemovesTheFiltersOfOtherColumnsToo()
    {
        m_client->showGroups({makeGroup(1, "甲组", ShanghaiTag, 1), makeGroup(2, "乙组", ShanghaiTag, 2)});
        m_client->table()->filterColumn(1, {WQ::FilterOneOf, {"2"}});
        QCOMPARE(m_client->shown(0), QStringList({"乙组"}));
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QCOMPARE(m_client->shown(0), QStringList({"甲组", "乙组"}));
    }

    void aSearchLeavesTheFiltersOfOtherColumns()
    {
        m_client->showGroups({makeGroup(1, "甲一组", ShanghaiTag, 1), makeGroup(2, "甲二组", ShanghaiTag, 2),
                              makeGroup(3, "乙组", ShanghaiTag, 2)});
        m_client->table()->filterColumn(1, {WQ::FilterOneOf, {"2"}});
        m_client->typeInSearchEdit("甲");
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QCOMPARE(m_client->shown(0), QStringList({"甲二组"}));
    }

    void enterWithATextLeavesTheRowsThatContainIt_data()
    {
        const support::DataRows<QString, QStringList> row("text", "names");
        row("a part", "对冲", QStringList({"量化对冲一号", "Alpha对冲"}));
        row("another letter case", "ALPHA", QStringList({"Alpha对冲"}));
        row("syllables", "lianghua", QStringList({"量化对冲一号"}));
        row("initials", "lhdc", QStringList({"量化对冲一号"}));
        row("nothing", "没有", {});
        row("a blank is a text", " ", QStringList({"银行 间"}));
    }
    void enterWithATextLeavesTheRowsThatContainIt()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, names);
        m_client->showGroups({makeGroup(1, "量化对冲一号", ShanghaiTag), makeGroup(2, "Alpha对冲", ShanghaiTag),
                              makeGroup(3, "银行 间", ShanghaiTag)});
        m_client->searchEdit()->setText(text);
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Enter);
        QCOMPARE(m_client->shown(0), names);
    }

    void aRefreshKeepsTheSearchTextButDoesNotApplyIt()
    {
        m_client->showGroups({makeGroup(1, "甲组", ShanghaiTag), makeGroup(2, "乙组", ShanghaiTag)});
        m_client->typeInSearchEdit("甲");
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QTest::mouseClick(m_client->button("立即刷新"), Qt::LeftButton);
        m_client->answer(*m_client->shanghai, {makeGroup(1, "甲组", ShanghaiTag), makeGroup(2, "乙组", ShanghaiTag)});
        QCOMPARE(m_client->searchEdit()->getText(), QString("甲"));
        QCOMPARE(m_client->shown(0), QStringList({"甲组", "乙组"}));
        QTest::keyClick(m_client->searchEdit(), Qt::Key_Return);
        QCOMPARE(m_client->shown(0), QStringList({"甲组"}));
    }
};

TEST_WITH_WIDGETS(GroupSearchTest)
#include "tst_group_search.moc"
