// SPDX-License-Identifier: Apache-2.0
#include "RecordingPanel.h"
#include "support/TestProgram.h"

#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>

#include <QAbstractItemView>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QVBoxLayout>

using WQ::CSmallNormalButton;
using WQ::CStandardSimpleTable;

/// Cell widgets: where they are, when they live, what they report.
class SimpleTableCellsTest : public QObject
{
    Q_OBJECT

    static constexpr int Centred = 132;
    static constexpr int ButtonColumn = 1;

    static CSmallNormalButton* makeButton(int rowId, QWidget* parent)
    {
        auto* const button = new CSmallNormalButton(rowId + 1000, true, 1, parent);
        button->setText(QStringLiteral("删除"));
        button->setFixedSize(50, 16);
        return button;
    }

    static int liveButtons(const CStandardSimpleTable& table)
    {
        int count = 0;
        for (const CSmallNormalButton* const button : table.findChildren<CSmallNormalButton*>()) {
            count += button->isVisible() ? 1 : 0;
        }
        return count;
    }

private slots:
    void init()
    {
        m_panel = std::make_unique<test::RecordingPanel>();
        m_table = new CStandardSimpleTable(1277, m_panel.get());
        m_table->setColumnCount(2);
        m_table->setHeaderText(0, QStringLiteral("已选豁免分类"));
        m_table->setHeaderText(1, QStringLiteral("操作"));
        (new QVBoxLayout(m_panel.get()))->addWidget(m_table);
        m_ids.clear();
    }

    void onlyWidgetsOfRowsOnScreenAreVisible()
    {
        show(100, {300, 300});
        const int rowsOnScreen = m_table->view()->viewport()->height() / m_table->rowHeight();
        QTRY_VERIFY(m_table->itemWidget(m_ids[0], ButtonColumn)->isVisible());
        QVERIFY(liveButtons(*m_table) >= rowsOnScreen);
        QVERIFY(liveButtons(*m_table) <= rowsOnScreen + 2);
        QWidget* const last = m_table->itemWidget(m_ids[99], ButtonColumn);
        QVERIFY(!last->isVisible());
        QVERIFY(m_table->isAncestorOf(last));

        m_table->view()->verticalScrollBar()->setValue(m_table->view()->verticalScrollBar()->maximum());
        QVERIFY(last->isVisible());
        QVERIFY(m_table->view()->viewport()->rect().contains(last->geometry()));
        QVERIFY(!m_table->itemWidget(m_ids[0], ButtonColumn)->isVisible());
        QVERIFY(liveButtons(*m_table) <= rowsOnScreen + 2);
    }

    void aWidgetStandsWhereItsAlignmentSays()
    {
        fill(1);
        auto* const edit = new QLineEdit;
        m_table->setItemWidget(m_ids[0], 0, edit, 0, true);
        test::showActive(*m_panel, {400, 300});
        QWidget* const button = m_table->itemWidget(m_ids[0], ButtonColumn);
        QTRY_VERIFY(button->isVisible());
        QAbstractItemView* const view = m_table->view();
        const QRect cell = view->visualRect(view->model()->index(0, ButtonColumn));
        QCOMPARE(button->size(), QSize(50, 16));
        QVERIFY(qAbs(button->geometry().center().x() - cell.center().x()) <= 1);
        QVERIFY(qAbs(button->geometry().center().y() - cell.center().y()) <= 1);
        const QRect first = view->visualRect(view->model()->index(0, 0));
        QVERIFY(edit->width() >= first.width() - 4);
        QVERIFY(first.contains(edit->geometry()));
    }

    void aWidgetThatWantsMoreRoomGetsIt()
    {
        fill(100);
        for (const int row : {0, 99}) {
            auto* const button = new CSmallNormalButton(1, true, 1, nullptr);
            button->setText(QStringLiteral("a"));
            m_table->setItemWidget(m_ids[row], 0, button, Centred, true);
        }
        test::showActive(*m_panel, {500, 300});
        for (const int row : {0, 99}) {
            auto* const button = qobject_cast<CSmallNormalButton*>(m_table->itemWidget(m_ids[row], 0));
            m_table->setCurrentRow(m_ids[row]);
            QTRY_VERIFY(button->isVisible());
            const int narrow = button->width();
            button->setText(QStringLiteral("a much longer text"));
            QTRY_VERIFY(button->width() > narrow + 20);
            // Also when the text changes while the row is off the screen.
            m_table->setCurrentRow(m_ids[50]);
            QVERIFY(!button->isVisible());
            button->setText(QStringLiteral("a"));
            m_table->setCurrentRow(m_ids[row]);
            QTRY_COMPARE(button->width(), narrow);
        }
    }

    void clickReportsOneEventToThePanelAbove()
    {
        show(3, {300, 300});
        QWidget* const button = m_table->itemWidget(m_ids[1], ButtonColumn);
        QTRY_VERIFY(button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(m_panel->events, QVector<test::RecordingPanel::Event>({{5, m_ids[1] + 1000, 0}}));
        QCOMPARE(m_table->currentRow(), m_ids[1]);
    }

    void aButtonThatIsPartlyVisibleStaysUnderTheMouse()
    {
        show(30, {300, 300});
        QAbstractItemView* const view = m_table->view();
        QTRY_VERIFY(m_table->itemWidget(m_ids[0], ButtonColumn)->isVisible());
        view->verticalScrollBar()->setValue(m_table->rowHeight() / 2);
        QWidget* const button = m_table->itemWidget(m_ids[0], ButtonColumn);
        QVERIFY(button->isVisible());
        QVERIFY(button->y() < 0);
        const QPoint before = button->pos();
        QTest::mousePress(button, Qt::LeftButton);
        QVERIFY(button->hasFocus());
        QCOMPARE(button->pos(), before);
        QTest::mouseRelease(button, Qt::LeftButton);
        QCOMPARE(m_panel->events, QVector<test::RecordingPanel::Event>({{5, m_ids[0] + 1000, 0}}));
    }

    void handlerMayRemoveTheRowOfItsButton()
    {
        show(3, {300, 300});
        m_panel->react = [this](const test::RecordingPanel::Event& event) { m_table->removeRow(event.id - 1000); };
        QPointer<QWidget> button = m_table->itemWidget(m_ids[1], ButtonColumn);
        QTRY_VERIFY(button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(m_table->rowCount(), 2);
        QTRY_VERIFY(button.isNull());
        QCOMPARE(m_table->selectedRows(), QVector<int>());
        QCOMPARE(m_table->currentRow(), m_ids[2]);
        QVERIFY(m_table->view()->hasFocus());
        // The next one is in its place and works.
        QWidget* const next = m_table->itemWidget(m_ids[2], ButtonColumn);
        QVERIFY(next->isVisible());
        QTest::mouseClick(next, Qt::LeftButton);
        QCOMPARE(m_panel->events.size(), 2);
        QCOMPARE(m_panel->events.last().id, m_ids[2] + 1000);
        QCOMPARE(m_table->rowCount(), 1);
    }

    void handlerMayClearTheTable()
    {
        show(30, {300, 300});
        m_panel->react = [this](const test::RecordingPanel::Event&) { m_table->clear(); };
        QPointer<QWidget> button = m_table->itemWidget(m_ids[0], ButtonColumn);
        QPointer<QWidget> parked = m_table->itemWidget(m_ids[29], ButtonColumn);
        QTRY_VERIFY(button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(m_table->rowCount(), 0);
        QTRY_VERIFY(button.isNull());
        QTRY_VERIFY(parked.isNull());
        QCOMPARE(liveButtons(*m_table), 0);
        fill(1);
        QTRY_VERIFY(m_table->itemWidget(m_ids.last(), ButtonColumn)->isVisible());
    }

    void aFactoryMakesItsWidgetWhenTheRowComesOnScreen()
    {
        int made = 0;
        for (int i = 0; i < 100; ++i) {
            const int id = m_table->appendRow();
            m_ids << id;
            m_table->setItemWidget(
                id, ButtonColumn,
                [&made, id](QWidget* parent) -> QWidget* {
                    ++made;
                    return makeButton(id, parent);
                },
                Centred, true);
        }
        QCOMPARE(made, 0);
        test::showActive(*m_panel, {300, 300});
        QTRY_VERIFY(made > 0);
        QVERIFY(made < 20);
        const int before = made;
        QWidget* const last = m_table->itemWidget(m_ids[99], ButtonColumn);
        QVERIFY(last);
        QCOMPARE(made, before + 1);
        m_table->setCurrentRow(m_ids[99]);
        QVERIFY(last->isVisible());
        QTest::mouseClick(last, Qt::LeftButton);
        QCOMPARE(m_panel->events, QVector<test::RecordingPanel::Event>({{5, m_ids[99] + 1000, 0}}));
        m_table->setCurrentRow(m_ids[0]);
        m_table->setCurrentRow(m_ids[99]);
        QCOMPARE(m_table->itemWidget(m_ids[99], ButtonColumn), last);
    }

    void anotherWidgetReplacesAndDeletesTheFirst()
    {
        show(1, {300, 300});
        QPointer<QWidget> first = m_table->itemWidget(m_ids[0], ButtonColumn);
        QTRY_VERIFY(first->isVisible());
        auto* const second = makeButton(m_ids[0], nullptr);
        m_table->setItemWidget(m_ids[0], ButtonColumn, second, Centred, true);
        QTRY_VERIFY(first.isNull());
        QTRY_VERIFY(second->isVisible());
        QPointer<QWidget> watched = second;
        m_table->setItemWidget(m_ids[0], ButtonColumn, nullptr, Centred, true);
        QTRY_VERIFY(watched.isNull());
        QCOMPARE(m_table->itemWidget(m_ids[0], ButtonColumn), nullptr);
    }

    void aWidgetThatWasDeletedElsewhereIsForgotten()
    {
        show(2, {300, 300});
        QTRY_VERIFY(m_table->itemWidget(m_ids[0], ButtonColumn)->isVisible());
        delete m_table->itemWidget(m_ids[0], ButtonColumn);
        QCOMPARE(m_table->itemWidget(m_ids[0], ButtonColumn), nullptr);
        m_table->removeRow(m_ids[0]);
        m_table->view()->viewport()->repaint();
        QCOMPARE(m_table->rowCount(), 1);
    }

    void widgetsOfAHiddenColumnAreParked()
    {
        show(2, {300, 300});
        QWidget* const button = m_table->itemWidget(m_ids[0], ButtonColumn);
        QTRY_VERIFY(button->isVisible());
        m_table->setColumnVisible(ButtonColumn, false);
        QTRY_VERIFY(!button->isVisible());
        m_table->setColumnVisible(ButtonColumn, true);
        QTRY_VERIFY(button->isVisible());
    }

    void widgetsFollowScrollingSortingAndRemoval()
    {
        show(60, {300, 300});
        QAbstractItemView* const view = m_table->view();
        const auto allInPlace = [&] {
            for (int row = 0; row < m_table->rowCount(); ++row) {
                const QRect cell = view->visualRect(view->model()->index(row, ButtonColumn));
                QWidget* const button = m_table->itemWidget(m_table->rowID(row), ButtonColumn);
                const bool onScreen = cell.intersects(view->viewport()->rect());
                if (button->isVisible() != onScreen || (onScreen && !cell.contains(button->geometry()))) {
                    return false;
                }
            }
            return true;
        };
        QTRY_VERIFY(allInPlace());
        for (const int value : {1, 300, 77, 100000, 0, 500}) {
            view->verticalScrollBar()->setValue(value);
            QVERIFY2(allInPlace(), qPrintable(QString::number(value)));
        }
        m_table->sortByColumn(0, Qt::DescendingOrder);
        QTRY_VERIFY(allInPlace());
        for (int i = 0; i < 50; ++i) {
            m_table->removeRow(m_table->rowID(i % m_table->rowCount()));
        }
        QTRY_VERIFY(allInPlace());
        QCOMPARE(m_table->rowCount(), 10);
        m_table->setRowHeight(40);
        m_panel->resize(500, 200);
        QTRY_VERIFY(allInPlace());
    }

    void tenThousandRowsShowAScreenfulOfWidgets()
    {
        fill(10000);
        QElapsedTimer timer;
        timer.start();
        test::showActive(*m_panel, {500, 600});
        QTRY_VERIFY(m_table->itemWidget(m_ids[0], ButtonColumn)->isVisible());
        QVERIFY(liveButtons(*m_table) < 40);
        // Cell widgets of Qt's own views take many seconds here.
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
        m_table->setCurrentRow(m_ids[9999]);
        QWidget* const button = m_table->itemWidget(m_ids[9999], ButtonColumn);
        QVERIFY(button->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(m_panel->events.size(), 1);
        QCOMPARE(m_panel->events[0].id, m_ids[9999] + 1000);
    }

    void widgetsGoWithTheTable()
    {
        show(50, {300, 300});
        QPointer<QWidget> live = m_table->itemWidget(m_ids[0], ButtonColumn);
        QPointer<QWidget> parked = m_table->itemWidget(m_ids[49], ButtonColumn);
        QTRY_VERIFY(live->isVisible());
        delete m_table;
        QVERIFY(live.isNull());
        QVERIFY(parked.isNull());
    }

    void disabledTableDisablesItsButtons()
    {
        show(50, {300, 300});
        m_table->setEnabled(false);
        QWidget* const last = m_table->itemWidget(m_ids[49], ButtonColumn);
        QVERIFY(!last->isEnabled());
        m_table->setCurrentRow(m_ids[49]);
        QTRY_VERIFY(last->isVisible());
        QTest::mouseClick(last, Qt::LeftButton);
        QVERIFY(m_panel->events.isEmpty());
        m_table->setEnabled(true);
        QTest::mouseClick(last, Qt::LeftButton);
        QCOMPARE(m_panel->events.size(), 1);
    }

private:
    void show(int rows, const QSize& size)
    {
        fill(rows);
        test::showActive(*m_panel, size);
    }

    void fill(int rows)
    {
        for (int i = 0; i < rows; ++i) {
            m_ids << m_table->appendRow();
            m_table->setItemText(m_ids.last(), 0, QString::number(i), true);
            m_table->setItemWidget(m_ids.last(), ButtonColumn, makeButton(m_ids.last(), m_table), Centred, true);
        }
    }

    std::unique_ptr<test::RecordingPanel> m_panel;
    CStandardSimpleTable* m_table = nullptr;
    QVector<int> m_ids;
};

TEST_WITH_WIDGETS(SimpleTableCellsTest)
#include "tst_simple_table_cells.moc"
