// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/EventType.h>

using namespace support;

class TableButtonsTest : public QObject
{
    Q_OBJECT

    static void click(ShownTable& shown, int row, int position)
    {
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.buttonAt(row, position));
    }

private slots:
    void aClickIsOneEventWithRowKeyAndButtonId()
    {
        ShownTable shown;
        shown.fill(20);
        click(shown, 3, 1);
        QCOMPARE(shown.sink.events.size(), std::size_t(1));
        const Event& event = shown.sink.events.front();
        QCOMPARE(event.type, int(WQ::RowButtonClicked));
        QCOMPARE(event.type, 218);
        QCOMPARE(event.id, int(Buttons));
        QCOMPARE(event.param, 9);
        QCOMPARE(event.text, QString("k3"));
        QVERIFY(!event.data);
        click(shown, 0, 0);
        QCOMPARE(shown.sink.events.size(), std::size_t(2));
        QCOMPARE(shown.sink.events.back().param, 4);
        QCOMPARE(shown.sink.events.back().text, QString("k0"));
        QCOMPARE(shown.table->currentKey(), QString("k0"));
    }

    void theKeyFollowsTheRowThroughSortingFilterAndScrolling()
    {
        ShownTable shown;
        shown.fill(1000);
        shown.table->sortByColumn(Count, Qt::AscendingOrder);
        click(shown, 0, 0);
        QCOMPARE(shown.sink.events.back().text, QString("k999"));
        shown.table->filterColumn(Name, {WQ::FilterContains, {"组12"}});
        click(shown, 0, 0);
        QCOMPARE(shown.sink.events.back().text, QString("k129"));
        shown.table->clearFilter();
        shown.view->scrollToBottom();
        click(shown, 999, 1);
        QCOMPARE(shown.sink.events.back().text, QString("k0"));
        QCOMPARE(shown.sink.events.size(), std::size_t(3));
    }

    void aReleaseElsewhereIsNoEvent()
    {
        ShownTable shown;
        shown.fill(5);
        QTest::mousePress(shown.view->viewport(), Qt::LeftButton, {}, shown.buttonAt(1, 0));
        QTest::mouseRelease(shown.view->viewport(), Qt::LeftButton, {}, shown.buttonAt(1, 1));
        QTest::mousePress(shown.view->viewport(), Qt::LeftButton, {}, shown.buttonAt(1, 0));
        QTest::mouseRelease(shown.view->viewport(), Qt::LeftButton, {}, shown.buttonAt(2, 0));
        QTest::mousePress(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(1, Name).center());
        QTest::mouseRelease(shown.view->viewport(), Qt::LeftButton, {}, shown.buttonAt(1, 0));
        QVERIFY(shown.sink.events.empty());
    }

    void otherMouseButtonsAndOtherCellsAreNoEvent()
    {
        ShownTable shown;
        shown.fill(5);
        QTest::mouseClick(shown.view->viewport(), Qt::MiddleButton, {}, shown.buttonAt(1, 0));
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(1, Name).center());
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(1, Buttons).topLeft() + QPoint(1, 1));
        QVERIFY(shown.sink.events.empty());
    }

    void aRowThatWasReplacedWhileTheButtonWasDownIsNotClicked()
    {
        ShownTable shown;
        shown.fill(5);
        const QPoint at = shown.buttonAt(1, 0);
        QTest::mousePress(shown.view->viewport(), Qt::LeftButton, {}, at);
        shown.model->clear();
        shown.model->add("other", "别的");
        shown.model->add("other2", "别的");
        shown.buttons->setItemButtons("other2", {{4, "编辑", 1}});
        ShownTable::settle();
        QTest::mouseRelease(shown.view->viewport(), Qt::LeftButton, {}, at);
        QVERIFY(shown.sink.events.empty());
    }

    void theHandlerMayEmptyTheTable()
    {
        ShownTable shown;
        shown.fill(5);
        shown.sink.then = [&] {
            shown.model->clear();
            shown.buttons->clear();
        };
        click(shown, 1, 0);
        QCOMPARE(shown.sink.events.size(), std::size_t(1));
        ShownTable::settle();
        QCOMPARE(shown.model->rowCount(), 0);
    }

    void theHandlerMayDeleteTheTable()
    {
        ShownTable shown;
        shown.fill(5);
        QPointer<WQ::CStandardHpfTable> alive(shown.table.get());
        shown.sink.then = [&] { shown.table.release()->deleteLater(); };
        click(shown, 1, 0);
        QTRY_VERIFY(!alive);
        QCOMPARE(shown.sink.events.size(), std::size_t(1));
    }

    void spaceAndEnterTriggerTheFocusedButtonOnce()
    {
        ShownTable shown;
        shown.fill(5);
        shown.view->setCurrentIndex(shown.model->index(2, Price));
        shown.press(Qt::Key_Right);
        QCOMPARE(shown.view->currentIndex().column(), int(Buttons));
        shown.press(Qt::Key_Space);
        QCOMPARE(shown.sink.events.size(), std::size_t(1));
        QCOMPARE(shown.sink.events.back().param, 4);
        QCOMPARE(shown.sink.events.back().text, QString("k2"));
        shown.press(Qt::Key_Right);
        shown.press(Qt::Key_Return);
        QCOMPARE(shown.sink.events.size(), std::size_t(2));
        QCOMPARE(shown.sink.events.back().param, 9);
        shown.press(Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(shown.sink.events.size(), std::size_t(3));
    }

    void leftAndRightMoveBetweenButtonsAndThenBetweenCells()
    {
        ShownTable shown;
        shown.fill(3);
        shown.view->setCurrentIndex(shown.model->index(0, Buttons));
        shown.press(Qt::Key_Right);
        QVERIFY(shown.view->accessibleDescription().contains("删除"));
        shown.press(Qt::Key_Right);
        QCOMPARE(shown.view->currentIndex().column(), int(Buttons));
        shown.press(Qt::Key_Left);
        QVERIFY(shown.view->accessibleDescription().contains("编辑"));
        shown.press(Qt::Key_Left);
        QCOMPARE(shown.view->currentIndex().column(), int(Price));
        shown.press(Qt::Key_Space);
        QVERIFY(shown.sink.events.empty());
    }

    void hoverAndPressChangeThePicture()
    {
        ShownTable shown;
        shown.fill(3);
        QWidget* viewport = shown.view->viewport();
        const auto picture = [&] {
            ShownTable::settle();
            return viewport->grab(shown.cell(1, Buttons)).toImage();
        };
        const QPoint away = shown.cell(1, Name).center();
        QTest::mouseMove(viewport, away);
        const QImage rests = picture();
        QTest::mouseMove(viewport, shown.buttonAt(1, 1));
        const QImage hovered = picture();
        QTest::mousePress(viewport, Qt::LeftButton, {}, shown.buttonAt(1, 1));
        const QImage pressed = picture();
        QVERIFY(rests != hovered);
        QVERIFY(hovered != pressed);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, away);
    }

    void theTipOfAButtonIsItsText()
    {
        ShownTable shown;
        shown.fill(3);
        const QModelIndex index = shown.model->index(1, Buttons);
        QCOMPARE(shown.buttons->toolTipAt(index, shown.cell(1, Buttons), shown.buttonAt(1, 1)), QString("删除"));
        QCOMPARE(shown.buttons->toolTipAt(index, shown.cell(1, Buttons), shown.cell(1, Buttons).topLeft()), QString());
    }

    void buttonsAreKeptPerKeyUntilCleared()
    {
        ShownTable shown;
        shown.buttons->setItemButtons("later", {{1, "甲", 1}});
        QCOMPARE(shown.buttons->itemButtons("later").size(), 1);
        shown.buttons->setItemButtons("later", {{1, "甲", 1}, {2, "乙", 1}});
        QCOMPARE(shown.buttons->itemButtons("later").size(), 2);
        QVERIFY(shown.buttons->itemButtons("unknown").isEmpty());
        shown.model->add("later", "x");
        ShownTable::settle();
        QVERIFY(shown.buttonAt(0, 1).x() > shown.buttonAt(0, 0).x());
        shown.buttons->clear();
        QVERIFY(shown.buttons->itemButtons("later").isEmpty());
        QVERIFY(shown.buttons->buttonRect(shown.model->index(0, Buttons), shown.cell(0, Buttons), 0).isNull());
    }

    void everyRowOfManyKeepsItsOwnButtons()
    {
        ShownTable shown;
        constexpr int count = 30000;
        for (int i = 0; i < count; ++i) {
            shown.buttons->setItemButtons(QStringLiteral("k%1").arg(i),
                                          {{i, QStringLiteral("按钮%1").arg(i % 700), 1}});
            if (i == 10000) {
                QCOMPARE(shown.buttons->itemButtons("k77").at(0).id, 77);
            }
        }
        for (int i = 0; i < count; ++i) {
            const QVector<WQ::ButtonData> buttons = shown.buttons->itemButtons(QStringLiteral("k%1").arg(i));
            QCOMPARE(buttons.size(), 1);
            QCOMPARE(buttons.at(0).id, i);
        }
    }

    void aRowWithoutButtonsHasAnEmptyCell()
    {
        ShownTable shown;
        shown.model->add("a", "甲");
        shown.buttons->setItemButtons("a", {});
        ShownTable::settle();
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(0, Buttons).center());
        shown.press(Qt::Key_Space);
        QVERIFY(shown.sink.events.empty());
        QCOMPARE(shown.model->index(0, Buttons).data(Qt::AccessibleTextRole).toString(), QString());
    }

    void aDelegateThatIsReplacedIsDeleted()
    {
        ShownTable shown;
        shown.fill(2);
        QPointer<WQ::CBaseTableColumnDelegate> old(shown.buttons);
        QCOMPARE(shown.table->columnDelegate(Buttons), old.data());
        shown.table->setColumnDelegate(Buttons, nullptr);
        QVERIFY(!old);
        QVERIFY(!shown.table->columnDelegate(Buttons));
        ShownTable::settle();
    }
};

TEST_WITH_WIDGETS(TableButtonsTest)
#include "tst_table_buttons.moc"
