// SPDX-License-Identifier: Apache-2.0
#include "support/DataRows.h"
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/Pinyin.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

using namespace support;

class TableSortTest : public QObject
{
    Q_OBJECT

private slots:
    void sortingAgainInTheSameWayIsNoChange()
    {
        Model model;
        model.add("a", "b");
        model.add("b", "a");
        QSignalSpy changed(&model, &Model::sigSortChanged);
        model.sort(Name, Qt::AscendingOrder);
        model.sort(Name, Qt::AscendingOrder);
        QCOMPARE(changed.count(), 1);
        model.clearSort();
        model.clearSort();
        QCOMPARE(changed.count(), 2);
    }

    void textsSortInPinyinOrder()
    {
        Model model(false);
        for (const char* name : {"招商", "安徽", "重庆", "北京", "长江", "abc", "银行"}) {
            model.add(QString::fromUtf8(name), QString::fromUtf8(name));
        }
        model.sort(Name);
        QCOMPARE(model.texts(), (QStringList{"abc", "安徽", "北京", "长江", "重庆", "银行", "招商"}));
        model.sort(Name, Qt::DescendingOrder);
        QCOMPARE(model.texts(), (QStringList{"招商", "银行", "重庆", "长江", "北京", "安徽", "abc"}));
    }

    void anyTextsSortByTheirKeys_data()
    {
        const DataRows<unsigned> row("seed");
        for (unsigned seed = 1; seed <= 10; ++seed) {
            row(QString::number(seed), seed);
        }
    }
    void anyTextsSortByTheirKeys()
    {
        QFETCH(unsigned, seed);
        std::mt19937 random(seed);
        // Many begin alike, are equal, or are one text.
        const QString letters = QString::fromUtf8("aA0 中招行ａé€") + QChar(0);
        QStringList texts{QString()};
        Model model(false);
        for (int i = 0; i < 500; ++i) {
            QString text = texts.at(static_cast<int>(random() % static_cast<unsigned>(texts.size())));
            for (unsigned more = random() % 5; more > 0; --more) {
                text += letters.at(static_cast<int>(random() % static_cast<unsigned>(letters.size())));
            }
            texts << text;
            model.add(QString::number(i), text);
        }
        texts.removeFirst();
        std::vector<int> expected(500);
        std::iota(expected.begin(), expected.end(), 0);
        const auto keyOf = [&texts](int row) { return WQ::pinyinSortKey(texts.at(row)); };
        for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
            std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) {
                return order == Qt::AscendingOrder ? keyOf(a) < keyOf(b) : keyOf(b) < keyOf(a);
            });
            QStringList keys;
            for (const int row : expected) {
                keys << QString::number(row);
            }
            model.sort(Name, order);
            QCOMPARE(model.keys(), keys);
            std::sort(expected.begin(), expected.end());
        }
    }

    void integersSortByValueNotByDigits()
    {
        Model model(false);
        for (int value : {100, 20, 3, -5, 0}) {
            model.add(QString::number(value), {}, value);
        }
        model.sort(Count);
        QCOMPARE(model.texts(Count), (QStringList{"-5", "0", "3", "20", "100"}));
    }

    void numbersWithinOneTickAreEqual()
    {
        Model model(false);
        model.tick = 0.1;
        model.add("a", {}, 0, {}, 1.04);
        model.add("b", {}, 0, {}, 0.96);
        model.add("c", {}, 0, {}, 0.5);
        model.add("d", {}, 0, {}, -3);
        model.sort(Price);
        QCOMPARE(model.keys(), (QStringList{"d", "c", "a", "b"}));
    }

    void valuesThatAreNoNumbersSortAsTheLargest()
    {
        Model model(false);
        model.add("nan", {}, 0, {}, std::nan(""));
        model.add("invalid", {}, 0, {}, WQ::IBaseHpfTableData::InvalidDouble);
        model.add("one", {}, 0, {}, 1);
        model.add("minus zero", {}, 0, {}, -0.0);
        model.add("zero", {}, 0, {}, 0.0);
        model.sort(Price);
        QCOMPARE(model.keys(), (QStringList{"minus zero", "zero", "one", "invalid", "nan"}));
    }

    void equalRowsKeepTheOrderOfArrivalBothWays()
    {
        Model model(false);
        for (int i = 0; i < 6; ++i) {
            model.add(QString::number(i), {}, i % 2);
        }
        model.sort(Count);
        QCOMPARE(model.keys(), (QStringList{"0", "2", "4", "1", "3", "5"}));
        model.sort(Count, Qt::DescendingOrder);
        QCOMPARE(model.keys(), (QStringList{"1", "3", "5", "0", "2", "4"}));
    }

    void clearingTheSortingRestoresTheOrderOfArrival()
    {
        Model model(false);
        for (int value : {3, 1, 2}) {
            model.add(QString::number(value), {}, value);
        }
        model.sort(Count);
        model.clearSort();
        QCOMPARE(model.keys(), (QStringList{"3", "1", "2"}));
        QCOMPARE(model.sortColumn(), -1);
    }

    void rowsAddedLaterTakeTheirPlaces()
    {
        Model model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.add("5", {}, 5);
        model.add("1", {}, 1);
        model.sort(Count);
        model.add("3", {}, 3);
        model.add("0", {}, 0);
        QCoreApplication::sendPostedEvents(&model);
        QCOMPARE(model.keys(), (QStringList{"0", "1", "3", "5"}));
        QCOMPARE(model.getRowByDataIndex(model.getDataIndexByKey("5")), 3);
    }

    void sortingAgainReadsNoRecord()
    {
        Model model(false);
        std::vector<RowPtr> rows;
        for (int i = 0; i < 100; ++i) {
            rows.push_back(model.add(QString::number(i), QStringLiteral("组%1").arg(i * 37 % 100)));
        }
        model.sort(Name);
        const QStringList ascending = model.keys();
        model.sort(Name, Qt::DescendingOrder);
        QStringList descending = model.keys();
        std::reverse(descending.begin(), descending.end());
        QCOMPARE(descending, ascending);
        for (const RowPtr& row : rows) {
            row->name = "changed behind the model's back";
        }
        model.clearSort();
        model.sort(Name);
        QCOMPARE(model.keys(), ascending);
    }

    void anEmptyModelSorts()
    {
        Model model(false);
        model.sort(Count);
        model.add("2", {}, 2);
        model.add("1", {}, 1);
        QCOMPARE(model.keys(), (QStringList{"1", "2"}));
        model.clear();
        model.sort(Name);
        QCOMPARE(model.rowCount(), 0);
    }

    void aColumnThatDoesNotExistIsIgnored()
    {
        Model model(false);
        model.add("2", {}, 2);
        model.sort(77);
        QCOMPARE(model.sortColumn(), -1);
    }
};

TEST_WITH_WIDGETS(TableSortTest)
#include "tst_table_sort.moc"
