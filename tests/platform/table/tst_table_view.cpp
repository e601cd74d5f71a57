// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/CUiResourceManager.h>

using namespace support;

class TableViewTest : public QObject
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

    static QImage picture(const ShownTable& shown) { return shown.view->viewport()->grab().toImage(); }

private slots:
    void onlyRowsOnScreenAreRead()
    {
        ShownTable shown;
        std::vector<RowPtr> rows;
        for (int i = 0; i < 10000; ++i) {
            rows.push_back(shown.model->add(QString::number(i), QStringLiteral("组%1").arg(i)));
        }
        shown.table->updateTable();
        shown.table->adjustColumnWidth();
        ShownTable::settle();
        const auto read = std::count_if(rows.begin(), rows.end(), [](const RowPtr& row) { return row->shown > 0; });
        QVERIFY(read > 5);
        QVERIFY2(read < 50, qPrintable(QString::number(read)));
        QVERIFY(rows[0]->shown > 0);
        QCOMPARE(rows[9999]->shown, 0);
        shown.view->scrollToBottom();
        ShownTable::settle();
        QVERIFY(rows[9999]->shown > 0);
        QCOMPARE(rows[5000]->shown, 0);
    }

    void whatLiesBelowTheLastRowCanBePaintedAlone()
    {
        ShownTable shown;
        const RowPtr row = shown.model->add("a", "甲");
        ShownTable::settle();
        row->shown = 0;
        QWidget* const viewport = shown.view->viewport();
        const QRect below(0, viewport->height() - 10, viewport->width(), 10);
        viewport->repaint(below);
        QCOMPARE(row->shown, 0);
        viewport->repaint();
        QVERIFY(row->shown > 0);
    }

    void requestsAreCarriedOutOncePerTurn()
    {
        ShownTable shown;
        const RowPtr row = shown.model->add("a", "甲");
        ShownTable::settle();
        PaintCounter counter(shown.view->viewport());
        row->shown = 0;
        for (int i = 0; i < 100; ++i) {
            shown.table->updateTable();
            shown.table->adjustColumnWidth();
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
        ShownTable shown;
        shown.model->add("a", "甲");
        shown.table->adjustColumnWidth();
        ShownTable::settle();
        const int narrow = shown.table->columnWidth(Name);
        shown.model->add("b", QString(20, QChar(0x7532)));
        shown.table->adjustColumnWidth();
        ShownTable::settle();
        QVERIFY(shown.table->columnWidth(Name) > narrow + 100);
    }

    void fittingLeavesChosenWidthsAlone()
    {
        ShownTable shown;
        shown.table->setColumnWidth(Place, 200);
        shown.fill(3);
        QCOMPARE(shown.table->columnWidth(Place), 200);
        QCOMPARE(shown.table->header()->sectionSize(Place), 200);
    }

    void aDoubleClickOnAColumnBorderFitsTheColumn()
    {
        ShownTable shown;
        shown.table->setColumnWidth(Name, 300);
        shown.fill(3);
        QHeaderView* const header = shown.table->header();
        const QPoint border(header->sectionViewportPosition(Name) + 299, header->height() / 2);
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, border);
        QTRY_VERIFY(shown.table->columnWidth(Name) < 200);
        const int fitted = shown.table->columnWidth(Name);
        shown.model->add("long", QString(20, QChar(0x7532)));
        shown.table->adjustColumnWidth();
        QTRY_VERIFY(shown.table->columnWidth(Name) > fitted);
    }

    void widthsSurviveFilterSortingAndRefill()
    {
        ShownTable shown;
        shown.table->setColumnWidth(Name, 321);
        shown.table->header()->moveSection(0, 2);
        shown.fill(30);
        shown.table->filterColumn(Name, {WQ::FilterContains, {"1"}});
        shown.table->sortByColumn(Count, Qt::AscendingOrder);
        shown.model->clear();
        shown.fill(3);
        QCOMPARE(shown.table->header()->sectionSize(Name), 321);
        QCOMPARE(shown.table->header()->visualIndex(Name), 2);
    }

    void rowColoursAlternateOnScreen()
    {
        ShownTable shown;
        shown.fill(6);
        const QImage image = picture(shown);
        const int right = shown.view->viewport()->width() - 4;
        for (int row = 0; row < 6; ++row) {
            const QColor wanted =
                WQ::CUiResourceManager::instance()->colour(row % 2 ? "clr_table_background2" : "clr_table_background");
            QCOMPARE(image.pixelColor(right, shown.cell(row, Name).center().y()), wanted);
        }
    }

    void aThemeSwitchRepaintsInTheNewColours()
    {
        ShownTable shown;
        shown.fill(6);
        auto* resources = WQ::CUiResourceManager::instance();
        const QString before = resources->theme();
        const QImage first = picture(shown);
        PaintCounter counter(shown.view->viewport());
        QVERIFY(resources->setTheme(before == "dark" ? "light" : "dark"));
        QTRY_VERIFY(counter.paints > 0);
        const QPoint spot(shown.view->viewport()->width() - 4, shown.cell(1, Name).center().y());
        QCOMPARE(picture(shown).pixelColor(spot), resources->colour("clr_table_background2"));
        QVERIFY(picture(shown) != first);
        QVERIFY(resources->setTheme(before));
    }

    void anEmptyTableSaysWhy()
    {
        ShownTable shown;
        ShownTable::settle();
        const QImage noData = picture(shown);
        shown.fill(2);
        shown.table->filterColumn(Name, {WQ::FilterContains, {"没有"}});
        ShownTable::settle();
        const QImage noMatch = picture(shown);
        QVERIFY(noData != noMatch);
        shown.table->setFlags(shown.table->flags() & ~WQ::TableEmptyText);
        ShownTable::settle();
        const QImage blank = picture(shown);
        QVERIFY(blank != noData);
        QVERIFY(blank != noMatch);
        QCOMPARE(blank.pixelColor(blank.rect().center()),
                 WQ::CUiResourceManager::instance()->colour("clr_table_background"));
    }

    void theSelectionStaysWithItsRowsThroughSortingAndFilter()
    {
        ShownTable shown;
        shown.fill(100);
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(3, Name).center());
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, Qt::ControlModifier, shown.cell(7, Name).center());
        QCOMPARE(shown.table->selectedKeys(), (QStringList{"k3", "k7"}));
        shown.table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(shown.table->selectedKeys(), (QStringList{"k7", "k3"}));
        QCOMPARE(shown.table->currentKey(), QString("k7"));
        shown.table->filterColumn(Name, {WQ::FilterContains, {"组3"}});
        QCOMPARE(shown.table->selectedKeys(), QStringList{"k3"});
        shown.table->clearFilter();
        shown.table->clearSort();
        QCOMPARE(shown.table->selectedKeys(), QStringList{"k3"});
    }

    void everythingSelectedStaysSelectedAndOneRange()
    {
        ShownTable shown;
        shown.fill(5000);
        shown.press(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(shown.table->selectedKeys().size(), 5000);
        shown.table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(shown.table->selectedKeys().size(), 5000);
        QCOMPARE(shown.view->selectionModel()->selection().size(), 1);
    }

    void theCurrentRowStaysOnScreenWhenRowsAreSorted()
    {
        ShownTable shown;
        shown.fill(1000);
        QVERIFY(shown.table->setCurrentKey("k2"));
        shown.table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(shown.view->currentIndex().row(), 997);
        QVERIFY(shown.view->viewport()->rect().contains(shown.cell(997, Name).center()));
    }

    void aCurrentRowOffTheScreenStaysThereWhenRowsAreSorted()
    {
        ShownTable shown;
        shown.fill(1000);
        QVERIFY(shown.table->setCurrentKey("k2"));
        shown.view->verticalScrollBar()->setValue(500);
        shown.table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(shown.table->currentKey(), QString("k2"));
        QCOMPARE(shown.view->verticalScrollBar()->value(), 500);
        // A row that is made current afterwards is scrolled to.
        QVERIFY(shown.table->setCurrentKey("k999"));
        QCOMPARE(shown.view->currentIndex().row(), 0);
        QVERIFY(shown.view->viewport()->rect().contains(shown.cell(0, Name).center()));
    }

    void aFilterThatHidesTheCurrentRowIsReported()
    {
        ShownTable shown;
        shown.fill(5);
        QVERIFY(shown.table->setCurrentKey("k1"));
        QSignalSpy changed(shown.table.get(), &WQ::CStandardHpfTable::sigCurrentKeyChanged);
        shown.table->filterColumn(Name, {WQ::FilterContains, {"组3"}});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toString(), QString());
    }

    void theKeyboardReachesEveryRow()
    {
        ShownTable shown;
        shown.fill(1000);
        shown.press(Qt::Key_Down);
        QCOMPARE(shown.view->currentIndex().row(), 0);
        shown.press(Qt::Key_Down);
        QCOMPARE(shown.table->currentKey(), QString("k1"));
        shown.press(Qt::Key_End);
        QCOMPARE(shown.table->currentKey(), QString("k999"));
        QVERIFY(shown.view->viewport()->rect().contains(shown.cell(999, Name).center()));
        shown.press(Qt::Key_Up);
        QCOMPARE(shown.table->currentKey(), QString("k998"));
        shown.press(Qt::Key_PageUp);
        QVERIFY(shown.view->currentIndex().row() < 998 - 5);
        shown.press(Qt::Key_Home);
        QCOMPARE(shown.table->currentKey(), QString("k0"));
        shown.press(Qt::Key_Down, Qt::ShiftModifier);
        shown.press(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(shown.table->selectedKeys(), (QStringList{"k0", "k1", "k2"}));
    }

    void theViewScrollsToARowAsTheHintSays()
    {
        ShownTable shown;
        shown.fill(1000);
        const auto scrollTo = [&](int row, QAbstractItemView::ScrollHint hint) {
            shown.view->scrollTo(shown.model->index(row, Name), hint);
            return shown.cell(row, Name);
        };
        const int height = shown.view->viewport()->height();
        QCOMPARE(scrollTo(300, QAbstractItemView::PositionAtTop).top(), 0);
        const QRect bottom = scrollTo(500, QAbstractItemView::PositionAtBottom);
        QVERIFY(bottom.bottom() < height && bottom.bottom() + bottom.height() >= height);
        const QRect centre = scrollTo(700, QAbstractItemView::PositionAtCenter);
        QVERIFY(qAbs(centre.center().y() - height / 2) <= centre.height());
        const QRect below = scrollTo(720, QAbstractItemView::EnsureVisible);
        QVERIFY(below.bottom() < height && below.bottom() + below.height() >= height);
        QCOMPARE(scrollTo(650, QAbstractItemView::EnsureVisible).top(), 0);
        QCOMPARE(scrollTo(655, QAbstractItemView::EnsureVisible).top(), 5 * below.height());
        shown.view->verticalScrollBar()->setValue(100000);
        const QRect last = shown.cell(999, Name);
        QVERIFY(last.bottom() < height && last.bottom() + last.height() >= height);
    }

    void findingKeepsASelectionThatIsGatheredClickByClick()
    {
        ShownTable shown;
        shown.table->setFlags(shown.table->flags() | WQ::TableToggleSelection);
        shown.fill(5);
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(4, Name).center());
        shown.press(Qt::Key_F, Qt::ControlModifier);
        shown.table->findChild<QLineEdit*>("tableFindEdit")->setText("shanghai");
        QCOMPARE(shown.table->currentKey(), QString("k1"));
        QCOMPARE(shown.table->selectedKeys(), QStringList{"k4"});
    }

    void enterAndDoubleClickActivateTheRow()
    {
        ShownTable shown;
        shown.fill(5);
        QSignalSpy activated(shown.table.get(), &WQ::CStandardHpfTable::sigRowActivated);
        shown.table->setCurrentKey("k2");
        shown.press(Qt::Key_Return);
        QCOMPARE(activated.count(), 1);
        QCOMPARE(activated.at(0).at(0).toString(), QString("k2"));
        QTest::mouseDClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(4, Name).center());
        QCOMPARE(activated.count(), 2);
        QCOMPARE(activated.at(1).at(0).toString(), QString("k4"));
        // A key that is held down is one action.
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", true);
        QApplication::sendEvent(shown.view, &repeated);
        QCOMPARE(activated.count(), 2);
    }

    void plainClicksGatherASelectionWhenTheFlagSaysSo()
    {
        ShownTable shown;
        shown.table->setFlags(shown.table->flags() | WQ::TableToggleSelection);
        shown.fill(5);
        for (int row : {0, 2, 3, 2}) {
            QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(row, Name).center());
        }
        QCOMPARE(shown.table->selectedKeys(), (QStringList{"k0", "k3"}));
    }

    void withCellSelectionASingleCellIsSelected()
    {
        ShownTable shown;
        shown.table->setFlags(shown.table->flags() | WQ::TableCellSelection);
        shown.fill(5);
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, shown.cell(2, Count).center());
        QCOMPARE(shown.view->selectionModel()->selectedIndexes().size(), 1);
        shown.press(Qt::Key_Right, Qt::ShiftModifier);
        shown.press(Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(shown.view->selectionModel()->selectedIndexes().size(), 4);
    }

    void draggingSelectsTheRowsInBetween()
    {
        ShownTable shown;
        shown.fill(10);
        QWidget* viewport = shown.view->viewport();
        QTest::mousePress(viewport, Qt::LeftButton, {}, shown.cell(2, Name).center());
        QMouseEvent move(QEvent::MouseMove, shown.cell(5, Place).center(), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(viewport, &move);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, shown.cell(5, Place).center());
        QCOMPARE(shown.table->selectedKeys(), (QStringList{"k2", "k3", "k4", "k5"}));
    }

    void rowsThatWaitAreShownBeforeTheNextClick()
    {
        ShownTable shown;
        shown.model->add("a", "甲");
        QTest::mouseClick(shown.view->viewport(), Qt::LeftButton, {}, QPoint(20, 10));
        QCOMPARE(shown.table->currentKey(), QString("a"));
    }

    void theCurrentKeyIsReportedWhenItChanges()
    {
        ShownTable shown;
        shown.fill(5);
        QSignalSpy changed(shown.table.get(), &WQ::CStandardHpfTable::sigCurrentKeyChanged);
        shown.table->setCurrentKey("k1");
        shown.table->sortByColumn(Count, Qt::AscendingOrder);
        QCOMPARE(changed.count(), 1);
        shown.model->clear();
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.at(1).at(0).toString(), QString());
        QVERIFY(!shown.table->setCurrentKey("k1"));
    }

    void theFindBarMakesTheNextMatchCurrent()
    {
        ShownTable shown;
        shown.fill(50);
        shown.press(Qt::Key_F, Qt::ControlModifier);
        auto* edit = shown.table->findChild<QLineEdit*>("tableFindEdit");
        QVERIFY(edit->isVisible());
        QTRY_VERIFY(edit->hasFocus());
        QTest::keyClicks(edit, "shanghai");
        QCOMPARE(shown.table->currentKey(), QString("k1"));
        QCOMPARE(shown.view->currentIndex().column(), int(Place));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(shown.table->currentKey(), QString("k3"));
        QTest::keyClick(edit, Qt::Key_F3, Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_F3, Qt::ShiftModifier);
        QCOMPARE(shown.table->currentKey(), QString("k49"));
        edit->clear();
        QTest::keyClicks(edit, "zzz");
        QCOMPARE(shown.table->findChild<QLabel*>("tableFindResult")->text(), QString("未找到"));
        QTest::keyClick(edit, Qt::Key_Escape);
        QVERIFY(!edit->isVisible());
        QTRY_VERIFY(shown.view->hasFocus());
    }

    void findReachesRowsFarAway()
    {
        ShownTable shown;
        shown.fill(12000);
        shown.press(Qt::Key_F, Qt::ControlModifier);
        auto* edit = shown.table->findChild<QLineEdit*>("tableFindEdit");
        edit->setText("组11987");
        QCOMPARE(shown.table->currentKey(), QString("k11987"));
    }

    void tipsShowTheRowsOwnTextAndNeverMarkup()
    {
        ShownTable shown;
        const RowPtr row = shown.model->add("a", "甲", 0, "上海");
        row->tip = "<b>第一行</b>";
        ShownTable::settle();
        const QPoint at = shown.cell(0, Place).center();
        QHelpEvent help(QEvent::ToolTip, at, shown.view->viewport()->mapToGlobal(at));
        QApplication::sendEvent(shown.view->viewport(), &help);
        QCOMPARE(QToolTip::text(), QString("&lt;b&gt;第一行&lt;/b&gt;"));
        QToolTip::hideText();
    }

    void assistiveTechnologyFindsNamesAndTexts()
    {
        ShownTable shown;
        shown.fill(2);
        QCOMPARE(shown.view->accessibleName(), QString("表格 名称、数量、地点、价格、操作"));
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(shown.view);
        QVERIFY(accessible && accessible->tableInterface());
        QCOMPARE(accessible->tableInterface()->rowCount(), 2);
        QAccessibleInterface* cell = accessible->tableInterface()->cellAt(1, Buttons);
        QVERIFY(cell);
        QCOMPARE(cell->text(QAccessible::Name), QString("编辑、删除"));
    }
};

TEST_WITH_WIDGETS(TableViewTest)
#include "tst_table_view.moc"
