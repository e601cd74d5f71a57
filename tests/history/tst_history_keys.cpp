// SPDX-License-Identifier: Apache-2.0
#include "HistoryFixture.h"

#include "history/CComparison.h"
#include "history/Changes.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/Widgets.h"

#include <WQ/CStandardTabControl.h>
#include <nvservice/CFinding.h>
#include <nvservice/CGroupRestore.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QTabBar>

#include <boost/make_shared.hpp>

using namespace history_test;
namespace DataType = nvservice::DataType;
namespace QueryCondition = nvservice::QueryCondition;

/// All that the panel does, without a mouse.
class HistoryKeysTest : public HistoryTest
{
    Q_OBJECT

private slots:
    void theTabKeyReachesEveryControl()
    {
        open();
        openFirst();
        QWidget* const first = QApplication::focusWidget();
        QSet<QWidget*> reached;
        do {
            reached.insert(QApplication::focusWidget());
            press(Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && reached.size() < 100);
        int controls = 0;
        for (QWidget* const widget : m_fixture->panel->findChildren<QWidget*>()) {
            const bool isOperated = qobject_cast<QAbstractButton*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                                    widget->inherits("QComboBox") || qobject_cast<QAbstractItemView*>(widget);
            const bool isPart = widget->inherits("QHeaderView") || qobject_cast<QTabBar*>(widget->parentWidget());
            if (isOperated && !isPart && widget->isVisible() && widget->isEnabled()) {
                ++controls;
                QVERIFY2(reached.contains(widget), qPrintable(nameOf(widget)));
            }
        }
        QVERIFY2(controls >= 16, qPrintable(QString::number(controls)));
    }

    void theTabKeyFollowsTheEye()
    {
        open();
        openFirst();
        goTo("账号组");
        QStringList names;
        QWidget* const first = QApplication::focusWidget();
        do {
            names << nameOf(QApplication::focusWidget());
            press(Qt::Key_Tab);
        } while (QApplication::focusWidget() != first && names.size() < 100);
        QCOMPARE(names, QStringList({"账号组", "账号组列表", "用户", "用户列表", "时间", "起始时间", "截止时间", "类型",
                                     "结果", "查看状态的时间", "查看当时状态", "页", "比较所选两项", "刷新", "修改记录",
                                     "显示未变的内容", "原始记录", "恢复到此版本", "变更内容"}));
    }

    void aGroupIsFoundAndAChangeOpenedAndLeft()
    {
        open();
        support::typeText(m_fixture->control("账号组"), "jinqu");
        const auto query = m_fixture->take(DataType::Audit);
        QCOMPARE(HistoryFixture::conditionsOf(query).number(QueryCondition::Group), std::optional<std::int64_t>(8));
        m_fixture->answer(query, {makeEntry(3, 8), makeEntry(2, 8)});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 2);
        goTo("修改记录");
        m_fixture->answer(HistoryFixture::Details, {detailed(3)});
        QTRY_VERIFY(m_fixture->isRead("项变更"));
        press(Qt::Key_Return);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("变更内容"));
        press(Qt::Key_Escape);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("修改记录"));
        QCOMPARE(m_fixture->changes().currentKey(), QString("SH|3"));
    }

    void anItemOfTheListIsChosenByTheArrows()
    {
        open();
        m_fixture->table("账号组列表").view()->setFocus();
        press(Qt::Key_Down);
        QCOMPARE(HistoryFixture::conditionsOf(m_fixture->take(DataType::Audit)).number(QueryCondition::Group),
                 std::optional<std::int64_t>(7));
        press(Qt::Key_Home);
        QVERIFY(!HistoryFixture::conditionsOf(m_fixture->take(DataType::Audit)).has(QueryCondition::Group));
    }

    void twoChangesAreCompared()
    {
        open();
        openFirst();
        press(Qt::Key_Space, Qt::ControlModifier);
        press(Qt::Key_Down, Qt::ControlModifier);
        press(Qt::Key_Down, Qt::ControlModifier);
        press(Qt::Key_Space, Qt::ControlModifier);
        QCOMPARE(m_fixture->changes().selectedKeys(), QStringList({"SH|3", "SH|1"}));
        goTo("比较所选两项");
        press(Qt::Key_Space);
        // Those of the rows that were passed are overtaken.
        while (m_fixture->waiting(HistoryFixture::Details) > 2) {
            m_fixture->take(HistoryFixture::Details);
        }
        m_fixture->answer(HistoryFixture::Details, {detailed(1)});
        m_fixture->answer(HistoryFixture::Details, {detailed(3)});
        QTRY_VERIFY(m_fixture->isRead("的两个版本"));
    }

    void aVersionIsRestored()
    {
        open();
        openFirst();
        goTo("恢复到此版本");
        press(Qt::Key_Space);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("变更内容")); // the button has gone
        const auto restore = boost::make_shared<nvservice::CGroupRestore>();
        restore->groupId = 7;
        restore->groupRevision = 2;
        restore->seenGroupRevision = 9;
        m_fixture->answer(DataType::GroupRestore, {restore, makeGroup(7, "旧名", {}, 10)});
        m_fixture->answer(DataType::GroupState, {makeGroup(7, "现名", {}, 9)});
        QTRY_VERIFY(m_fixture->isRead("将要发生的变更"));
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("变更内容"));
        goTo("放弃恢复");
        press(Qt::Key_Space);
        QTRY_VERIFY(m_fixture->button("恢复到此版本").isVisible());
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("变更内容"));
        goTo("恢复到此版本");
        press(Qt::Key_Space);
        m_fixture->answer(DataType::GroupRestore, {restore, makeGroup(7, "旧名", {}, 10)});
        m_fixture->answer(DataType::GroupState, {makeGroup(7, "现名", {}, 9)});
        QTRY_VERIFY(m_fixture->isRead("将要发生的变更"));
        goTo("执行恢复");
        m_boxes->expectQuestion(QMessageBox::Question, "恢复",
                                "确定要把账号组“组7”恢复到此版本吗？\n恢复会保存为一个新的修订。", QMessageBox::Yes);
        press(Qt::Key_Space);
        QCOMPARE(m_fixture->operations.size(), std::size_t(1));
        m_fixture->operations.back().handler({});
        m_fixture->answer(DataType::Audit, {makeEntry(10), makeEntry(3)});
        QTRY_COMPARE(m_fixture->changes().currentKey(), QString("SH|10"));
    }

    void theFindingsAreReachedAndLeadToAGroupAndBack()
    {
        open();
        openFirst();
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(tabs().currentIndex(), 1);
        goTo("取消检查");
        press(Qt::Key_Space);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("重新检查"));
        press(Qt::Key_Space);
        m_fixture->take(DataType::Finding); // cancelled
        const auto finding = boost::make_shared<nvservice::CFinding>();
        finding->kind = "closed";
        finding->groupId = 70;
        finding->groupName = "组70";
        m_fixture->answer(DataType::Finding, {finding});
        QTRY_COMPARE(m_fixture->table("一致性检查结果").dataModel()->rowCount(), 1);
        goTo("一致性检查结果");
        press(Qt::Key_Home);
        press(Qt::Key_Return);
        QCOMPARE(tabs().currentIndex(), 0);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("修改记录"));
        QCOMPARE(HistoryFixture::conditionsOf(m_fixture->take(DataType::Audit)).number(QueryCondition::Group),
                 std::optional<std::int64_t>(70));
        press(Qt::Key_Tab, Qt::ControlModifier);
        QCOMPARE(tabs().currentIndex(), 1);
        QCOMPARE(m_fixture->waiting(DataType::Finding), 0); // they are still there
    }

    void moreIsLoadedThanAFilterLeaves()
    {
        m_fixture->open();
        QApplication::setActiveWindow(m_fixture->panel.get());
        m_fixture->answer(DataType::Audit, makeEntries(300, 201), "c1");
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 100);
        m_fixture->changes().filterColumn(QAV::GroupColumn, {WQ::FilterOneOf, {"组8"}});
        m_fixture->control("账号组").setFocus();
        goTo("加载更多");
        press(Qt::Key_Space);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("停止"));
        press(Qt::Key_Space);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("加载更多"));
        press(Qt::Key_Space);
        m_fixture->answer(DataType::Audit, makeEntries(200, 190, 8));
        QTRY_VERIFY(m_fixture->isRead("共111条，筛选出11条"));
        // The button has gone. Nothing opens unasked.
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("修改记录"));
        QCOMPARE(m_fixture->changes().currentKey(), QString());
        press(Qt::Key_Down);
        QCOMPARE(m_fixture->changes().currentKey(), QString("SH|200"));
    }

    void conditionsAreChosenByTheArrows()
    {
        open();
        m_fixture->control("结果").setFocus();
        press(Qt::Key_Down);
        QCOMPARE(HistoryFixture::conditionsOf(m_fixture->take(DataType::Audit)).value(QueryCondition::Outcome),
                 std::string("ok"));
    }

    void aFailedQueryIsTriedAgain()
    {
        m_fixture->open();
        QApplication::setActiveWindow(m_fixture->panel.get());
        m_fixture->fail(m_fixture->take(DataType::Audit), "断线");
        QTRY_VERIFY(m_fixture->isOffered("重试"));
        m_fixture->changes().view()->setFocus();
        goTo("重试");
        press(Qt::Key_Space);
        QCOMPARE(m_fixture->waiting(DataType::Audit), 1);
        QCOMPARE(nameOf(QApplication::focusWidget()), QString("修改记录"));
    }

private:
    static QString nameOf(const QWidget* widget)
    {
        if (!widget) {
            return "nothing";
        }
        if (qobject_cast<const QTabBar*>(widget)) {
            return "页";
        }
        const auto* const button = qobject_cast<const QAbstractButton*>(widget);
        return button ? button->text() : widget->accessibleName();
    }
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QVERIFY(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    /// Presses Tab until the control has the keyboard.
    static void goTo(const QString& name)
    {
        for (int presses = 0; nameOf(QApplication::focusWidget()) != name; ++presses) {
            QVERIFY2(presses < 100, qPrintable(name));
            press(Qt::Key_Tab);
        }
    }
    static boost::shared_ptr<nvservice::CAuditEntry> detailed(int id)
    {
        const auto entry = makeEntry(id);
        entry->before = makeGroup(7, "更旧", {}, 1);
        entry->after = makeGroup(7, "旧名", {}, 2);
        return entry;
    }
    /// Shows three changes.
    void open() const
    {
        m_fixture->open();
        QApplication::setActiveWindow(m_fixture->panel.get());
        m_fixture->control("账号组").setFocus();
        m_fixture->answer(DataType::Audit, {makeEntry(3), makeEntry(2), makeEntry(1)});
        QTRY_COMPARE(m_fixture->changes().dataModel()->rowCount(), 3);
    }
    /// Opens the first change from the table.
    void openFirst() const
    {
        goTo("修改记录");
        QCOMPARE(m_fixture->changes().currentKey(), QString("SH|3"));
        m_fixture->answer(HistoryFixture::Details, {detailed(3)});
        QTRY_VERIFY(m_fixture->isRead("项变更"));
    }
    WQ::CStandardTabControl& tabs() const { return *m_fixture->panel->findChild<WQ::CStandardTabControl*>(); }
};

TEST_WITH_WIDGETS(HistoryKeysTest)
#include "tst_history_keys.moc"
