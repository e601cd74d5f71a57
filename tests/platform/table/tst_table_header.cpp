// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

using namespace support;

class TableHeaderTest : public ShownTableTest
{
    Q_OBJECT

    QFrame* openFilter(int column)
    {
        // The button stands at the right end of the section.
        QHeaderView* header = m_shown->table->header();
        const int right = header->sectionViewportPosition(column) + header->sectionSize(column);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {right - 13, header->height() / 2});
        return popup();
    }

    QFrame* popup()
    {
        auto* frame = m_shown->table->findChild<QFrame*>("tableFilterPopup");
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
        m_shown->fill(5);
        m_shown->clickHeader(Count);
        QCOMPARE(m_shown->model->texts(Count), (QStringList{"1", "2", "3", "4", "5"}));
        m_shown->clickHeader(Count);
        QCOMPARE(m_shown->model->texts(Count), (QStringList{"5", "4", "3", "2", "1"}));
        QCOMPARE(m_shown->model->sortOrder(), Qt::DescendingOrder);
        m_shown->clickHeader(Count);
        QCOMPARE(m_shown->model->sortColumn(), -1);
        QCOMPARE(m_shown->model->keys().first(), QString("k0"));
        m_shown->clickHeader(Count);
        m_shown->clickHeader(Name);
        QCOMPARE(m_shown->model->sortColumn(), int(Name));
        QCOMPARE(m_shown->model->sortOrder(), Qt::AscendingOrder);
    }

    void withoutTheFlagAHeaderDoesNotSort()
    {
        m_shown->fill(5);
        m_shown->table->setFlags(m_shown->table->flags() & ~WQ::TableHeaderSort);
        m_shown->clickHeader(Count);
        QCOMPARE(m_shown->model->sortColumn(), -1);
    }

    void theFilterButtonOpensTheValuesAndDoesNotSort()
    {
        m_shown->fill(12);
        QFrame* frame = openFilter(Place);
        QVERIFY(frame);
        QCOMPARE(m_shown->model->sortColumn(), -1);
        QCOMPARE(values(frame), (QStringList{"北京", "上海"}));
        toggle(frame, "北京");
        press(frame, "tableFilterOk");
        QVERIFY(!popup());
        QCOMPARE(m_shown->model->rowCount(), 6);
        QCOMPARE(m_shown->model->texts(Place).count("上海"), 6);
    }

    void integerColumnsListTheirValuesByNumber()
    {
        m_shown->fill(12);
        QFrame* frame = openFilter(Count);
        QVERIFY(frame);
        QCOMPARE(values(frame).first(), QString("1"));
        QCOMPARE(values(frame).last(), QString("12"));
        QTest::mouseClick(frame->findChild<QCheckBox*>("tableFilterAll"), Qt::LeftButton, {}, {8, 8});
        toggle(frame, "11");
        press(frame, "tableFilterOk");
        QCOMPARE(m_shown->model->texts(Count), QStringList{"11"});
    }

    void theSearchNarrowsTheValuesByTextOrPinyin()
    {
        m_shown->fill(4);
        QFrame* frame = openFilter(Place);
        QVERIFY(frame);
        auto* search = frame->findChild<QLineEdit*>("tableFilterSearch");
        QTest::keyClicks(search, "shanghai");
        QCOMPARE(values(frame), QStringList{"上海"});
        QTest::keyClick(search, Qt::Key_Return);
        QVERIFY(!popup());
        QCOMPARE(m_shown->model->keys(), (QStringList{"k1", "k3"}));
    }

    void aReopenedFilterShowsWhatIsChecked()
    {
        m_shown->fill(4);
        m_shown->table->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QFrame* frame = openFilter(Place);
        QVERIFY(frame);
        const QAbstractItemModel* model = frame->findChild<QListView*>()->model();
        QCOMPARE(model->index(0, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
        QCOMPARE(model->index(1, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QCOMPARE(frame->findChild<QCheckBox*>("tableFilterAll")->checkState(), Qt::PartiallyChecked);
        press(frame, "tableFilterClear");
        QVERIFY(!m_shown->model->isFiltered());
    }

    void everythingCheckedIsNoFilter()
    {
        m_shown->fill(4);
        m_shown->table->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QFrame* frame = openFilter(Place);
        QVERIFY(frame);
        toggle(frame, "北京");
        QCOMPARE(frame->findChild<QCheckBox*>("tableFilterAll")->checkState(), Qt::Checked);
        press(frame, "tableFilterOk");
        QVERIFY(!m_shown->model->isFiltered());
    }

    void cancelAndEscapeChangeNothing()
    {
        m_shown->fill(4);
        QFrame* frame = openFilter(Place);
        QVERIFY(frame);
        toggle(frame, "北京");
        press(frame, "tableFilterCancel");
        QVERIFY(!m_shown->model->isFiltered());
        frame = openFilter(Place);
        QVERIFY(frame);
        toggle(frame, "北京");
        QTest::keyClick(frame->findChild<QLineEdit*>("tableFilterSearch"), Qt::Key_Escape);
        QVERIFY(!popup());
        QVERIFY(!m_shown->model->isFiltered());
    }

    void theKeyboardOpensTheFilterOfTheCurrentColumn()
    {
        m_shown->fill(4);
        m_shown->view->setCurrentIndex(m_shown->model->index(0, Place));
        m_shown->press(Qt::Key_Down, Qt::AltModifier);
        QVERIFY(popup());
        popup()->close();
        m_shown->view->setCurrentIndex(m_shown->model->index(0, Price));
        m_shown->press(Qt::Key_Down, Qt::AltModifier);
        QVERIFY(!popup());
    }

    void aColumnThatIsNotFilterableHasNoButton()
    {
        m_shown->fill(4);
        QVERIFY(!openFilter(Price));
        m_shown->table->setColumnFilterable(Place, false);
        QVERIFY(!openFilter(Place));
    }

    void aFilteredColumnIsMarkedInTheHeader()
    {
        m_shown->fill(4);
        const auto picture = [&] { return m_shown->table->header()->viewport()->grab().toImage(); };
        const QImage before = picture();
        m_shown->table->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QVERIFY(picture() != before);
        m_shown->table->clearFilter();
        QCOMPARE(picture(), before);
        m_shown->table->sortByColumn(Name, Qt::AscendingOrder);
        QVERIFY(picture() != before);
    }

    void aDoubleClickOnABorderFitsTheColumnAgain()
    {
        m_shown->table->setColumnWidth(Name, 400);
        m_shown->fill(3);
        QHeaderView* header = m_shown->table->header();
        const QPoint border(header->sectionViewportPosition(Name) + 399, header->height() / 2);
        QTest::mouseMove(header->viewport(), border);
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, border);
        ShownTable::settle();
        QVERIFY(m_shown->table->columnWidth(Name) < 200);
    }
};

TEST_WITH_WIDGETS(TableHeaderTest)
#include "tst_table_header.moc"
