// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

#include <WQ/CUiResourceManager.h>

#include <boost/make_shared.hpp>

using namespace support;

class TableModelTest : public QObject
{
    Q_OBJECT

private slots:
    void recordsAreKnownByKeyBeforeTheirRowsAreAnnounced()
    {
        Model model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const RowPtr row = model.add("A|17", "甲");
        QCOMPARE(model.getDataIndexByKey("A|17"), 0);
        QCOMPARE(model.getDataByKey("A|17").get(), static_cast<WQ::IBaseHpfTableData*>(row.get()));
        QCOMPARE(model.rowCount(), 0);
        QCoreApplication::sendPostedEvents(&model);
        QCOMPARE(model.rowCount(), 1);
    }

    void anUnknownKeyHasNoIndexAndNoRecord()
    {
        Model model;
        QCOMPARE(model.getDataIndexByKey("x"), -1);
        model.add("A|1", "甲");
        QCOMPARE(model.getDataIndexByKey("A|2"), -1);
        QVERIFY(!model.getDataByKey("A|2"));
        QVERIFY(!model.getDataByIndex(-1));
        QVERIFY(!model.getDataByIndex(1));
        QVERIFY(!model.getDataByRow(0));
    }

    void everyKeyOfManyLeadsToItsRecord()
    {
        Model model;
        constexpr int count = 20000;
        for (int i = 0; i < count; ++i) {
            model.add(QStringLiteral("s|%1").arg(i), {});
            if (i % 3000 == 0) {
                QCOMPARE(model.getDataIndexByKey(QStringLiteral("s|%1").arg(i / 2)), i / 2);
            }
        }
        for (int i = 0; i < count; ++i) {
            QCOMPARE(model.getDataIndexByKey(QStringLiteral("s|%1").arg(i)), i);
        }
        QCOMPARE(model.getDataIndexByKey("s|20000"), -1);
    }

    void allRowsAddedInOneTurnAreAnnouncedTogether()
    {
        Model model;
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        for (int i = 0; i < 1000; ++i) {
            model.add(QString::number(i), {});
        }
        QCOMPARE(inserted.count(), 0);
        QCoreApplication::sendPostedEvents(&model);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.at(0).at(1).toInt(), 0);
        QCOMPARE(inserted.at(0).at(2).toInt(), 999);
    }

    void rowsAreAnnouncedBeforeAnEventThatWaitsAlready()
    {
        Model model;
        int seen = -1;
        QMetaObject::invokeMethod(&model, [&] { seen = model.rowCount(); }, Qt::QueuedConnection);
        model.add("a", {});
        QCoreApplication::processEvents();
        QCOMPARE(seen, 1);
    }

    void aModelThatDoesNotGatherAnnouncesEachRowAtOnce()
    {
        Model model(false);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        model.add("a", "甲");
        QCOMPARE(model.rowCount(), 1);
        model.add("b", "乙");
        QCOMPARE(inserted.count(), 2);
    }

    void aNullRecordIsIgnored()
    {
        Model model(false);
        model.addData({});
        model.updateData({});
        QCOMPARE(model.getDataCount(), 0);
    }

    void clearDropsRowsAndFilterAndKeepsTheSorting()
    {
        Model model(false);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.add("a", "甲");
        model.add("b", "乙");
        model.filterColumn(Name, {WQ::FilterContains, {"甲"}});
        model.sort(Name);
        QSignalSpy filterChanged(&model, &Model::sigFilterChanged);
        model.clear();
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.getDataIndexByKey("a"), -1);
        QVERIFY(!model.isFiltered());
        QCOMPARE(filterChanged.count(), 1);
        QCOMPARE(model.sortColumn(), int(Name));
        model.add("b", "乙");
        QCOMPARE(model.texts(), QStringList{"乙"});
    }

    void clearDropsTheFilterOfAnEmptyModelToo()
    {
        Model model(false);
        model.filterColumn(Name, {WQ::FilterContains, {"甲"}});
        model.clear();
        model.add("b", "乙");
        QCOMPARE(model.rowCount(), 1);
    }

    void rowsThatWaitWhenTheModelIsClearedNeverAppear()
    {
        Model model;
        model.add("a", "甲");
        model.clear();
        QCoreApplication::sendPostedEvents(&model);
        QCOMPARE(model.rowCount(), 0);
        model.add("b", "乙");
        QCoreApplication::sendPostedEvents(&model);
        QCOMPARE(model.texts(), QStringList{"乙"});
    }

    void theModelKeepsItsPromisesThroughEveryKindOfChange()
    {
        Model model;
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        for (int round = 0; round < 3; ++round) {
            for (int i = 0; i < 50; ++i) {
                model.add(QStringLiteral("%1-%2").arg(round).arg(i), QStringLiteral("组%1").arg(i * 7 % 50), i % 5);
            }
            QCoreApplication::sendPostedEvents(&model);
            model.sort(Count, Qt::DescendingOrder);
            model.filterColumn(Name, {WQ::FilterContains, {"1"}});
            model.add("late", "组111", 3);
            model.add("hidden", "组222", 3);
            QCoreApplication::sendPostedEvents(&model);
            model.updateData(boost::make_shared<Row>("late", "组9", 3));
            QCoreApplication::sendPostedEvents(&model);
            QVERIFY(!model.keys().contains("late"));
            model.clearFilter();
            QCOMPARE(model.rowCount(), 52);
            model.clearSort();
            model.clear();
        }
    }

    void persistentIndexesFollowTheirRowsThroughSorting()
    {
        Model model(false);
        for (int i = 0; i < 40; ++i) {
            model.add(QString::number(i), {}, i * 17 % 40);
        }
        std::vector<QPersistentModelIndex> kept;
        for (int row = 0; row < 40; ++row) {
            kept.emplace_back(model.index(row, Count));
        }
        model.sort(Count);
        for (int i = 0; i < 40; ++i) {
            QVERIFY(kept[static_cast<std::size_t>(i)].isValid());
            QCOMPARE(kept[static_cast<std::size_t>(i)].data().toInt(), i * 17 % 40);
        }
    }

    void anUpdateReplacesTheRecordOfTheSameKey()
    {
        Model model(false);
        model.add("a", "甲");
        model.add("b", "乙");
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        model.updateData(boost::make_shared<Row>("b", "丙"));
        QCOMPARE(model.texts(), (QStringList{"甲", "丙"}));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 1);
    }

    void anUpdateOfAnUnknownKeyAppends()
    {
        Model model(false);
        model.updateData(boost::make_shared<Row>("a", "甲"));
        QCOMPARE(model.texts(), QStringList{"甲"});
    }

    void anUpdatedRowTakesItsNewPlaceInTheSortingAndTheFilter()
    {
        Model model;
        for (int i = 0; i < 3; ++i) {
            model.add(QString::number(i), QStringLiteral("组%1").arg(i), i);
        }
        QCoreApplication::sendPostedEvents(&model);
        model.sort(Count);
        model.updateData(boost::make_shared<Row>("0", "组0", 9));
        QCoreApplication::sendPostedEvents(&model);
        QCOMPARE(model.keys(), (QStringList{"1", "2", "0"}));
    }

    void rowBackgroundsAlternateByTheRowShown()
    {
        Model model(false);
        for (int i = 0; i < 4; ++i) {
            model.add(QString::number(i), QString::number(i));
        }
        QCOMPARE(model.getRowBackgroundKey(0), QString("clr_table_background"));
        QCOMPARE(model.getRowBackgroundKey(1), QString("clr_table_background2"));
        QCOMPARE(model.getRowBackgroundKey(2), QString("clr_table_background"));
        model.filterColumn(Name, {WQ::FilterOneOf, {"1", "3"}});
        QCOMPARE(model.index(0, 0).data(Qt::BackgroundRole).value<QColor>(),
                 WQ::CUiResourceManager::instance()->colour("clr_table_background"));
        QCOMPARE(model.index(1, 0).data(Qt::BackgroundRole).value<QColor>(),
                 WQ::CUiResourceManager::instance()->colour("clr_table_background2"));
    }

    void cellsGiveTextUnitColourAndAlignment()
    {
        Model model(false);
        const RowPtr row = model.add("a", "甲", 12, "上海", 1.5);
        row->unit = "元";
        row->textColour = Qt::red;
        QCOMPARE(model.index(0, Price).data().toString(), QString("1.50 元"));
        QCOMPARE(model.index(0, Name).data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
        QVERIFY(model.index(0, Count).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
        QVERIFY(model.index(0, Name).data(Qt::TextAlignmentRole).toInt() & Qt::AlignLeft);
        QCOMPARE(model.headerData(Place, Qt::Horizontal).toString(), QString("地点"));
        QVERIFY(!model.headerData(99, Qt::Horizontal).isValid());
        QVERIFY(!model.index(5, 0).isValid());
    }
};

TEST_WITH_WIDGETS(TableModelTest)
#include "tst_table_model.moc"
