// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tests/platform/table/TestRows.h"

using namespace support;

class TableFilterTest : public QObject
{
    Q_OBJECT

    static std::unique_ptr<Model> banks()
    {
        auto model = std::make_unique<Model>(false);
        int i = 0;
        for (const char* name : {"招商银行", "重庆啤酒", "ALPHA量化", "alpha beta", "长江电力", "招商证券"}) {
            model->add(QString::number(i), QString::fromUtf8(name), i % 3, i % 2 ? "上海" : "北京");
            ++i;
        }
        return model;
    }

private slots:
    void aTextAdmitsTheRowsThatContainItIgnoringCase()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"招商"}});
        QCOMPARE(model->texts(), (QStringList{"招商银行", "招商证券"}));
        model->filterColumn(Name, {WQ::FilterContains, {"Alpha"}});
        QCOMPARE(model->texts(), (QStringList{"ALPHA量化", "alpha beta"}));
        model->filterColumn(Name, {WQ::FilterContains, {"没有"}});
        QCOMPARE(model->rowCount(), 0);
    }

    void latinLettersAdmitBySyllablesAndInitials_data()
    {
        const support::DataRows<QString, QStringList> row("text", "admitted");
        row("syllables", "zhaoshang", {"招商银行", "招商证券"});
        row("part of the syllables", "yinhang", {"招商银行"});
        row("initials", "zsyh", {"招商银行"});
        row("upper case", "ZSZQ", {"招商证券"});
        row("several readings", "chongqing", {"重庆啤酒"});
        row("plain letters and pinyin", "lh", {"ALPHA量化"});
        row("character and syllable", "招shang", {"招商银行", "招商证券"});
        row("character and initials", "招yh", {"招商银行"});
        row("nobody", "xyzzy", {});
    }
    void latinLettersAdmitBySyllablesAndInitials()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, admitted);
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {text}});
        QCOMPARE(model->texts(), admitted);
    }

    void chineseTextsAndSignsAreNotLookedUpInPinyin()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"a b"}});
        QCOMPARE(model->texts(), QStringList{"alpha beta"});
        model->filterColumn(Name, {WQ::FilterContains, {"zhao shang"}});
        QCOMPARE(model->rowCount(), 0);
    }

    void anyOfSeveralTextsAdmits()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"证券", "cjdl"}});
        QCOMPARE(model->texts(), (QStringList{"长江电力", "招商证券"}));
    }

    void aFilterWithoutTextAdmitsEverything()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"招商"}});
        model->filterColumn(Name, {WQ::FilterContains, {""}});
        QCOMPARE(model->rowCount(), 6);
        QVERIFY(!model->isFiltered());
    }

    void valuesAdmitWholeTextsOnly()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterOneOf, {"招商", "长江电力"}});
        QCOMPARE(model->texts(), QStringList{"长江电力"});
        model->filterColumn(Name, {WQ::FilterOneOf, {}});
        QCOMPARE(model->rowCount(), 0);
        QVERIFY(model->isFiltered());
    }

    void filtersOfSeveralColumnsNarrowTogetherAndAreClearedOneByOne()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"招商"}});
        model->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QCOMPARE(model->texts(), QStringList{"招商证券"});
        model->clearColumnFilter(Name);
        QCOMPARE(model->rowCount(), 3);
        QCOMPARE(model->columnFilter(Place).first, int(WQ::FilterOneOf));
        model->clearFilter();
        QCOMPARE(model->rowCount(), 6);
        QCOMPARE(model->columnFilter(Place).first, int(WQ::FilterNone));
    }

    void unknownColumnsAndTypesChangeNothing()
    {
        const auto model = banks();
        QSignalSpy changed(model.get(), &Model::sigFilterChanged);
        model->filterColumn(-1, {WQ::FilterContains, {"x"}});
        model->filterColumn(99, {WQ::FilterContains, {"x"}});
        model->filterColumn(Name, {77, {"x"}});
        QCOMPARE(model->rowCount(), 6);
        QCOMPARE(changed.count(), 0);
    }

    void theSameFilterAgainIsNoChange()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"招商"}});
        QSignalSpy resets(model.get(), &QAbstractItemModel::modelReset);
        model->filterColumn(Name, {WQ::FilterContains, {"招商"}});
        QCOMPARE(resets.count(), 0);
    }

    void rowsAddedLaterAreFiltered()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"zs"}});
        model->add("n1", "招商基金");
        model->add("n2", "其他");
        QCOMPARE(model->texts(), (QStringList{"招商银行", "招商证券", "招商基金"}));
        QCOMPARE(model->getRowByDataIndex(6), 2);
        QCOMPARE(model->getRowByDataIndex(7), -1);
        QCOMPARE(model->getDataIndexByKey("n2"), 7);
    }

    void aFilterAppliedWhileRowsWaitSeesThem()
    {
        Model model;
        model.add("a", "甲");
        model.add("b", "乙");
        model.filterColumn(Name, {WQ::FilterContains, {"乙"}});
        QCOMPARE(model.texts(), QStringList{"乙"});
    }

    void aSearchFindsARowByAnyOfItsColumns()
    {
        Model model;
        model.add("1", "招商银行", 0, "上海");
        model.add("2", "上海机场", 0, "北京");
        model.add("3", "长江电力", 0, "北京");
        QSignalSpy filterChanged(&model, &Model::sigFilterChanged);
        model.search({Name, Place}, "上海");
        QCOMPARE(model.keys(), QStringList({"1", "2"}));
        QVERIFY(model.isFiltered());
        model.search({Name, Place}, "上海"); // no change
        QCOMPARE(filterChanged.count(), 1);
        model.search({Name}, "上海");
        QCOMPARE(model.keys(), QStringList("2"));
        model.search({Name, Place}, "bj"); // pinyin too
        QCOMPARE(model.keys(), QStringList({"2", "3"}));
        model.filterColumn(Name, {WQ::FilterContains, {"长江"}});
        QCOMPARE(model.keys(), QStringList("3"));
        model.add("4", "长江证券", 0, "北京"); // later rows are narrowed as well
        model.add("5", "长江通信", 0, "武汉");
        model.announce();
        QCOMPARE(model.keys(), QStringList({"3", "4"}));
        QCOMPARE(model.filterValues(Place, 10), QStringList("北京"));
        model.clearFilter();
        QCOMPARE(model.keys().size(), 5);
        QVERIFY(!model.isFiltered());
    }

    void aSearchEndsWithAnEmptyTextAndWithClear()
    {
        Model model;
        model.add("1", "招商银行", 0, "上海");
        model.search({-1, 99}, "上海");
        QCOMPARE(model.rowCount(), 0); // no known column
        model.search({Name, Place}, "");
        QCOMPARE(model.rowCount(), 1);
        QVERIFY(!model.isFiltered());
        model.search({Name}, "没有");
        model.clear();
        model.add("1", "招商银行", 0, "上海");
        model.announce();
        QCOMPARE(model.rowCount(), 1);
    }

    void filterAndSortingWorkTogether()
    {
        const auto model = banks();
        model->filterColumn(Place, {WQ::FilterOneOf, {"北京"}});
        model->sort(Count, Qt::DescendingOrder);
        QCOMPARE(model->texts(Count), (QStringList{"2", "1", "0"}));
        model->clearFilter();
        QCOMPARE(model->texts(Count), (QStringList{"2", "2", "1", "1", "0", "0"}));
        model->clearSort();
        QCOMPARE(model->texts().first(), QString("招商银行"));
    }

    void valuesAreListedOncePerTextInTheColumnsOrder()
    {
        const auto model = banks();
        QCOMPARE(model->filterValues(Place, 100), (QStringList{"北京", "上海"}));
        model->add("x", "x", 11);
        QCOMPARE(model->filterValues(Count, 100), (QStringList{"0", "1", "2", "11"}));
        bool complete = true;
        QCOMPARE(model->filterValues(Name, 3, &complete).size(), 3);
        QVERIFY(!complete);
    }

    void valuesComeFromRowsThatTheOtherFiltersAdmit()
    {
        const auto model = banks();
        model->filterColumn(Name, {WQ::FilterContains, {"招商银行"}});
        model->filterColumn(Place, {WQ::FilterOneOf, {"上海"}});
        QCOMPARE(model->filterValues(Place, 100), QStringList{"北京"});
    }
};

TEST_WITH_WIDGETS(TableFilterTest)
#include "tst_table_filter.moc"
