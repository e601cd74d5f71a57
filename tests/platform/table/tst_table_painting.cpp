// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

using namespace support;

/// What a table paints, pixel by pixel. Both kinds of table are painted by the same code.
class TablePaintingTest : public QObject
{
    Q_OBJECT

    static QColor theme(const QString& key) { return WQ::CUiResourceManager::instance()->colour(key); }

    static QImage picture(const ShownTable& shown) { return shown.view->viewport()->grab().toImage(); }

    /// The colour beside the text of a cell.
    static QColor background(const ShownTable& shown, int row, int column)
    {
        const QRect cell = shown.cell(row, column);
        return picture(shown).pixelColor(cell.left() + 3, cell.center().y());
    }

    /// How many pixels of an area differ from the colour beside the text.
    static int ink(const ShownTable& shown, int row, int column, const QRect& area)
    {
        const QImage image = picture(shown);
        const QColor plain = background(shown, row, column);
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                count += image.pixelColor(x, y) != plain;
            }
        }
        return count;
    }

    static void moveMouse(const ShownTable& shown, const QPoint& position)
    {
        QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(shown.view->viewport(), &move);
    }

private slots:
    void aSelectedRowHasTheColourOfTheSelection()
    {
        ShownTable shown;
        shown.fill(4);
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(1, Name).center());
        QCOMPARE(background(shown, 1, Name), theme(WQ::key::TableSelection));
        QCOMPARE(background(shown, 1, Price), theme(WQ::key::TableSelection));
        QCOMPARE(background(shown, 2, Name), theme(WQ::key::TableBackground));
    }

    void withCellSelectionOnlyTheCellHasIt()
    {
        ShownTable shown;
        shown.table->setFlags(shown.table->flags() | WQ::TableCellSelection);
        shown.fill(4);
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(2, Place).center());
        QCOMPARE(background(shown, 2, Place), theme(WQ::key::TableSelection));
        QCOMPARE(background(shown, 2, Count), theme(WQ::key::TableBackground));
        QCOMPARE(background(shown, 2, Price), theme(WQ::key::TableBackground));
    }

    void theRowUnderTheMouseIsHighlightedIfTheFlagSaysSo()
    {
        ShownTable shown;
        shown.fill(4);
        moveMouse(shown, shown.cell(2, Name).center());
        QCOMPARE(background(shown, 2, Place), theme(WQ::key::TableHover));
        moveMouse(shown, shown.cell(0, Name).center());
        QCOMPARE(background(shown, 2, Place), theme(WQ::key::TableBackground));
        shown.table->setFlags(shown.table->flags() & ~WQ::TableRowHover);
        QCOMPARE(background(shown, 0, Place), theme(WQ::key::TableBackground));
        shown.table->setFlags(shown.table->flags() | WQ::TableRowHover);
        QCOMPARE(background(shown, 0, Place), theme(WQ::key::TableHover));
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(shown.view->viewport(), &leave);
        QCOMPARE(background(shown, 0, Place), theme(WQ::key::TableBackground));
    }

    void cellsThatContainTheTextToFindAreMarked()
    {
        ShownTable shown;
        shown.fill(6);
        shown.press(Qt::Key_F, Qt::ControlModifier);
        auto* const edit = shown.table->findChild<QLineEdit*>("tableFindEdit");
        edit->setText("shanghai");
        QCOMPARE(background(shown, 3, Place), theme(WQ::key::TableFindMatch));
        QCOMPARE(background(shown, 2, Place), theme(WQ::key::TableBackground));
        QCOMPARE(background(shown, 3, Name), theme(WQ::key::TableBackground2));
        edit->clear();
        QCOMPARE(background(shown, 3, Place), theme(WQ::key::TableBackground2));
    }

    void linesSeparateTheCellsIfTheFlagSaysSo()
    {
        ShownTable shown;
        shown.fill(2);
        const QRect cell = shown.cell(0, Name);
        QCOMPARE(picture(shown).pixelColor(cell.right(), cell.center().y()), theme(WQ::key::TableGrid));
        QCOMPARE(picture(shown).pixelColor(cell.left() + 3, cell.bottom()), theme(WQ::key::TableGrid));
        shown.table->setFlags(shown.table->flags() & ~WQ::TableShowGrid);
        QCOMPARE(picture(shown).pixelColor(cell.right(), cell.center().y()), theme(WQ::key::TableBackground));
        QCOMPARE(picture(shown).pixelColor(cell.left() + 3, cell.bottom()), theme(WQ::key::TableBackground));
    }

    void theCurrentCellHasAFrameWhileTheTableHasTheFocus()
    {
        ShownTable shown;
        shown.fill(3);
        const auto edge = [&](int row, int column) {
            const QRect cell = shown.cell(row, column);
            return picture(shown).pixelColor(cell.left(), cell.center().y());
        };
        shown.press(Qt::Key_Down);
        QCOMPARE(edge(0, Name), theme(WQ::key::FocusRing));
        QVERIFY(edge(0, Count) != theme(WQ::key::FocusRing));
        QVERIFY(edge(1, Name) != theme(WQ::key::FocusRing));
        shown.press(Qt::Key_Right);
        QCOMPARE(edge(0, Count), theme(WQ::key::FocusRing));
        shown.view->clearFocus();
        QVERIFY(edge(0, Count) != theme(WQ::key::FocusRing));
    }

    void numbersStandAtTheRightAndTextsAtTheLeft()
    {
        ShownTable shown;
        shown.table->setColumnWidth(Name, 200);
        shown.table->setColumnWidth(Count, 200);
        shown.fill(2);
        const auto half = [&](int column, bool right) {
            const QRect cell = shown.cell(0, column).adjusted(1, 1, -2, -2);
            return QRect(right ? cell.center().x() : cell.left(), cell.top(), cell.width() / 2, cell.height());
        };
        QVERIFY(ink(shown, 0, Name, half(Name, false)) > 0);
        QCOMPARE(ink(shown, 0, Name, half(Name, true)), 0);
        QCOMPARE(ink(shown, 0, Count, half(Count, false)), 0);
        QVERIFY(ink(shown, 0, Count, half(Count, true)) > 0);
    }

    void aLongTextStaysInItsCell()
    {
        ShownTable shown;
        shown.table->setColumnWidth(Name, 100);
        shown.model->add("a", QString(300, QChar(0x7532)));
        ShownTable::settle();
        QVERIFY(ink(shown, 0, Name, shown.cell(0, Name).adjusted(1, 1, -2, -2)) > 0);
        QCOMPARE(ink(shown, 0, Place, shown.cell(0, Place).adjusted(0, 1, -2, -2)), 0);
    }

    void aDisabledTableHasPaleTexts()
    {
        ShownTable shown;
        shown.fill(1);
        const QImage before = picture(shown);
        shown.table->setEnabled(false);
        const QImage pale = picture(shown);
        const QRect cell = shown.cell(0, Name);
        QVERIFY(pale.copy(cell) != before.copy(cell));
        QCOMPARE(background(shown, 0, Name), theme(WQ::key::TableBackground));
    }
};

TEST_WITH_WIDGETS(TablePaintingTest)
#include "tst_table_painting.moc"
