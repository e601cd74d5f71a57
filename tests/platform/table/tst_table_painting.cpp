// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

using namespace support;

/// What a table paints, pixel by pixel. Both kinds of table are painted by the same code.
class TablePaintingTest : public ShownTableTest
{
    Q_OBJECT

    static QColor theme(const QString& key) { return WQ::CUiResourceManager::instance()->colour(key); }

    QImage picture() { return m_shown->view->viewport()->grab().toImage(); }

    /// The colour beside the text of a cell.
    QColor background(int row, int column)
    {
        const QRect cell = m_shown->cell(row, column);
        return picture().pixelColor(cell.left() + 3, cell.center().y());
    }

    /// How many pixels of an area differ from the colour beside the text.
    int ink(int row, int column, const QRect& area)
    {
        const QImage image = picture();
        const QColor plain = background(row, column);
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                count += image.pixelColor(x, y) != plain;
            }
        }
        return count;
    }

    void moveMouse(const QPoint& position)
    {
        QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(m_shown->view->viewport(), &move);
    }

private slots:
    void aSelectedRowHasTheColourOfTheSelection()
    {
        m_shown->fill(4);
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(1, Name).center());
        QCOMPARE(background(1, Name), theme(WQ::key::TableSelection));
        QCOMPARE(background(1, Price), theme(WQ::key::TableSelection));
        QCOMPARE(background(2, Name), theme(WQ::key::TableBackground));
    }

    void withCellSelectionOnlyTheCellHasIt()
    {
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableCellSelection);
        m_shown->fill(4);
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(2, Place).center());
        QCOMPARE(background(2, Place), theme(WQ::key::TableSelection));
        QCOMPARE(background(2, Count), theme(WQ::key::TableBackground));
        QCOMPARE(background(2, Price), theme(WQ::key::TableBackground));
    }

    void theRowUnderTheMouseIsHighlightedIfTheFlagSaysSo()
    {
        m_shown->fill(4);
        moveMouse(m_shown->cell(2, Name).center());
        QCOMPARE(background(2, Place), theme(WQ::key::TableHover));
        moveMouse(m_shown->cell(0, Name).center());
        QCOMPARE(background(2, Place), theme(WQ::key::TableBackground));
        m_shown->table->setFlags(m_shown->table->flags() & ~WQ::TableRowHover);
        QCOMPARE(background(0, Place), theme(WQ::key::TableBackground));
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableRowHover);
        QCOMPARE(background(0, Place), theme(WQ::key::TableHover));
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(m_shown->view->viewport(), &leave);
        QCOMPARE(background(0, Place), theme(WQ::key::TableBackground));
    }

    void cellsThatContainTheTextToFindAreMarked()
    {
        m_shown->fill(6);
        m_shown->press(Qt::Key_F, Qt::ControlModifier);
        auto* const edit = m_shown->table->findChild<QLineEdit*>("tableFindEdit");
        edit->setText("shanghai");
        QCOMPARE(background(3, Place), theme(WQ::key::TableFindMatch));
        QCOMPARE(background(2, Place), theme(WQ::key::TableBackground));
        QCOMPARE(background(3, Name), theme(WQ::key::TableBackground2));
        edit->clear();
        QCOMPARE(background(3, Place), theme(WQ::key::TableBackground2));
    }

    void linesSeparateTheCellsIfTheFlagSaysSo()
    {
        m_shown->fill(2);
        const QRect cell = m_shown->cell(0, Name);
        QCOMPARE(picture().pixelColor(cell.right(), cell.center().y()), theme(WQ::key::TableGrid));
        QCOMPARE(picture().pixelColor(cell.left() + 3, cell.bottom()), theme(WQ::key::TableGrid));
        m_shown->table->setFlags(m_shown->table->flags() & ~WQ::TableShowGrid);
        QCOMPARE(picture().pixelColor(cell.right(), cell.center().y()), theme(WQ::key::TableBackground));
        QCOMPARE(picture().pixelColor(cell.left() + 3, cell.bottom()), theme(WQ::key::TableBackground));
    }

    void theCurrentCellHasAFrameWhileTheTableHasTheFocus()
    {
        m_shown->fill(3);
        const auto edge = [&](int row, int column) {
            const QRect cell = m_shown->cell(row, column);
            return picture().pixelColor(cell.left(), cell.center().y());
        };
        m_shown->press(Qt::Key_Down);
        QCOMPARE(edge(0, Name), theme(WQ::key::FocusRing));
        QVERIFY(edge(0, Count) != theme(WQ::key::FocusRing));
        QVERIFY(edge(1, Name) != theme(WQ::key::FocusRing));
        m_shown->press(Qt::Key_Right);
        QCOMPARE(edge(0, Count), theme(WQ::key::FocusRing));
        m_shown->view->clearFocus();
        QVERIFY(edge(0, Count) != theme(WQ::key::FocusRing));
    }

    void numbersStandAtTheRightAndTextsAtTheLeft()
    {
        m_shown->table->setColumnWidth(Name, 200);
        m_shown->table->setColumnWidth(Count, 200);
        m_shown->fill(2);
        const auto half = [&](int column, bool right) {
            const QRect cell = m_shown->cell(0, column).adjusted(1, 1, -2, -2);
            return QRect(right ? cell.center().x() : cell.left(), cell.top(), cell.width() / 2, cell.height());
        };
        QVERIFY(ink(0, Name, half(Name, false)) > 0);
        QCOMPARE(ink(0, Name, half(Name, true)), 0);
        QCOMPARE(ink(0, Count, half(Count, false)), 0);
        QVERIFY(ink(0, Count, half(Count, true)) > 0);
    }

    void aLongTextStaysInItsCell()
    {
        m_shown->table->setColumnWidth(Name, 100);
        m_shown->model->add("a", QString(300, QChar(0x7532)));
        ShownTable::settle();
        QVERIFY(ink(0, Name, m_shown->cell(0, Name).adjusted(1, 1, -2, -2)) > 0);
        QCOMPARE(ink(0, Place, m_shown->cell(0, Place).adjusted(0, 1, -2, -2)), 0);
    }

    void aDisabledTableHasPaleTexts()
    {
        m_shown->fill(1);
        const QImage before = picture();
        m_shown->table->setEnabled(false);
        const QImage pale = picture();
        const QRect cell = m_shown->cell(0, Name);
        QVERIFY(pale.copy(cell) != before.copy(cell));
        QCOMPARE(background(0, Name), theme(WQ::key::TableBackground));
    }
};

TEST_WITH_WIDGETS(TablePaintingTest)
#include "tst_table_painting.moc"
