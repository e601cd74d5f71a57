// SPDX-License-Identifier: Apache-2.0
#include "ExemptFixture.h"
#include "PlainPicker.h"

#include "exempt/CSelectExemptCategoryDialog.h"
#include "exempt/ControlId.h"
#include "support/TestProgram.h"
#include "support/wq/WatchedTest.h"

#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/EventType.h>

#include <QRandomGenerator>

using namespace exempt_test;
using QAV::CategoryList;
using QAV::CSelectExemptCategoryDialog;

/// The picker of exempt categories: search, moving, and what it gives back.
class ExemptPickerTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void init()
    {
        WatchedTest::init();
        m_picker = std::make_unique<CSelectExemptCategoryDialog>(nullptr);
        m_picker->show();
    }

    void cleanup()
    {
        m_picker.reset();
        m_offered.clear();
        WatchedTest::cleanup();
    }

    void itLooksAsTheClientExpects()
    {
        QCOMPARE(m_picker->title(), QString("选择证券分类"));
        QCOMPARE(m_picker->minimumSize(), QSize(800, 600));
        QCOMPARE(m_picker->findChild<WQ::CSimpleTextWidget*>()->text(), QString("证券检索"));
        QCOMPARE(searchEdit()->id(), 6);
        QCOMPARE(searchEdit()->width(), 220);
        for (WQ::CStandardSimpleTable* const table : {&available(), &selected()}) {
            QVERIFY(table->minimumWidth() == 350 && table->minimumHeight() == 450);
            QCOMPARE(table->columnCount(), 1);
            QCOMPARE(table->flags() & 0x8, 0);
            QCOMPARE(table->flags() & 0x2000, 0x2000);
        }
        QCOMPARE(available().headerText(0), QString("可选豁免分类"));
        QCOMPARE(selected().headerText(0), QString("已选豁免分类"));
        const QWidget* const inner = m_picker->innerWidget();
        const auto place = [inner](const QWidget* widget) {
            return QRect(widget->mapTo(inner, QPoint()), widget->size());
        };
        QCOMPARE(place(m_picker->findChild<WQ::CSimpleTextWidget*>()->parentWidget()).topLeft(), QPoint(10, 10));
        const QRect moveButtons = place(buttonOf(*m_picker, ">")->parentWidget());
        QCOMPARE(place(&available()).left(), 10);
        QCOMPARE(moveButtons.left(), place(&available()).right() + 1 + 5);
        QCOMPARE(moveButtons.width(), 50);
        QCOMPARE(place(&selected()).left(), moveButtons.right() + 1);
        QCOMPARE(place(&selected()).right(), inner->width() - 10 - 1);
        QCOMPARE(place(buttonOf(*m_picker, "保存")).top(), place(&available()).bottom() + 1 + 10);
        QCOMPARE(place(buttonOf(*m_picker, "关闭")).bottomRight(),
                 QPoint(inner->width() - 10 - 1, inner->height() - 10 - 1));

        const auto move = [&](const char* text) {
            return dynamic_cast<WQ::CSmallNormalButton*>(buttonOf(*m_picker, text));
        };
        QVERIFY(move(">")->id() == 2 && move(">")->width() == 45);
        QVERIFY(move("<")->id() == 3 && move("<")->width() == 45);
        QCOMPARE(move("<")->mapTo(m_picker.get(), QPoint()).y(),
                 move(">")->mapTo(m_picker.get(), QPoint(0, move(">")->height() + 3)).y());
        const auto end = [&](const char* text) {
            return dynamic_cast<WQ::CMediumNormalButton*>(buttonOf(*m_picker, text));
        };
        QVERIFY(end("保存")->id() == 4 && end("保存")->size() == QSize(70, 30));
        QVERIFY(end("关闭")->id() == 5 && end("关闭")->size() == QSize(70, 30));
        QCOMPARE(end("关闭")->mapTo(m_picker.get(), QPoint()).x(),
                 end("保存")->mapTo(m_picker.get(), QPoint(90, 0)).x());
    }

    void bothTablesListCategoriesInTheOrderOfTheOfferedList()
    {
        offer({"国债", "股票", "期货", "期权", "基金"});
        m_picker->setSelectedCategories({m_offered[3], m_offered[0]});
        QCOMPARE(shown(available()), QStringList({"股票", "期货", "基金"}));
        QCOMPARE(shown(selected()), QStringList({"国债", "期权"}));
        QCOMPARE(namesOf(m_picker->selectedCategories()), QStringList({"期权", "国债"}));
    }

    void aSubstringInAnotherLetterCaseFindsAName()
    {
        offer({"跨境ETF", "股票", "公募REITs"});
        searchEdit()->setText("etf");
        QCOMPARE(shown(available()), QStringList({"跨境ETF"}));
        searchEdit()->setText("REITS");
        QCOMPARE(shown(available()), QStringList({"公募REITs"}));
    }

    void aPartOfThePinyinFindsAName()
    {
        offer({"国债", "股票", "可转债", "银行间债券"});
        searchEdit()->setText("Zhai");
        QCOMPARE(shown(available()), QStringList({"国债", "可转债", "银行间债券"}));
        searchEdit()->setText("yinhangjian");
        QCOMPARE(shown(available()), QStringList({"银行间债券"}));
        searchEdit()->setText("gp");
        QCOMPARE(shown(available()), QStringList({"股票"}));
    }

    void selectedCategoriesStayWhateverTheSearchText()
    {
        offer({"国债", "股票", "期货"});
        m_picker->setSelectedCategories({m_offered[1]});
        searchEdit()->setText("没有这样的分类");
        QCOMPARE(shown(available()), QStringList());
        QCOMPARE(shown(selected()), QStringList({"股票"}));
        searchEdit()->setText("股");
        QCOMPARE(shown(available()), QStringList());
        QCOMPARE(shown(selected()), QStringList({"股票"}));
    }

    void clearingTheSearchShowsEverythingAgain()
    {
        offer({"国债", "股票"});
        searchEdit()->setText("股");
        searchEdit()->clear();
        QCOMPARE(shown(available()), QStringList({"国债", "股票"}));
    }

    void movingSeveralRowsKeepsTheOfferedOrderAndReturnsTheOrderOfMoving()
    {
        offer({"国债", "股票", "期货", "期权", "基金"});
        select(available(), {3, 4});
        clickButton(*m_picker, ">");
        select(available(), {0, 2});
        clickButton(*m_picker, ">");
        QCOMPARE(shown(available()), QStringList({"股票"}));
        QCOMPARE(shown(selected()), QStringList({"国债", "期货", "期权", "基金"}));
        QCOMPARE(namesOf(m_picker->selectedCategories()), QStringList({"期权", "基金", "国债", "期货"}));

        select(selected(), {1, 2});
        clickButton(*m_picker, "<");
        QCOMPARE(shown(available()), QStringList({"股票", "期货", "期权"}));
        QCOMPARE(shown(selected()), QStringList({"国债", "基金"}));
        QCOMPARE(namesOf(m_picker->selectedCategories()), QStringList({"基金", "国债"}));
        clickButton(*m_picker, "保存");
        QCOMPARE(m_picker->result(), 1);
        QVERIFY(!m_picker->isVisible());
        QCOMPARE(namesOf(m_picker->selectedCategories()), QStringList({"基金", "国债"}));
    }

    void ofTwoCategoriesWithOneNameTheFirstIsTaken()
    {
        offer({"国债", "股票", "国债"});
        select(available(), {2});
        clickButton(*m_picker, ">");
        QCOMPARE(idsOf(m_picker->selectedCategories()), QList<int>({0}));
        QCOMPARE(shown(available()), QStringList({"国债", "股票"}));
        select(available(), {0});
        clickButton(*m_picker, ">");
        QCOMPARE(idsOf(m_picker->selectedCategories()), QList<int>({0, 2}));
    }

    void categoriesAreToldApartByRecordAndNotById()
    {
        m_offered = {makeCategory(7, "国债"), makeCategory(7, "股票")};
        m_picker->setCategories(&m_offered);
        m_picker->setSelectedCategories({m_offered[1]});
        QCOMPARE(shown(available()), QStringList({"国债"}));
        QCOMPARE(shown(selected()), QStringList({"股票"}));
        m_picker->setSelectedCategories({makeCategory(7, "国债")});
        QCOMPARE(shown(available()), QStringList({"国债", "股票"}));
    }

    void theSearchIsNotAppliedAgainAfterAMove()
    {
        offer({"国债", "股票", "股指期货"});
        m_picker->setSelectedCategories({m_offered[0]});
        searchEdit()->setText("股");
        select(selected(), {0});
        clickButton(*m_picker, "<");
        QCOMPARE(shown(available()), QStringList({"国债", "股票", "股指期货"}));
        searchEdit()->setText("股票");
        QCOMPARE(shown(available()), QStringList({"股票"}));
    }

    void aChosenCategoryThatIsNotOfferedIsKeptAndNotShown()
    {
        offer({"国债", "股票"});
        m_picker->setSelectedCategories({makeCategory(99, "已停用"), m_offered[1]});
        QCOMPARE(shown(selected()), QStringList({"股票"}));
        select(available(), {0});
        clickButton(*m_picker, ">");
        QCOMPARE(shown(selected()), QStringList({"国债", "股票"}));
        QCOMPARE(idsOf(m_picker->selectedCategories()), QList<int>({99, 1, 0}));
    }

    void aCategoryThatIsChosenTwiceTakesTwoRowsWhenTheTableIsRelabelled()
    {
        offer({"国债", "股票", "期货"});
        m_picker->setSelectedCategories({m_offered[0], m_offered[0], m_offered[1]});
        QCOMPARE(shown(selected()), QStringList({"国债", "股票"}));
        select(available(), {0});
        clickButton(*m_picker, ">");
        QCOMPARE(shown(selected()), QStringList({"国债", "国债", "股票"}));
        QCOMPARE(idsOf(m_picker->selectedCategories()), QList<int>({0, 0, 1, 2}));
    }

    void movingWithoutASelectionDoesNothing()
    {
        offer({"国债", "股票"});
        m_picker->setSelectedCategories({m_offered[1]});
        clickButton(*m_picker, ">");
        clickButton(*m_picker, "<");
        QCOMPARE(shown(available()), QStringList({"国债"}));
        QCOMPARE(shown(selected()), QStringList({"股票"}));
    }

    void theSelectionOfTheSourceIsGoneAfterAMove()
    {
        offer({"国债", "股票", "期货"});
        select(available(), {1});
        clickButton(*m_picker, ">");
        QCOMPARE(available().selectedRows(), QVector<int>());
        clickButton(*m_picker, ">");
        QCOMPARE(shown(selected()), QStringList({"股票"}));
    }

    void withoutOfferedCategoriesBothTablesAreEmpty()
    {
        m_picker->setSelectedCategories({makeCategory(1, "国债")});
        searchEdit()->setText("国");
        clickButton(*m_picker, ">");
        clickButton(*m_picker, "<");
        QCOMPARE(available().rowCount(), 0);
        QCOMPARE(selected().rowCount(), 0);
        QCOMPARE(idsOf(m_picker->selectedCategories()), QList<int>({1}));
        m_picker->setCategories(nullptr);
        QCOMPARE(available().rowCount(), 0);
    }

    void nullRecordsAreSkipped()
    {
        m_offered = {makeCategory(0, "国债"), nullptr, makeCategory(2, "股票")};
        m_picker->setCategories(&m_offered);
        m_picker->setSelectedCategories({nullptr});
        QCOMPARE(shown(available()), QStringList({"国债", "股票"}));
        QCOMPARE(shown(selected()), QStringList());
        select(available(), {0, 1});
        clickButton(*m_picker, ">");
        QCOMPARE(shown(selected()), QStringList({"国债", "股票"}));
    }

    void theSearchTextStaysBetweenOpenings()
    {
        offer({"国债", "股票"});
        searchEdit()->setText("股");
        clickButton(*m_picker, "关闭");
        QCOMPARE(m_picker->result(), 0);
        m_picker->setSelectedCategories({});
        m_picker->show();
        QCOMPARE(searchEdit()->text(), QString("股"));
        QCOMPARE(shown(available()), QStringList({"股票"}));
    }

    void aNewListOfCategoriesIsShownUnderTheSearchText()
    {
        offer({"国债", "股票"});
        searchEdit()->setText("债");
        offer({"企业债", "期货", "可转债"});
        QCOMPARE(shown(available()), QStringList({"企业债", "可转债"}));
    }

    void aChangeOfAnotherLineEditIsHandledAndIgnored()
    {
        offer({"国债", "股票"});
        QVERIFY(m_picker->handleEvent(WQ::LineEditTextChanged, 5, 0, "股", nullptr));
        QCOMPARE(available().rowCount(), 2);
        QVERIFY(m_picker->isVisible());
    }

    void movesThatWouldBeLostAreUnsaved()
    {
        offer({"国债", "股票", "期货"});
        m_picker->setSelectedCategories({m_offered[0], m_offered[1]});
        QVERIFY(!m_picker->hasUnsavedEdits());
        select(selected(), {0});
        clickButton(*m_picker, "<");
        QVERIFY(m_picker->hasUnsavedEdits());
        QTest::keyClick(m_picker.get(), Qt::Key_Escape);
        QVERIFY(m_picker->isVisible());
        QTest::keyClick(m_picker.get(), Qt::Key_Escape);
        QVERIFY(!m_picker->isVisible());
        // Moved back, it is chosen as before, though at another position.
        m_picker->show();
        select(available(), {0});
        clickButton(*m_picker, ">");
        QVERIFY(!m_picker->hasUnsavedEdits());
        select(available(), {0});
        clickButton(*m_picker, ">");
        m_picker->setSelectedCategories(m_picker->selectedCategories());
        QVERIFY(!m_picker->hasUnsavedEdits());
    }

    void otherEventsGoOnToTheBase()
    {
        QVERIFY(!m_picker->handleEvent(WQ::ButtonClicked, 1, 0, QString(), nullptr));
        QVERIFY(!m_picker->handleEvent(WQ::ButtonOrEnter, QAV::AcceptButtonId, 0, QString(), nullptr));
        QVERIFY(m_picker->isVisible());
    }

    void everyControlHasAnAccessibleName()
    {
        QCOMPARE(searchEdit()->accessibleName(), QString("证券检索"));
        QCOMPARE(available().accessibleName(), QString("可选豁免分类"));
        QCOMPARE(selected().accessibleName(), QString("已选豁免分类"));
        QCOMPARE(buttonOf(*m_picker, ">")->accessibleName(), QString("移到已选豁免分类"));
        QCOMPARE(buttonOf(*m_picker, "<")->accessibleName(), QString("移到可选豁免分类"));
        for (const char* const text : {"保存", "关闭"}) {
            QCOMPARE(buttonOf(*m_picker, text)->accessibleName(), QString(text));
        }
    }

    void anyCourseOfSearchesAndMovesEndsAsThePlainLoopsEnd()
    {
        QRandomGenerator random(614);
        const std::vector<std::string> names{"国债",   "股票", "ETF", "期货", "国债",
                                             "可转债", "期权", "etf", "A股",  "股票"};
        const QStringList searches{"", "债", "gu", "ETF", "z", "没有"};
        for (int course = 0; course < 100; ++course) {
            m_offered.clear();
            for (int i = random.bounded(12); i > 0; --i) {
                m_offered.push_back(random.bounded(10) == 0
                                        ? QAV::CategoryPtr()
                                        : makeCategory(i, names[random.bounded(quint32(names.size()))]));
            }
            CategoryList chosen;
            for (const QAV::CategoryPtr& category : m_offered) {
                for (int times = random.bounded(5) - 2; category && times > 0; --times) {
                    chosen.push_back(category);
                }
            }
            PlainPicker plain;
            plain.all = &m_offered;
            plain.selected = chosen;
            plain.searchText = searchEdit()->text();
            plain.refresh();
            m_picker->setCategories(&m_offered);
            m_picker->setSelectedCategories(chosen);
            for (int step = 0; step < 12; ++step) {
                if (random.bounded(3) == 0) {
                    const QString& text = searches[random.bounded(searches.size())];
                    if (text != searchEdit()->text()) {
                        searchEdit()->setText(text);
                        plain.searchText = text;
                        plain.refresh();
                    }
                } else {
                    const bool giveBack = random.bounded(2) == 0;
                    WQ::CStandardSimpleTable& source = giveBack ? selected() : available();
                    QList<int> positions;
                    for (int row = 0; row < source.rowCount(); ++row) {
                        if (random.bounded(2) == 0) {
                            positions << row;
                        }
                    }
                    select(source, positions);
                    clickButton(*m_picker, giveBack ? "<" : ">");
                    plain.move(positions, giveBack);
                }
                QCOMPARE(shown(available()), plain.availableRows);
                QCOMPARE(shown(selected()), plain.selectedRows);
                QVERIFY(m_picker->selectedCategories() == plain.selected);
            }
        }
    }

    void aDoubleClickMovesOneCategoryAndKeepsTheSelectionOfOthers()
    {
        offer({"国债", "股票", "期货", "期权"});
        m_picker->setSelectedCategories({});
        select(available(), {0, 3});
        const auto doubleClick = [](WQ::CStandardSimpleTable& table, int row) {
            QAbstractItemView& view = *table.view();
            const QPoint place = view.visualRect(view.model()->index(row, 0)).center();
            QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
            QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
        };
        doubleClick(available(), 1);
        QCOMPARE(shown(selected()), QStringList({"股票"}));
        QCOMPARE(shown(available()), QStringList({"国债", "期货", "期权"}));
        QCOMPARE(available().selectedRows().size(), 2);
        doubleClick(selected(), 0);
        QCOMPARE(shown(selected()), QStringList());
        QCOMPARE(m_picker->selectedCategories().size(), std::size_t(0));
        available().clearSelection();
        available().setCurrentRow(available().rowID(0), 0);
        QTest::keyClick(available().view(), Qt::Key_Return);
        QCOMPARE(shown(selected()), QStringList({"国债"}));
    }

private:
    WQ::CStandardSimpleTable& available() { return *tableOf(*m_picker, QAV::AvailableCategoryTableId); }
    WQ::CStandardSimpleTable& selected() { return *tableOf(*m_picker, QAV::SelectedCategoryTableId); }
    WQ::CLineEdit* searchEdit() { return m_picker->findChild<WQ::CLineEdit*>(); }

    void offer(const std::vector<std::string>& names)
    {
        m_offered = makeCategories(names);
        m_picker->setCategories(&m_offered);
    }

    CategoryList m_offered;
    std::unique_ptr<CSelectExemptCategoryDialog> m_picker;
};

TEST_WITH_WIDGETS(ExemptPickerTest)
#include "tst_exempt_picker.moc"
