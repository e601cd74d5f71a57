// SPDX-License-Identifier: Apache-2.0
#include "AssetsEditor.h"
#include "support/TestProgram.h"

#include <QAV/CConfigService.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/DataType.h>
#include <utils/CSingletonT.h>

#include <boost/make_shared.hpp>

using namespace rule_editor_test;
using nvservice::CAssetsRC;

namespace
{

nvservice::IDataPtr makeCategory(int id, const char* name, int parentId = -1, int type = 0, int sysType = 1)
{
    const auto category = boost::make_shared<nvservice::CCategoryInfo>();
    category->categoryId = id;
    category->categoryName = name;
    category->parentId = parentId;
    category->categoryType = type;
    category->sysType = sysType;
    return category;
}

QAV::ITransport::Reply categories()
{
    return support::replyWith({makeCategory(1, "股票"), makeCategory(2, "银行", 1), makeCategory(3, "债券", -1, 5),
                               makeCategory(4, "银行", 3), makeCategory(5, "禁用", -1, 0, 99)});
}

CAssetsRC limitOf(int categoryId)
{
    CAssetsRC limit = soundLimit(categoryId, 5);
    limit.assetClass = nvservice::EZVRCAssetClass::ByCategory;
    limit.categoryId = categoryId;
    return limit;
}

/// An editor in a client with one server, for a user who may use categories of the system type 1.
struct LimitsOnServer : OneServer, AssetsEditor {
    LimitsOnServer() { utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({1}); }
    ~LimitsOnServer() { utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({}); }
};

} // namespace

/// The security categories that a limit measures.
class AssetsCategoriesTest : public support::FixtureTest<LimitsOnServer, support::WatchedTest>
{
    Q_OBJECT

private slots:
    void theCategoriesOfTheServerAreLoadedWithItsFirstLimits()
    {
        QVERIFY(m_fixture->isSilent());
        m_fixture->load({limitOf(2)}, "深圳");
        QCOMPARE(m_fixture->text(0, Category), QString("分类2"));
        answer(categories());
        QTRY_COMPARE(m_fixture->text(0, Category), QString("股票 / 银行"));
        m_fixture->load({limitOf(3)}, "深圳");
        QVERIFY(m_fixture->isSilent());
        QCOMPARE(m_fixture->text(0, Category), QString("债券"));
    }

    void refreshLoadsThemAgain()
    {
        m_fixture->load({limitOf(2)}, "深圳");
        answer(categories());
        QTRY_COMPARE(m_fixture->text(0, Category), QString("股票 / 银行"));
        m_fixture->widget().refresh();
        answer(support::replyWith({makeCategory(2, "城商行")}));
        QTRY_COMPARE(m_fixture->text(0, Category), QString("城商行"));
        QCOMPARE(m_fixture->cell<QLineEdit>(0, Category).text(), QString("城商行"));
    }

    void refreshWithoutAServerAsksNobody()
    {
        m_fixture->widget().refresh();
        QVERIFY(m_fixture->isSilent());
    }

    void aCategoryIsShownWithThoseAboveIt()
    {
        m_fixture->load({limitOf(4)}, "深圳");
        answer(categories());
        QTRY_COMPARE(m_fixture->cell<QLineEdit>(0, Category).text(), QString("债券 / 银行"));
    }

    void aCategoryIsChosenFromTheOffers()
    {
        m_fixture->load({soundLimit(1, 5)}, "深圳");
        answer(categories());
        auto& edit = m_fixture->cell<QLineEdit>(0, Category);
        QVERIFY(!edit.isEnabled());
        m_fixture->choose(0, Class, "证券分类");
        QVERIFY(edit.isEnabled());
        QTRY_VERIFY((edit.clear(), type(edit, "yh"), !offers().isEmpty()));
        QCOMPARE(offers(), (QStringList{"股票 / 银行", "债券 / 银行"}));
        takePicture(m_fixture->window, "assets-category");
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        QCOMPARE(m_fixture->limits().at(0).categoryId, 4);
        QCOMPARE(edit.text(), QString("债券 / 银行"));
        QString message;
        QVERIFY(m_fixture->widget().isDataValid(message));

        // Whoever opens the list again looks for another category.
        QTest::keyClick(&edit, Qt::Key_Down);
        QCOMPARE(offers().size(), 4);
    }

    void aNameThatOnlyOneCategoryHasIsEnough()
    {
        m_fixture->load({limitOf(1)}, "深圳");
        answer(categories());
        QTRY_COMPARE(m_fixture->text(0, Category), QString("股票"));
        m_fixture->typeInto(0, Category, "债券");
        QCOMPARE(m_fixture->limits().at(0).categoryId, 3);
        // Two categories have this name.
        m_fixture->typeInto(0, Category, "银行");
        QCOMPARE(m_fixture->limits().at(0).categoryId, -1);
        // The only one that the pinyin stands for is taken when the user goes on.
        m_fixture->typeInto(0, Category, "gpyh");
        QTest::keyClick(&m_fixture->cell(0, Category), Qt::Key_Return);
        QCOMPARE(m_fixture->limits().at(0).categoryId, 2);
        QCOMPARE(m_fixture->cell<QLineEdit>(0, Category).text(), QString("股票 / 银行"));
    }

    void aLimitWithoutItsCategoryIsNotValid()
    {
        m_fixture->load({limitOf(1)}, "深圳");
        answer(categories());
        m_fixture->typeInto(0, Category, "没有");
        QString message;
        QVERIFY(!m_fixture->widget().isDataValid(message));
        QCOMPARE(message, QString("请选择证券分类"));
        QVERIFY(WQ::CMessageTip::tipOf(&m_fixture->cell(0, Category)));
    }

    void anotherAssetClassTakesTheCategoryAway()
    {
        m_fixture->load({limitOf(1)}, "深圳");
        m_fixture->choose(0, Class, "股票");
        QCOMPARE(m_fixture->limits().at(0).categoryId, -1);
        QVERIFY(!m_fixture->cell(0, Category).isEnabled());
        QCOMPARE(m_fixture->cell<QLineEdit>(0, Category).text(), QString());
    }

    void aCategoryThatIsGoneStaysInTheLimit()
    {
        m_fixture->load({limitOf(77), limitOf(5)}, "深圳");
        answer(categories());
        QTRY_COMPARE(m_fixture->text(0, Category), QString("分类77"));
        // A category that the user may not use is none of the offers.
        QCOMPARE(m_fixture->text(1, Category), QString("分类5"));
        QCOMPARE(m_fixture->limits().at(0).categoryId, 77);
        QString message;
        QVERIFY(m_fixture->widget().isDataValid(message));
    }

    void categoriesOfAnotherTypeAreNotOffered()
    {
        AssetsEditor editor(false, 5);
        editor.load({limitOf(3), limitOf(1)}, "深圳");
        answer(categories(), "-1_5");
        QTRY_COMPARE(editor.text(0, Category), QString("债券"));
        QCOMPARE(editor.text(1, Category), QString("分类1"));
    }

    void aFailedRefreshKeepsWhatIsKnown()
    {
        m_fixture->load({limitOf(1)}, "深圳");
        answer(categories());
        QTRY_COMPARE(m_fixture->text(0, Category), QString("股票"));
        m_fixture->widget().refresh();
        answer(support::replyWithError(utils::EErrorCode::Failed, "服务忙"));
        // The reply to a third query comes after the failure.
        m_fixture->widget().refresh();
        answer(support::replyWith({makeCategory(1, "股票"), makeCategory(9, "期货")}));
        m_fixture->load({limitOf(1), limitOf(9)}, "深圳");
        QCOMPARE(m_fixture->text(0, Category), QString("股票"));
        QTRY_COMPARE(m_fixture->text(1, Category), QString("期货"));
    }

    void aReplyOfTheServerBeforeIsDropped()
    {
        m_fixture->load({limitOf(1)}, "深圳");
        auto query = m_fixture->takeQuery(nvservice::DataType::Category, "-1_-1");
        m_fixture->load({limitOf(1)}, "上海");
        query.handler(categories());
        m_fixture->load({limitOf(1)}, "深圳");
        answer(support::replyWith({makeCategory(1, "现在")}));
        QTRY_COMPARE(m_fixture->text(0, Category), QString("现在"));
    }

    void aCircleOfCategoriesDoesNoHarm()
    {
        m_fixture->load({limitOf(1)}, "深圳");
        answer(support::replyWith({makeCategory(1, "甲", 2), makeCategory(2, "乙", 1)}));
        QTRY_VERIFY(m_fixture->text(0, Category).endsWith("甲"));
    }

private:
    void answer(QAV::ITransport::Reply reply, const std::string& queryKey = "-1_-1")
    {
        m_fixture->takeQuery(nvservice::DataType::Category, queryKey).handler(std::move(reply));
    }
};

TEST_WITH_WIDGETS(AssetsCategoriesTest)
#include "tst_assets_categories.moc"
