// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

using namespace support;

class TableHeaderTest : public QObject
{
    Q_OBJECT

    static QFrame* openFilter(ShownTable& shown, int column)
    {
        // The button stands at the right end of the section.
        QHeaderView* header = shown.table->header();
        const int right = header->sectionViewportPosition(column) + header->sectionSize(column);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {right - 13, header->height() / 2});
        return popup(shown);
    }

    static QFrame* popup(ShownTable& shown)
    {
        auto* frame = shown.table->findChild<QFrame*>("tableFilterPopup");
        return frame && frame->isVisible() ? frame : nullptr;
    }

    static QStringList values(QFrame* popup)
    {
        const QAbstractItemModel* model = popup->findChild<QListView*>()->model();
        QStringList texts;
        for (int row = 0; row < model->rowCount(); ++row) {
            texts.append(model->index(row, 0).data().toString());
        }
        return texts;
    }

    static void toggle(QFrame* popup, const QString& value)
    {
        auto* list = popup->findChild<QListView*>();
        const QModelIndex index = list->model()->index(values(popup).indexOf(value), 0);
        list->setCurrentIndex(index);
        QTest::keyClick(list, Qt::Key_Space);
    }

    static void press(QFrame* popup, const char* button)
    {
        QTest::mouseClick(popup->findChild<QPushButton*>(button), Qt::LeftButton);
    }

private slots:
    void clicksOnAHeaderSortUpDownAndNotAtAll()
    {
        ShownTable shown;
        shown.fill(5);
        shown.clickHeader(Count);
        QCOMPARE(shown.model->texts(Count), (QStringList{"1", "2", "3", "4", "5"}));
        shown.clickHeader(Count);
        QCOMPARE(shown.model->texts(Count), (QStringList{"5", "4", "3", "2", "1"}));
        QCOMPARE(shown.model->sortOrder(), Qt::DescendingOrder);
        shown.clickHeader(Count);
        QCOMPARE(shown.model->sortColumn(), -1);
        QCOMPARE(shown.model->keys().first(), QString("k0"));
        shown.clickHeader(Count);
        shown.clickHeader(Name);
        QCOMPARE(shown.model->sortColumn(), int(Name));
        QCOMPARE(shown.model->sortOrder(), Qt::AscendingOrder);
    }

    void withoutTheFlagAHeaderDoesNotSort()
    {
        ShownTable shown;
        shown.fill(5);
        shown.table->setFlags(shown.table->flags() & ~WQ::TableHeaderSort);
        shown.clickHeader(Count);
        QCOMPARE(shown.model->sortColumn(), -1);
    }

    void theFilterButtonOpensTheValuesAndDoesNotSort()
    {
        ShownTable shown;
        shown.fill(12);
        QFrame* frame = openFilter(shown, Place);
        QVERIFY(frame);
        QCOMPARE(shown.model->sortColumn(), -1);
        QCOMPARE(values(frame), (QStringList{"北京", "上海"}));
        toggle(frame, "北京");
        press(frame, "tableFilterOk");
        QVERIFY(!popup(shown));
        QCOMPARE(shown.model->rowCount(), 6);
        QCOMPARE(shown.model->texts(Place).count("上海"), 6);
    }

    void integerColumnsListTheirValuesByNumber()
    {
        ShownTable shown;
        shown.fill(12);
        QFrame* frame = openFilter(shown, Count);
        QVERIFY(frame);
        QCOMPARE(values(frame).first(), QString("1"));
        QCOMPARE(values(frame).last(), QString("12"));
        QTest::mouseClick(frame->findChild<QCheckBox*>("tableFilterAll"), Qt::LeftButton, {}, {8, 8});
        toggle(frame, "11");
        press(frame, "tableFilterOk");
        QCOMPARE(shown.model->texts(Count), QStringList{"11"});
    }

    void theSearchNarrowsTheValuesByTextOrPinyin()
    {
        ShownTable shown;
        shown.fill(4);
        QFrame* frame = openFilter(shown, Place);
        QVERIFY(frame);
        auto* search = frame->findChild<QLineEdit*>("tableFilterSearch");
        QTest::keyClicks(search, "shanghai");
        QCOMPARE(values(frame), QStringList{"上海"});
        QTest::keyClick(search, Qt::Key_Return);
        QVERIFY(!popup(shown));
        QCOMPARE(shown.model->keys(), (QStringList{"k1", "k3"}));
    }

    void aReopenedFilterShowsWhatIsChecked()
    {
        ShownTable shown;
        shown.fill(4);
        shown.table->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QFrame* frame = openFilter(shown, Place);
        QVERIFY(frame);
        const QAbstractItemModel* model = frame->findChild<QListView*>()->model();
        QCOMPARE(model->index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
        QCOMPARE(model->index(1, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QCOMPARE(frame->findChild<QCheckBox*>("tableFilterAll")->checkState(), Qt::PartiallyChecked);
        press(frame, "tableFilterClear");
        QVERIFY(!shown.model->isFiltered());
    }

    void everythingCheckedIsNoFilter()
    {
        ShownTable shown;
        shown.fill(4);
        shown.table->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QFrame* frame = openFilter(shown, Place);
        QVERIFY(frame);
        toggle(frame, "北京");
        QCOMPARE(frame->findChild<QCheckBox*>("tableFilterAll")->checkState(), Qt::Checked);
        press(frame, "tableFilterOk");
        QVERIFY(!shown.model->isFiltered());
    }

    void cancelAndEscapeChangeNothing()
    {
        ShownTable shown;
        shown.fill(4);
        QFrame* frame = openFilter(shown, Place);
        QVERIFY(frame);
        toggle(frame, "北京");
        press(frame, "tableFilterCancel");
        QVERIFY(!shown.model->isFiltered());
        frame = openFilter(shown, Place);
        QVERIFY(frame);
        toggle(frame, "北京");
        QTest::keyClick(frame->findChild<QLineEdit*>("tableFilterSearch"), Qt::Key_Escape);
        QVERIFY(!popup(shown));
        QVERIFY(!shown.model->isFiltered());
    }

    void theKeyboardOpensTheFilterOfTheCurrentColumn()
    {
        ShownTable shown;
        shown.fill(4);
        shown.view->setCurrentIndex(shown.model->index(0, Place));
        shown.press(Qt::Key_Down, Qt::AltModifier);
        QVERIFY(popup(shown));
        popup(shown)->close();
        shown.view->setCurrentIndex(shown.model->index(0, Price));
        shown.press(Qt::Key_Down, Qt::AltModifier);
        QVERIFY(!popup(shown));
    }

    void aColumnThatIsNotFilterableHasNoButton()
    {
        ShownTable shown;
        shown.fill(4);
        QVERIFY(!openFilter(shown, Price));
        shown.table->setColumnFilterable(Place, false);
        QVERIFY(!openFilter(shown, Place));
    }

    void aFilteredColumnIsMarkedInTheHeader()
    {
        ShownTable shown;
        shown.fill(4);
        const auto picture = [&] { return shown.table->header()->viewport()->grab().toImage(); };
        const QImage before = picture();
        shown.table->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QVERIFY(picture() != before);
        shown.table->clearFilter();
        QCOMPARE(picture(), before);
        shown.table->sortByColumn(Name, Qt::AscendingOrder);
        QVERIFY(picture() != before);
    }

    void aDoubleClickOnABorderFitsTheColumnAgain()
    {
        ShownTable shown;
        shown.table->setColumnWidth(Name, 400);
        shown.fill(3);
        QHeaderView* header = shown.table->header();
        const QPoint border(header->sectionViewportPosition(Name) + 399, header->height() / 2);
        QTest::mouseMove(header->viewport(), border);
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, border);
        ShownTable::settle();
        QVERIFY(shown.table->columnWidth(Name) < 200);
    }
};

TEST_WITH_WIDGETS(TableHeaderTest)
#include "tst_table_header.moc"
