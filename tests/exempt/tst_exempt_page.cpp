// SPDX-License-Identifier: Apache-2.0
#include "ExemptFixture.h"

#include "exempt/CExemptCategoryWidget.h"
#include "exempt/CSelectExemptCategoryDialog.h"
#include "exempt/ControlId.h"
#include "support/TestProgram.h"
#include "support/wq/WatchedTest.h"

#include <WQ/CCheckBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/EventType.h>

using namespace exempt_test;
using nvservice::CRatProofSetting;
using QAV::CategoryList;
using QAV::CExemptCategoryWidget;
using QAV::CSelectExemptCategoryDialog;

static CRatProofSetting reverseOrderSetting(std::vector<std::int32_t> ids)
{
    CRatProofSetting setting;
    setting.reverseOrderExemptCategoryIds = std::move(ids);
    return setting;
}

/// The pages of the reverse-order check and of the wash-trade ban.
class ExemptPageTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void init()
    {
        WatchedTest::init();
        m_offered = makeCategories({"国债", "股票", "期货", "期权", "基金"});
    }

    void cleanup()
    {
        m_page.reset();
        m_window.reset();
        WatchedTest::cleanup();
    }

    void theReverseOrderPageHasItsTextsIdsAndSizes()
    {
        createPage(0);
        QCOMPARE(check("账号组反向单交易检查")->id(), 0);
        QCOMPARE(check(" 不统计已撤 (无成交) 委托 ")->id(), 1);
        QCOMPARE(check(" 反向单交易只警告不禁止 ")->id(), 2);
        const auto x = [&](const char* text) { return check(text)->mapTo(m_page.get(), QPoint()).x(); };
        QCOMPARE(x("账号组反向单交易检查"), 8);
        const auto gapAfter = [&](const char* text, const char* next) {
            return x(next) - x(text) - check(text)->width();
        };
        QCOMPARE(gapAfter("账号组反向单交易检查", " 反向单交易只警告不禁止 "), 10);
        QCOMPARE(gapAfter(" 反向单交易只警告不禁止 ", " 不统计已撤 (无成交) 委托 "), 10);
        QCOMPARE(check("账号组反向单交易检查")->parentWidget()->y(), 8);
        QCOMPARE(table().geometry().bottomRight(), m_page->rect().bottomRight() - QPoint(8, 8));
        const auto* const choose = dynamic_cast<WQ::CMediumNormalButton*>(buttonOf(*m_page, "设置豁免分类"));
        QCOMPARE(choose->id(), 3);
        QCOMPARE(choose->size(), QSize(150, 30));
        QCOMPARE(table().columnCount(), 2);
        QCOMPARE(table().headerText(0), QString("已选豁免分类"));
        QCOMPARE(table().headerText(1), QString("操作"));
        QCOMPARE(table().flags() & (0x200 | 0x40 | 0x8), 0);
        QCOMPARE(m_page->pageIndex(), 2);

        m_page->setRatProofSetting(reverseOrderSetting({1, 0}));
        const auto* const remove = dynamic_cast<WQ::CSmallNormalButton*>(table().itemWidget(table().rowID(1), 1));
        QCOMPARE(remove->text(), QString("删除"));
        QCOMPARE(remove->size(), QSize(50, 16));
        QCOMPARE(remove->id(), 1000 + table().rowID(1));
    }

    void theWashTradePageHasItsTextsIdsAndSizes()
    {
        createPage(1, 3);
        QCOMPARE(check("账号组禁止对敲交易")->id(), 0);
        QCOMPARE(m_page->findChildren<WQ::CCheckBox*>().size(), 1);
        QVERIFY(tableOf(*m_page, 1278));
        QVERIFY(!tableOf(*m_page, 1277));
        QCOMPARE(m_page->pageIndex(), 3);
    }

    void aPageOfAnotherModeWritesNothing()
    {
        createPage(2);
        QCOMPARE(m_page->findChild<WQ::CCheckBox*>()->text(), QString());
        CRatProofSetting setting;
        setting.reverseOrderExemptCategoryIds = {1};
        setting.washTradeExemptCategoryIds = {2};
        setting.washTradeForbidden = true;
        m_page->setRatProofSetting(setting);
        QCOMPARE(tableOf(*m_page, 1278)->rowCount(), 0);
        m_page->fillRatProofSetting(setting);
        QVERIFY(setting.washTradeForbidden && !setting.reverseOrderCheck);
        QCOMPARE(setting.reverseOrderExemptCategoryIds, std::vector<std::int32_t>({1}));
        QCOMPARE(setting.washTradeExemptCategoryIds, std::vector<std::int32_t>({2}));
    }

    void theListFollowsTheStoredOrderOfIds()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({4, 0, 2}));
        QCOMPARE(shown(table()), QStringList({"基金", "国债", "期货"}));
        QCOMPARE(writtenIds(), QList<int>({4, 0, 2}));
    }

    void idsThatAreNotOfferedAreNotShownAndAreLostWithTheNextSave()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({99, 3, -7, 1}));
        QCOMPARE(shown(table()), QStringList({"期权", "股票"}));
        QCOMPARE(writtenIds(), QList<int>({3, 1}));
    }

    void twoOfferedCategoriesWithOneIdAreBothTaken()
    {
        m_offered = {makeCategory(5, "国债"), makeCategory(6, "股票"), makeCategory(5, "期货")};
        createPage(0).setRatProofSetting(reverseOrderSetting({6, 5}));
        QCOMPARE(shown(table()), QStringList({"股票", "国债", "期货"}));
        QCOMPARE(writtenIds(), QList<int>({6, 5, 5}));
    }

    void anIdThatIsStoredTwiceIsShownTwice()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({1, 1}));
        QCOMPARE(shown(table()), QStringList({"股票", "股票"}));
        QCOMPARE(writtenIds(), QList<int>({1, 1}));
    }

    void withoutOfferedCategoriesALoadYieldsAnEmptyList()
    {
        createPage(0).setCategories(nullptr);
        m_page->setRatProofSetting(reverseOrderSetting({1}));
        QCOMPARE(table().rowCount(), 0);
        QCOMPARE(writtenIds(), QList<int>());
    }

    void theReverseOrderPageNeverTouchesTheWashTradeFields()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({1}));
        CRatProofSetting setting;
        setting.washTradeForbidden = true;
        setting.washTradeExemptCategoryIds = {7, 8};
        m_page->fillRatProofSetting(setting);
        QVERIFY(setting.washTradeForbidden);
        QCOMPARE(setting.washTradeExemptCategoryIds, std::vector<std::int32_t>({7, 8}));
        QCOMPARE(setting.reverseOrderExemptCategoryIds, std::vector<std::int32_t>({1}));
    }

    void theWashTradePageNeverTouchesTheReverseOrderFields()
    {
        CRatProofSetting setting;
        setting.washTradeForbidden = true;
        setting.washTradeExemptCategoryIds = {2};
        createPage(1).setRatProofSetting(setting);
        CRatProofSetting written;
        written.reverseOrderCheck = written.reverseOrderWarnOnly = written.notCountCancelledOrders = true;
        written.reverseOrderExemptCategoryIds = {7, 8};
        m_page->fillRatProofSetting(written);
        QVERIFY(written.reverseOrderCheck && written.reverseOrderWarnOnly && written.notCountCancelledOrders);
        QCOMPARE(written.reverseOrderExemptCategoryIds, std::vector<std::int32_t>({7, 8}));
        QVERIFY(written.washTradeForbidden);
        QCOMPARE(written.washTradeExemptCategoryIds, std::vector<std::int32_t>({2}));
    }

    void theSwitchesAreReadWhenTheSettingIsWritten()
    {
        createPage(0);
        for (int bits = 0; bits < 8; ++bits) {
            CRatProofSetting setting;
            setting.reverseOrderCheck = bits & 1;
            setting.reverseOrderWarnOnly = bits & 2;
            setting.notCountCancelledOrders = bits & 4;
            m_page->setRatProofSetting(setting);
            QCOMPARE(check("账号组反向单交易检查")->isChecked(), setting.reverseOrderCheck);
            QCOMPARE(check(" 反向单交易只警告不禁止 ")->isChecked(), setting.reverseOrderWarnOnly);
            QCOMPARE(check(" 不统计已撤 (无成交) 委托 ")->isChecked(), setting.notCountCancelledOrders);
            CRatProofSetting written;
            m_page->fillRatProofSetting(written);
            QCOMPARE(written.reverseOrderCheck, setting.reverseOrderCheck);
            QCOMPARE(written.reverseOrderWarnOnly, setting.reverseOrderWarnOnly);
            QCOMPARE(written.notCountCancelledOrders, setting.notCountCancelledOrders);
        }
    }

    void anEmptySelectionWritesAnEmptyVectorAndShowsAnEmptyTable()
    {
        createPage(0).setRatProofSetting({});
        QCOMPARE(table().rowCount(), 0);
        CRatProofSetting setting = reverseOrderSetting({1, 2});
        m_page->fillRatProofSetting(setting);
        QVERIFY(setting.reverseOrderExemptCategoryIds.empty());
    }

    void aNewSettingOverwritesWhatTheUserSet()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({0, 1}));
        clickButton(*m_page, "账号组反向单交易检查");
        expectQuestion(QMessageBox::Yes);
        clickDelete(0);
        m_page->setRatProofSetting(reverseOrderSetting({2}));
        QVERIFY(!check("账号组反向单交易检查")->isChecked());
        QCOMPARE(shown(table()), QStringList({"期货"}));
    }

    void deletingAsksAndRemovesTheRow()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({0, 1, 2}));
        expectQuestion(QMessageBox::Yes);
        clickDelete(1);
        QCOMPARE(shown(table()), QStringList({"国债", "期货"}));
        QCOMPARE(writtenIds(), QList<int>({0, 2}));
    }

    void answeringNoKeepsTheRow()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({0, 1}));
        expectQuestion(QMessageBox::No);
        clickDelete(0);
        QCOMPARE(shown(table()), QStringList({"国债", "股票"}));
        QCOMPARE(writtenIds(), QList<int>({0, 1}));
    }

    void deletingAfterEarlierDeletionsRemovesTheRightCategory()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({0, 1, 2, 3, 4}));
        for (const int position : {1, 0, 1}) {
            expectQuestion(QMessageBox::Yes);
            clickDelete(position);
        }
        QCOMPARE(shown(table()), QStringList({"期货", "基金"}));
        QCOMPARE(writtenIds(), QList<int>({2, 4}));
    }

    void whatThePickerReturnsReplacesTheList()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({3, 1}));
        m_boxes->expectDialog([](WQ::CBaseDialog& picker) {
            QCOMPARE(shown(*tableOf(picker, 1)), QStringList({"股票", "期权"}));
            select(*tableOf(picker, 1), {0});
            clickButton(picker, "<");
            select(*tableOf(picker, 0), {0, 3});
            clickButton(picker, ">");
            clickButton(picker, "保存");
        });
        clickButton(*m_page, "设置豁免分类");
        QCOMPARE(shown(table()), QStringList({"期权", "国债", "基金"}));
        QCOMPARE(writtenIds(), QList<int>({3, 0, 4}));
    }

    void closingThePickerKeepsTheListEvenAfterMoves()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({3, 1}));
        m_boxes->expectDialog([](WQ::CBaseDialog& picker) {
            select(*tableOf(picker, 1), {0, 1});
            clickButton(picker, "<");
            clickButton(picker, "关闭");
        });
        clickButton(*m_page, "设置豁免分类");
        QCOMPARE(shown(table()), QStringList({"期权", "股票"}));
        QCOMPARE(writtenIds(), QList<int>({3, 1}));
    }

    void thePickerOpensWithTheListOfThePageEachTime()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({3}));
        m_boxes->expectDialog([](WQ::CBaseDialog& picker) {
            picker.findChild<WQ::CLineEdit*>()->setText("guzhai");
            select(*tableOf(picker, 1), {0});
            clickButton(picker, "<");
            clickButton(picker, "关闭");
        });
        clickButton(*m_page, "设置豁免分类");
        m_boxes->expectDialog([](WQ::CBaseDialog& picker) {
            QCOMPARE(picker.findChild<WQ::CLineEdit*>()->text(), QString("guzhai"));
            QCOMPARE(shown(*tableOf(picker, 0)), QStringList());
            QCOMPARE(shown(*tableOf(picker, 1)), QStringList({"期权"}));
            clickButton(picker, "关闭");
        });
        clickButton(*m_page, "设置豁免分类");
    }

    void everyEventIsHandled()
    {
        createPage(0);
        QVERIFY(m_page->handleEvent(WQ::ButtonClicked, 77, 0, QString(), nullptr));
        QVERIFY(m_page->handleEvent(WQ::LineEditTextChanged, 0, 0, QString(), nullptr));
        QVERIFY(m_page->handleEvent(12345, 3, 0, QString(), nullptr));
    }

    void clicksOnTheCheckBoxesOnlySwitchThem()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({0, 1}));
        for (WQ::CCheckBox* const box : m_page->findChildren<WQ::CCheckBox*>()) {
            QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
        }
        CRatProofSetting written;
        m_page->fillRatProofSetting(written);
        QVERIFY(written.reverseOrderCheck && written.reverseOrderWarnOnly && written.notCountCancelledOrders);
        QCOMPARE(writtenIds(), QList<int>({0, 1}));
    }

    void aPageIsUsedByKeyboardAlone()
    {
        createPage(0).setRatProofSetting({});
        QApplication::setActiveWindow(m_window.get());
        const auto press = [](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); };
        check("账号组反向单交易检查")->setFocus();
        press(Qt::Key_Space);
        QVERIFY(check("账号组反向单交易检查")->isChecked());
        press(Qt::Key_Tab);
        press(Qt::Key_Space);
        QVERIFY(check(" 反向单交易只警告不禁止 ")->isChecked());
        press(Qt::Key_Tab);
        press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), buttonOf(*m_page, "设置豁免分类"));
        m_boxes->expectDialog([&](WQ::CBaseDialog& picker) {
            QApplication::setActiveWindow(&picker);
            QCOMPARE(QApplication::focusWidget(), picker.findChild<WQ::CLineEdit*>());
            QTest::keyClicks(QApplication::focusWidget(), "qi");
            QCOMPARE(shown(*tableOf(picker, 0)), QStringList({"期货", "期权"}));
            press(Qt::Key_Tab);
            press(Qt::Key_Down);
            press(Qt::Key_Space);
            QCOMPARE(tableOf(picker, 0)->selectedRows().size(), 1);
            press(Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), buttonOf(picker, ">"));
            press(Qt::Key_Return);
            QCOMPARE(shown(*tableOf(picker, 1)).size(), 1);
            while (QApplication::focusWidget() != buttonOf(picker, "保存")) {
                press(Qt::Key_Tab);
            }
            press(Qt::Key_Return);
        });
        press(Qt::Key_Return);
        QCOMPARE(table().rowCount(), 1);

        QApplication::setActiveWindow(m_window.get());
        buttonOf(*m_page, "设置豁免分类")->setFocus();
        press(Qt::Key_Tab);
        press(Qt::Key_Down);
        QWidget* const remove = table().itemWidget(table().rowID(0), 1);
        press(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), remove);
        expectQuestion(QMessageBox::Yes);
        press(Qt::Key_Space);
        QCOMPARE(table().rowCount(), 0);
    }

    void everyControlHasAnAccessibleName()
    {
        createPage(0).setRatProofSetting(reverseOrderSetting({1}));
        QCOMPARE(table().accessibleName(), QString("已选豁免分类"));
        QCOMPARE(table().itemWidget(table().rowID(0), 1)->accessibleName(), QString("删除股票"));
        for (QAbstractButton* const button : m_page->findChildren<QAbstractButton*>()) {
            const QString name = QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name);
            QVERIFY2(!button->isVisible() || !name.trimmed().isEmpty(), button->metaObject()->className());
        }
    }

    void thePageOutlivesTheListOfItsOwner()
    {
        auto list = std::make_unique<CategoryList>(makeCategories({"国债"}));
        createPage(0).setCategories(list.get());
        m_page->setRatProofSetting(reverseOrderSetting({0}));
        list.reset();
        m_page.reset();
    }

private:
    CExemptCategoryWidget& createPage(int mode, int pageIndex = 2)
    {
        m_window = std::make_unique<QWidget>();
        m_window->resize(1200, 400);
        m_page = std::make_unique<CExemptCategoryWidget>(mode, pageIndex, m_window.get());
        m_page->resize(1200, 400);
        m_page->setCategories(&m_offered);
        m_window->show();
        return *m_page;
    }

    WQ::CStandardSimpleTable& table(int id = QAV::ReverseOrderCategoryTableId) { return *tableOf(*m_page, id); }
    WQ::CCheckBox* check(const char* text) { return dynamic_cast<WQ::CCheckBox*>(buttonOf(*m_page, text)); }
    /// Clicks the button of the row at a position.
    void clickDelete(int position)
    {
        QWidget* const button = table().itemWidget(table().rowID(position), 1);
        QVERIFY(button);
        QTest::mouseClick(button, Qt::LeftButton);
    }

    void expectQuestion(QMessageBox::StandardButton answer)
    {
        m_boxes->expectQuestion(QMessageBox::Warning, "删除", "确认删除？", answer);
    }

    QList<int> writtenIds()
    {
        CRatProofSetting setting;
        m_page->fillRatProofSetting(setting);
        const auto& ids = setting.reverseOrderExemptCategoryIds;
        return QList<int>(ids.begin(), ids.end());
    }

    CategoryList m_offered;
    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<CExemptCategoryWidget> m_page;
};

TEST_WITH_WIDGETS(ExemptPageTest)
#include "tst_exempt_page.moc"
