// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/EventType.h>

using namespace support;

class TableButtonsTest : public ShownTableTest
{
    Q_OBJECT

    void click(int row, int position)
    {
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->buttonAt(row, position));
    }

private slots:
    void aClickIsOneEventWithRowKeyAndButtonId()
    {
        m_shown->fill(20);
        click(3, 1);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(1));
        const Event& event = m_shown->sink.events.front();
        QCOMPARE(event.type, int(WQ::RowButtonClicked));
        QCOMPARE(event.type, 218);
        QCOMPARE(event.id, int(Buttons));
        QCOMPARE(event.param, 9);
        QCOMPARE(event.text, QString("k3"));
        QVERIFY(!event.data);
        click(0, 0);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(2));
        QCOMPARE(m_shown->sink.events.back().param, 4);
        QCOMPARE(m_shown->sink.events.back().text, QString("k0"));
        QCOMPARE(m_shown->table->currentKey(), QString("k0"));
    }

    void theKeyFollowsTheRowThroughSortingFilterAndScrolling()
    {
        m_shown->fill(1000);
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        click(0, 0);
        QCOMPARE(m_shown->sink.events.back().text, QString("k999"));
        m_shown->table->filterColumn(Name, {WQ::FilterContains, {"组12"}});
        click(0, 0);
        QCOMPARE(m_shown->sink.events.back().text, QString("k129"));
        m_shown->table->clearFilter();
        m_shown->view->scrollToBottom();
        click(999, 1);
        QCOMPARE(m_shown->sink.events.back().text, QString("k0"));
        QCOMPARE(m_shown->sink.events.size(), std::size_t(3));
    }

    void aReleaseElsewhereIsNoEvent()
    {
        m_shown->fill(5);
        QTest::mousePress(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->buttonAt(1, 0));
        QTest::mouseRelease(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->buttonAt(1, 1));
        QTest::mousePress(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->buttonAt(1, 0));
        QTest::mouseRelease(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->buttonAt(2, 0));
        QTest::mousePress(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(1, Name).center());
        QTest::mouseRelease(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->buttonAt(1, 0));
        QVERIFY(m_shown->sink.events.empty());
    }

    void otherMouseButtonsAndOtherCellsAreNoEvent()
    {
        m_shown->fill(5);
        QTest::mouseClick(m_shown->view->viewport(), Qt::MiddleButton, {}, m_shown->buttonAt(1, 0));
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(1, Name).center());
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {},
                          m_shown->cell(1, Buttons).topLeft() + QPoint(1, 1));
        QVERIFY(m_shown->sink.events.empty());
    }

    void aRowThatWasReplacedWhileTheButtonWasDownIsNotClicked()
    {
        m_shown->fill(5);
        const QPoint at = m_shown->buttonAt(1, 0);
        QTest::mousePress(m_shown->view->viewport(), Qt::LeftButton, {}, at);
        m_shown->model->clear();
        m_shown->model->add("other", "别的");
        m_shown->model->add("other2", "别的");
        m_shown->buttons->setItemButtons("other2", {{4, "编辑", 1}});
        ShownTable::settle();
        QTest::mouseRelease(m_shown->view->viewport(), Qt::LeftButton, {}, at);
        QVERIFY(m_shown->sink.events.empty());
    }

    void theHandlerMayEmptyTheTable()
    {
        m_shown->fill(5);
        m_shown->sink.then = [&] {
            m_shown->model->clear();
            m_shown->buttons->clear();
        };
        click(1, 0);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(1));
        ShownTable::settle();
        QCOMPARE(m_shown->model->rowCount(), 0);
    }

    void theHandlerMayDeleteTheTable()
    {
        m_shown->fill(5);
        QPointer<WQ::CStandardHpfTable> alive(m_shown->table.get());
        m_shown->sink.then = [&] { m_shown->table.release()->deleteLater(); };
        click(1, 0);
        QTRY_VERIFY(!alive);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(1));
    }

    void spaceAndEnterTriggerTheFocusedButtonOnce()
    {
        m_shown->fill(5);
        m_shown->view->setCurrentIndex(m_shown->model->index(2, Price));
        m_shown->press(Qt::Key_Right);
        QCOMPARE(m_shown->view->currentIndex().column(), int(Buttons));
        m_shown->press(Qt::Key_Space);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(1));
        QCOMPARE(m_shown->sink.events.back().param, 4);
        QCOMPARE(m_shown->sink.events.back().text, QString("k2"));
        m_shown->press(Qt::Key_Right);
        m_shown->press(Qt::Key_Return);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(2));
        QCOMPARE(m_shown->sink.events.back().param, 9);
        m_shown->press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(m_shown->sink.events.size(), std::size_t(3));
    }

    void leftAndRightMoveBetweenButtonsAndThenBetweenCells()
    {
        m_shown->fill(3);
        m_shown->view->setCurrentIndex(m_shown->model->index(0, Buttons));
        m_shown->press(Qt::Key_Right);
        QVERIFY(m_shown->view->accessibleDescription().contains("删除"));
        m_shown->press(Qt::Key_Right);
        QCOMPARE(m_shown->view->currentIndex().column(), int(Buttons));
        m_shown->press(Qt::Key_Left);
        QVERIFY(m_shown->view->accessibleDescription().contains("编辑"));
        m_shown->press(Qt::Key_Left);
        QCOMPARE(m_shown->view->currentIndex().column(), int(Price));
        m_shown->press(Qt::Key_Space);
        QVERIFY(m_shown->sink.events.empty());
    }

    void hoverAndPressChangeThePicture()
    {
        m_shown->fill(3);
        QWidget* viewport = m_shown->view->viewport();
        const auto picture = [&] {
            ShownTable::settle();
            return viewport->grab(m_shown->cell(1, Buttons)).toImage();
        };
        const QPoint away = m_shown->cell(1, Name).center();
        QTest::mouseMove(viewport, away);
        const QImage rests = picture();
        QTest::mouseMove(viewport, m_shown->buttonAt(1, 1));
        const QImage hovered = picture();
        QTest::mousePress(viewport, Qt::LeftButton, {}, m_shown->buttonAt(1, 1));
        const QImage pressed = picture();
        QVERIFY(rests != hovered);
        QVERIFY(hovered != pressed);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, away);
    }

    void theTipOfAButtonIsItsText()
    {
        m_shown->fill(3);
        const QModelIndex index = m_shown->model->index(1, Buttons);
        QCOMPARE(m_shown->buttons->toolTipAt(index, m_shown->cell(1, Buttons), m_shown->buttonAt(1, 1)),
                 QString("删除"));
        QCOMPARE(m_shown->buttons->toolTipAt(index, m_shown->cell(1, Buttons), m_shown->cell(1, Buttons).topLeft()),
                 QString());
    }

    void buttonsAreKeptPerKeyUntilCleared()
    {
        m_shown->buttons->setItemButtons("later", {{1, "甲", 1}});
        QCOMPARE(m_shown->buttons->itemButtons("later").size(), 1);
        m_shown->buttons->setItemButtons("later", {{1, "甲", 1}, {2, "乙", 1}});
        QCOMPARE(m_shown->buttons->itemButtons("later").size(), 2);
        QVERIFY(m_shown->buttons->itemButtons("unknown").isEmpty());
        m_shown->model->add("later", "x");
        ShownTable::settle();
        QVERIFY(m_shown->buttonAt(0, 1).x() > m_shown->buttonAt(0, 0).x());
        m_shown->buttons->clear();
        QVERIFY(m_shown->buttons->itemButtons("later").isEmpty());
        QVERIFY(m_shown->buttons->buttonRect(m_shown->model->index(0, Buttons), m_shown->cell(0, Buttons), 0).isNull());
    }

    void everyRowOfManyKeepsItsOwnButtons()
    {
        constexpr int count = 30000;
        for (int i = 0; i < count; ++i) {
            m_shown->buttons->setItemButtons(QStringLiteral("k%1").arg(i),
                                             {{i, QStringLiteral("按钮%1").arg(i % 700), 1}});
            if (i == 10000) {
                QCOMPARE(m_shown->buttons->itemButtons("k77").at(0).id, 77);
            }
        }
        for (int i = 0; i < count; ++i) {
            const QVector<WQ::ButtonData> buttons = m_shown->buttons->itemButtons(QStringLiteral("k%1").arg(i));
            QCOMPARE(buttons.size(), 1);
            QCOMPARE(buttons.at(0).id, i);
        }
    }

    void aRowWithoutButtonsHasAnEmptyCell()
    {
        m_shown->model->add("a", "甲");
        m_shown->buttons->setItemButtons("a", {});
        ShownTable::settle();
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(0, Buttons).center());
        m_shown->press(Qt::Key_Space);
        QVERIFY(m_shown->sink.events.empty());
        QCOMPARE(m_shown->model->index(0, Buttons).data(Qt::AccessibleTextRole).toString(), QString());
    }

    void aDelegateThatIsReplacedIsDeleted()
    {
        m_shown->fill(2);
        QPointer<WQ::CBaseTableColumnDelegate> old(m_shown->buttons);
        QCOMPARE(m_shown->table->columnDelegate(Buttons), old.data());
        m_shown->table->setColumnDelegate(Buttons, nullptr);
        QVERIFY(!old);
        QVERIFY(!m_shown->table->columnDelegate(Buttons));
        ShownTable::settle();
    }
};

TEST_WITH_WIDGETS(TableButtonsTest)
#include "tst_table_buttons.moc"
