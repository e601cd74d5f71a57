// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/CStandardSimpleTable.h>
#include <WQ/EmptyReason.h>

#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

using namespace support;

/// What a table shows while it has no rows.
class TableEmptyTest : public ShownTableTest
{
    Q_OBJECT

    static QString emptyText(const QAbstractItemView* view) { return view->property("emptyText").toString(); }
    QToolButton* dropFilter() const { return m_shown->view->findChild<QToolButton*>("tableDropFilter"); }

private slots:
    void theNearestReasonOfTheWindowIsShown()
    {
        QWidget window;
        auto* const panel = new QWidget(&window);
        auto* const fast = new WQ::CStandardHpfTable(1, panel, 0);
        auto* const simple = new WQ::CStandardSimpleTable(2, panel);
        auto* const dialog = new QDialog(panel);
        auto* const inDialog = new WQ::CStandardSimpleTable(3, dialog);
        QCOMPARE(emptyText(fast->view()), QString("暂无数据"));
        WQ::setEmptyReason(window, "窗口");
        QCOMPARE(emptyText(fast->view()), QString("窗口"));
        WQ::setEmptyReason(*panel, "面板");
        QCOMPARE(emptyText(fast->view()), QString("面板"));
        QCOMPARE(emptyText(simple->view()), QString("面板"));
        QCOMPARE(emptyText(inDialog->view()), QString("暂无数据"));
        simple->setEmptyText("没有限制");
        QCOMPARE(emptyText(simple->view()), QString("没有限制"));
        WQ::setEmptyReason(*panel, {});
        WQ::setEmptyReason(window, {});
        QCOMPARE(emptyText(fast->view()), QString("暂无数据"));
    }

    void aNewReasonIsPaintedAtOnce()
    {
        const auto picture = [this] { return m_shown->view->grab().toImage(); };
        const QImage before = picture();
        WQ::setEmptyReason(*m_shown->table, "分系统“B”未连接");
        QVERIFY(picture() != before);
        WQ::setEmptyReason(*m_shown->table, {});
        QCOMPARE(picture(), before);
    }

    void whereTheFilterHidesAllRowsItCanBeDropped()
    {
        QVERIFY(!dropFilter()->isVisible());
        m_shown->fill(30);
        QVERIFY(!dropFilter()->isVisible());
        m_shown->model->filterColumn(Name, {WQ::FilterContains, {"没有这样的行"}});
        ShownTable::settle();
        QCOMPARE(emptyText(m_shown->view), QString("没有符合条件的记录（共30条）"));
        QTRY_VERIFY(dropFilter()->isVisible());
        QVERIFY(m_shown->view->viewport()->rect().contains(dropFilter()->geometry()));
        dropFilter()->setFocus();
        QTest::keyClick(dropFilter(), Qt::Key_Space);
        QCOMPARE(m_shown->model->rowCount(), 30);
        QTRY_VERIFY(!dropFilter()->isVisible());
        QVERIFY(m_shown->view->hasFocus());
    }

    void noScrollBarStandsBesideATableThatWasEmptied()
    {
        m_shown->fill(500);
        const QScrollBar* const bar = m_shown->view->verticalScrollBar();
        QTRY_VERIFY(bar->isVisible());
        m_shown->model->clear();
        ShownTable::settle();
        QTRY_VERIFY(!bar->isVisible());
    }

    void noScrollBarStandsBesideATableWithFewRows()
    {
        m_shown->fill(500);
        QScrollBar* const bar = m_shown->view->verticalScrollBar();
        bar->setValue(300);
        m_shown->model->filterColumn(Name, {WQ::FilterContains, {m_shown->model->texts().first()}});
        ShownTable::settle();
        QVERIFY(m_shown->model->rowCount() < 10);
        QTRY_VERIFY(!bar->isVisible());
    }
};

TEST_WITH_WIDGETS(TableEmptyTest)
#include "tst_table_empty.moc"
