// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/CUiResourceManager.h>

using namespace support;

class TableViewTest : public ShownTableTest
{
    Q_OBJECT

    /// Counts the paint events of a widget.
    struct PaintCounter : QObject {
        explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }
        bool eventFilter(QObject*, QEvent* event) override
        {
            paints += event->type() == QEvent::Paint;
            return false;
        }
        int paints = 0;
    };

    QImage picture() { return m_shown->view->viewport()->grab().toImage(); }

private slots:
    void onlyRowsOnScreenAreRead()
    {
        std::vector<RowPtr> rows;
        for (int i = 0; i < 10000; ++i) {
            rows.push_back(m_shown->model->add(QString::number(i), QStringLiteral("组%1").arg(i)));
        }
        m_shown->table->updateTable();
        m_shown->table->adjustColumnWidth();
        ShownTable::settle();
        const auto read = std::count_if(rows.begin(), rows.end(), [](const RowPtr& row) { return row->shown > 0; });
        QVERIFY(read > 5);
        QVERIFY2(read < 50, qPrintable(QString::number(read)));
        QVERIFY(rows[0]->shown > 0);
        QCOMPARE(rows[9999]->shown, 0);
        m_shown->view->scrollToBottom();
        ShownTable::settle();
        QVERIFY(rows[9999]->shown > 0);
        QCOMPARE(rows[5000]->shown, 0);
    }

    void whatLiesBelowTheLastRowCanBePaintedAlone()
    {
        const RowPtr row = m_shown->model->add("a", "甲");
        ShownTable::settle();
        row->shown = 0;
        QWidget* const viewport = m_shown->view->viewport();
        const QRect below(0, viewport->height() - 10, viewport->width(), 10);
        viewport->repaint(below);
        QCOMPARE(row->shown, 0);
        viewport->repaint();
        QVERIFY(row->shown > 0);
    }

    void requestsAreCarriedOutOncePerTurn()
    {
        const RowPtr row = m_shown->model->add("a", "甲");
        ShownTable::settle();
        PaintCounter counter(m_shown->view->viewport());
        row->shown = 0;
        for (int i = 0; i < 100; ++i) {
            m_shown->table->updateTable();
            m_shown->table->adjustColumnWidth();
        }
        QCOMPARE(row->shown, 0);
        QTRY_VERIFY(counter.paints > 0);
        ShownTable::settle();
        QCOMPARE(counter.paints, 1);
        // Four columns fitted and painted once each.
        QVERIFY2(row->shown <= 10, qPrintable(QString::number(row->shown)));
        QVERIFY(row->shown >= 4);
    }

    void fittingWidensAColumnToTheRowsOnScreen()
    {
        m_shown->model->add("a", "甲");
        m_shown->table->adjustColumnWidth();
        ShownTable::settle();
        const int narrow = m_shown->table->columnWidth(Name);
        m_shown->model->add("b", QString(20, QChar(0x7532)));
        m_shown->table->adjustColumnWidth();
        ShownTable::settle();
        QVERIFY(m_shown->table->columnWidth(Name) > narrow + 100);
    }

    void largerFontsWidenColumnsAndSmallerOnesNarrowThem()
    {
        m_shown->model->add("a", QString(12, QChar(0x7532)));
        m_shown->table->adjustColumnWidth();
        ShownTable::settle();
        const int usual = m_shown->table->columnWidth(Name);
        const QFont font = m_shown->table->font();
        QFont large = font;
        large.setPixelSize(font.pixelSize() * 3 / 2);
        m_shown->table->setFont(large);
        ShownTable::settle();
        QVERIFY(m_shown->table->columnWidth(Name) > 12 * large.pixelSize());
        m_shown->table->setFont(font);
        ShownTable::settle();
        QCOMPARE(m_shown->table->columnWidth(Name), usual);
    }

    void fittingLeavesChosenWidthsAlone()
    {
        m_shown->table->setColumnWidth(Place, 200);
        m_shown->fill(3);
        QCOMPARE(m_shown->table->columnWidth(Place), 200);
        QCOMPARE(m_shown->table->header()->sectionSize(Place), 200);
    }

    void aDoubleClickOnAColumnBorderFitsTheColumn()
    {
        m_shown->table->setColumnWidth(Name, 300);
        m_shown->fill(3);
        QHeaderView* const header = m_shown->table->header();
        const QPoint border(header->sectionViewportPosition(Name) + 299, header->height() / 2);
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, border);
        QTRY_VERIFY(m_shown->table->columnWidth(Name) < 200);
        const int fitted = m_shown->table->columnWidth(Name);
        m_shown->model->add("long", QString(20, QChar(0x7532)));
        m_shown->table->adjustColumnWidth();
        QTRY_VERIFY(m_shown->table->columnWidth(Name) > fitted);
    }

    void widthsSurviveFilterSortingAndRefill()
    {
        m_shown->table->setColumnWidth(Name, 321);
        m_shown->table->header()->moveSection(0, 2);
        m_shown->fill(30);
        m_shown->table->filterColumn(Name, {WQ::FilterContains, {"1"}});
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        m_shown->model->clear();
        m_shown->fill(3);
        QCOMPARE(m_shown->table->header()->sectionSize(Name), 321);
        QCOMPARE(m_shown->table->header()->visualIndex(Name), 2);
    }

    void rowColoursAlternateOnScreen()
    {
        m_shown->fill(6);
        const QImage image = picture();
        const int right = m_shown->view->viewport()->width() - 4;
        for (int row = 0; row < 6; ++row) {
            const QColor wanted =
                WQ::CUiResourceManager::instance()->colour(row % 2 ? "clr_table_background2" : "clr_table_background");
            QCOMPARE(image.pixelColor(right, m_shown->cell(row, Name).center().y()), wanted);
        }
    }

    void aThemeSwitchRepaintsInTheNewColours()
    {
        m_shown->fill(6);
        auto* resources = WQ::CUiResourceManager::instance();
        const QString before = resources->theme();
        const QImage first = picture();
        PaintCounter counter(m_shown->view->viewport());
        QVERIFY(resources->setTheme(before == "dark" ? "light" : "dark"));
        QTRY_VERIFY(counter.paints > 0);
        const QPoint spot(m_shown->view->viewport()->width() - 4, m_shown->cell(1, Name).center().y());
        QCOMPARE(picture().pixelColor(spot), resources->colour("clr_table_background2"));
        QVERIFY(picture() != first);
        QVERIFY(resources->setTheme(before));
    }

    void anEmptyTableSaysWhy()
    {
        ShownTable::settle();
        const QImage noData = picture();
        m_shown->fill(2);
        m_shown->table->filterColumn(Name, {WQ::FilterContains, {"没有"}});
        ShownTable::settle();
        const QImage noMatch = picture();
        QVERIFY(noData != noMatch);
        m_shown->table->setFlags(m_shown->table->flags() & ~WQ::TableEmptyText);
        ShownTable::settle();
        const QImage blank = picture();
        QVERIFY(blank != noData);
        QVERIFY(blank != noMatch);
        QCOMPARE(blank.pixelColor(blank.rect().center()),
                 WQ::CUiResourceManager::instance()->colour("clr_table_background"));
    }

    void theSelectionStaysWithItsRowsThroughSortingAndFilter()
    {
        m_shown->fill(100);
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(3, Name).center());
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          m_shown->cell(7, Name).center());
        QCOMPARE(m_shown->table->selectedKeys(), (QStringList{"k3", "k7"}));
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(m_shown->table->selectedKeys(), (QStringList{"k7", "k3"}));
        QCOMPARE(m_shown->table->currentKey(), QString("k7"));
        m_shown->table->filterColumn(Name, {WQ::FilterContains, {"组3"}});
        QCOMPARE(m_shown->table->selectedKeys(), QStringList{"k3"});
        m_shown->table->clearFilter();
        m_shown->table->clearSort();
        QCOMPARE(m_shown->table->selectedKeys(), QStringList{"k3"});
    }

    void everythingSelectedStaysSelectedAndOneRange()
    {
        m_shown->fill(5000);
        m_shown->press(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(m_shown->table->selectedKeys().size(), 5000);
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(m_shown->table->selectedKeys().size(), 5000);
        QCOMPARE(m_shown->view->selectionModel()->selection().size(), 1);
    }

    void theCurrentRowStaysOnScreenWhenRowsAreSorted()
    {
        m_shown->fill(1000);
        QVERIFY(m_shown->table->setCurrentKey("k2"));
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(m_shown->view->currentIndex().row(), 997);
        QVERIFY(m_shown->view->viewport()->rect().contains(m_shown->cell(997, Name).center()));
    }

    void aCurrentRowOffTheScreenStaysThereWhenRowsAreSorted()
    {
        m_shown->fill(1000);
        QVERIFY(m_shown->table->setCurrentKey("k2"));
        m_shown->view->verticalScrollBar()->setValue(500);
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(m_shown->table->currentKey(), QString("k2"));
        QCOMPARE(m_shown->view->verticalScrollBar()->value(), 500);
        // A row that is made current afterwards is scrolled to.
        QVERIFY(m_shown->table->setCurrentKey("k999"));
        QCOMPARE(m_shown->view->currentIndex().row(), 0);
        QVERIFY(m_shown->view->viewport()->rect().contains(m_shown->cell(0, Name).center()));
    }

    void aFilterThatHidesTheCurrentRowIsReported()
    {
        m_shown->fill(5);
        QVERIFY(m_shown->table->setCurrentKey("k1"));
        QSignalSpy changed(m_shown->table.get(), &WQ::CStandardHpfTable::sigCurrentKeyChanged);
        m_shown->table->filterColumn(Name, {WQ::FilterContains, {"组3"}});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toString(), QString());
    }

    void theKeyboardReachesEveryRow()
    {
        m_shown->fill(1000);
        m_shown->press(Qt::Key_Down);
        QCOMPARE(m_shown->view->currentIndex().row(), 0);
        m_shown->press(Qt::Key_Down);
        QCOMPARE(m_shown->table->currentKey(), QString("k1"));
        m_shown->press(Qt::Key_End);
        QCOMPARE(m_shown->table->currentKey(), QString("k999"));
        QVERIFY(m_shown->view->viewport()->rect().contains(m_shown->cell(999, Name).center()));
        m_shown->press(Qt::Key_Up);
        QCOMPARE(m_shown->table->currentKey(), QString("k998"));
        m_shown->press(Qt::Key_PageUp);
        QVERIFY(m_shown->view->currentIndex().row() < 998 - 5);
        m_shown->press(Qt::Key_Home);
        QCOMPARE(m_shown->table->currentKey(), QString("k0"));
        m_shown->press(Qt::Key_Down, Qt::ShiftModifier);
        m_shown->press(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(m_shown->table->selectedKeys(), (QStringList{"k0", "k1", "k2"}));
    }

    void ctrlHomeAndCtrlEndTakeTheSelectionAlong()
    {
        m_shown->fill(100);
        m_shown->press(Qt::Key_Down);
        for (const auto& [key, place] : {std::pair(Qt::Key_End, "k99"), std::pair(Qt::Key_Home, "k0")}) {
            m_shown->press(key, Qt::ControlModifier);
            QCOMPARE(m_shown->table->currentKey(), QString(place));
            QCOMPARE(m_shown->table->selectedKeys(), QStringList{place});
        }
        // Ctrl with an arrow still leaves the selection where it is.
        m_shown->press(Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(m_shown->table->currentKey(), QString("k1"));
        QCOMPARE(m_shown->table->selectedKeys(), QStringList{"k0"});
    }

    void theViewScrollsToARowAsTheHintSays()
    {
        m_shown->fill(1000);
        const auto scrollTo = [&](int row, QAbstractItemView::ScrollHint hint) {
            m_shown->view->scrollTo(m_shown->model->index(row, Name), hint);
            return m_shown->cell(row, Name);
        };
        const int height = m_shown->view->viewport()->height();
        QCOMPARE(scrollTo(300, QAbstractItemView::PositionAtTop).top(), 0);
        const QRect bottom = scrollTo(500, QAbstractItemView::PositionAtBottom);
        QVERIFY(bottom.bottom() < height && bottom.bottom() + bottom.height() >= height);
        const QRect centre = scrollTo(700, QAbstractItemView::PositionAtCenter);
        QVERIFY(qAbs(centre.center().y() - height / 2) <= centre.height());
        const QRect below = scrollTo(720, QAbstractItemView::EnsureVisible);
        QVERIFY(below.bottom() < height && below.bottom() + below.height() >= height);
        QCOMPARE(scrollTo(650, QAbstractItemView::EnsureVisible).top(), 0);
        QCOMPARE(scrollTo(655, QAbstractItemView::EnsureVisible).top(), 5 * below.height());
        m_shown->view->verticalScrollBar()->setValue(100000);
        const QRect last = m_shown->cell(999, Name);
        QVERIFY(last.bottom() < height && last.bottom() + last.height() >= height);
    }

    void findingKeepsASelectionThatIsGatheredClickByClick()
    {
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableToggleSelection);
        m_shown->fill(5);
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(4, Name).center());
        m_shown->press(Qt::Key_F, Qt::ControlModifier);
        m_shown->table->findChild<QLineEdit*>("tableFindEdit")->setText("shanghai");
        QCOMPARE(m_shown->table->currentKey(), QString("k1"));
        QCOMPARE(m_shown->table->selectedKeys(), QStringList{"k4"});
    }

    void enterAndDoubleClickActivateTheRow()
    {
        m_shown->fill(5);
        QSignalSpy activated(m_shown->table.get(), &WQ::CStandardHpfTable::sigRowActivated);
        m_shown->table->setCurrentKey("k2");
        m_shown->press(Qt::Key_Return);
        QCOMPARE(activated.count(), 1);
        QCOMPARE(activated.at(0).at(0).toString(), QString("k2"));
        QTest::mouseDClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(4, Name).center());
        QCOMPARE(activated.count(), 2);
        QCOMPARE(activated.at(1).at(0).toString(), QString("k4"));
        // A key that is held down is one action.
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", true);
        QApplication::sendEvent(m_shown->view, &repeated);
        QCOMPARE(activated.count(), 2);
    }

    void plainClicksGatherASelectionWhenTheFlagSaysSo()
    {
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableToggleSelection);
        m_shown->fill(5);
        for (int row : {0, 2, 3, 2}) {
            QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(row, Name).center());
        }
        QCOMPARE(m_shown->table->selectedKeys(), (QStringList{"k0", "k3"}));
    }

    void withCellSelectionASingleCellIsSelected()
    {
        m_shown->table->setFlags(m_shown->table->flags() | WQ::TableCellSelection);
        m_shown->fill(5);
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, m_shown->cell(2, Count).center());
        QCOMPARE(m_shown->view->selectionModel()->selectedIndexes().size(), 1);
        m_shown->press(Qt::Key_Right, Qt::ShiftModifier);
        m_shown->press(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(m_shown->view->selectionModel()->selectedIndexes().size(), 4);
    }

    void draggingSelectsTheRowsInBetween()
    {
        m_shown->fill(10);
        QWidget* viewport = m_shown->view->viewport();
        QTest::mousePress(viewport, Qt::LeftButton, {}, m_shown->cell(2, Name).center());
        QMouseEvent move(QEvent::MouseMove, m_shown->cell(5, Place).center(), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &move);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, m_shown->cell(5, Place).center());
        QCOMPARE(m_shown->table->selectedKeys(), (QStringList{"k2", "k3", "k4", "k5"}));
    }

    void rowsThatWaitAreShownBeforeTheNextClick()
    {
        m_shown->model->add("a", "甲");
        QTest::mouseClick(m_shown->view->viewport(), Qt::LeftButton, {}, QPoint(20, 10));
        QCOMPARE(m_shown->table->currentKey(), QString("a"));
    }

    void theCurrentKeyIsReportedWhenItChanges()
    {
        m_shown->fill(5);
        QSignalSpy changed(m_shown->table.get(), &WQ::CStandardHpfTable::sigCurrentKeyChanged);
        m_shown->table->setCurrentKey("k1");
        m_shown->table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(changed.count(), 1);
        m_shown->model->clear();
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.at(1).at(0).toString(), QString());
        QVERIFY(!m_shown->table->setCurrentKey("k1"));
    }

    void theFindBarMakesTheNextMatchCurrent()
    {
        m_shown->fill(50);
        m_shown->press(Qt::Key_F, Qt::ControlModifier);
        auto* edit = m_shown->table->findChild<QLineEdit*>("tableFindEdit");
        QVERIFY(edit->isVisible());
        QTRY_VERIFY(edit->hasFocus());
        QTest::keyClicks(edit, "shanghai");
        QCOMPARE(m_shown->table->currentKey(), QString("k1"));
        QCOMPARE(m_shown->view->currentIndex().column(), int(Place));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(m_shown->table->currentKey(), QString("k3"));
        QTest::keyClick(edit, Qt::Key_F3, Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(m_shown->table->currentKey(), QString("k49"));
        edit->clear();
        QTest::keyClicks(edit, "zzz");
        QCOMPARE(m_shown->table->findChild<QLabel*>("tableFindResult")->text(), QString("未找到"));
        QTest::keyClick(edit, Qt::Key_Escape);
        QVERIFY(!edit->isVisible());
        QTRY_VERIFY(m_shown->view->hasFocus());
    }

    void findReachesRowsFarAway()
    {
        m_shown->fill(12000);
        m_shown->press(Qt::Key_F, Qt::ControlModifier);
        auto* edit = m_shown->table->findChild<QLineEdit*>("tableFindEdit");
        edit->setText("组11987");
        QCOMPARE(m_shown->table->currentKey(), QString("k11987"));
    }

    void tipsShowTheRowsOwnTextAndNeverMarkup()
    {
        const RowPtr row = m_shown->model->add("a", "甲", 0, "上海");
        row->tip = "<b>第一行</b>";
        ShownTable::settle();
        const QPoint at = m_shown->cell(0, Place).center();
        QHelpEvent help(QEvent::ToolTip, at, m_shown->view->viewport()->mapToGlobal(at));
        QApplication::sendEvent(m_shown->view->viewport(), &help);
        QCOMPARE(QToolTip::text(), QString("&lt;b&gt;第一行&lt;/b&gt;"));
        QToolTip::hideText();
    }

    void assistiveTechnologyFindsNamesAndTexts()
    {
        m_shown->fill(2);
        QCOMPARE(m_shown->view->accessibleName(), QString("表格 名称、数量、地点、价格、操作"));
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(m_shown->view);
        QVERIFY(accessible && accessible->tableInterface());
        QCOMPARE(accessible->tableInterface()->rowCount(), 2);
        QAccessibleInterface* cell = accessible->tableInterface()->cellAt(1, Buttons);
        QVERIFY(cell);
        QCOMPARE(cell->text(QAccessible::Name), QString("编辑、删除"));
    }
};

TEST_WITH_WIDGETS(TableViewTest)
#include "tst_table_view.moc"
