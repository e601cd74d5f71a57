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

} // namespace

/// The security categories that a limit measures.
class AssetsCategoriesTest : public support::WatchedTest
{
    Q_OBJECT

private slots:
    void init()
    {
        WatchedTest::init();
        m_server = std::make_unique<OneServer>();
        utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({1});
    }

    void cleanup()
    {
        m_server.reset();
        utils::CSingletonT<QAV::CConfigService>::instance()->setAllowedCategorySysTypes({});
        WatchedTest::cleanup();
    }

    void theCategoriesOfTheServerAreLoadedWithItsFirstLimits()
    {
        AssetsEditor editor;
        QVERIFY(m_server->isSilent());
        editor.load({limitOf(2)}, "深圳");
        QCOMPARE(editor.text(0, Category), QString("分类2"));
        answer(categories());
        QTRY_COMPARE(editor.text(0, Category), QString("股票 / 银行"));
        editor.load({limitOf(3)}, "深圳");
        QVERIFY(m_server->isSilent());
        QCOMPARE(editor.text(0, Category), QString("债券"));
    }

    void refreshLoadsThemAgain()
    {
        AssetsEditor editor;
        editor.load({limitOf(2)}, "深圳");
        answer(categories());
        QTRY_COMPARE(editor.text(0, Category), QString("股票 / 银行"));
        editor.widget().refresh();
        answer(support::replyWith({makeCategory(2, "城商行")}));
        QTRY_COMPARE(editor.text(0, Category), QString("城商行"));
        QCOMPARE(editor.cell<QLineEdit>(0, Category).text(), QString("城商行"));
    }

    void refreshWithoutAServerAsksNobody()
    {
        AssetsEditor editor;
        editor.widget().refresh();
        QVERIFY(m_server->isSilent());
    }

    void aCategoryIsShownWithThoseAboveIt()
    {
        AssetsEditor editor;
        editor.load({limitOf(4)}, "深圳");
        answer(categories());
        QTRY_COMPARE(editor.cell<QLineEdit>(0, Category).text(), QString("债券 / 银行"));
    }

    void aCategoryIsChosenFromTheOffers()
    {
        AssetsEditor editor;
        editor.load({soundLimit(1, 5)}, "深圳");
        answer(categories());
        auto& edit = editor.cell<QLineEdit>(0, Category);
        QVERIFY(!edit.isEnabled());
        editor.choose(0, Class, "证券分类");
        QVERIFY(edit.isEnabled());
        QTRY_VERIFY((edit.clear(), type(edit, "yh"), !offers().isEmpty()));
        QCOMPARE(offers(), (QStringList{"股票 / 银行", "债券 / 银行"}));
        takePicture(editor.window, "assets-category");
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        QCOMPARE(editor.limits().at(0).categoryId, 4);
        QCOMPARE(edit.text(), QString("债券 / 银行"));
        QString message;
        QVERIFY(editor.widget().isDataValid(message));

        // Whoever opens the list again looks for another category.
        QTest::keyClick(&edit, Qt::Key_Down);
        QCOMPARE(offers().size(), 4);
    }

    void aNameThatOnlyOneCategoryHasIsEnough()
    {
        AssetsEditor editor;
        editor.load({limitOf(1)}, "深圳");
        answer(categories());
        QTRY_COMPARE(editor.text(0, Category), QString("股票"));
        editor.typeInto(0, Category, "债券");
        QCOMPARE(editor.limits().at(0).categoryId, 3);
        // Two categories have this name.
        editor.typeInto(0, Category, "银行");
        QCOMPARE(editor.limits().at(0).categoryId, -1);
        // The only one that the pinyin stands for is taken when the user goes on.
        editor.typeInto(0, Category, "gpyh");
        QTest::keyClick(&editor.cell(0, Category), Qt::Key_Return);
        QCOMPARE(editor.limits().at(0).categoryId, 2);
        QCOMPARE(editor.cell<QLineEdit>(0, Category).text(), QString("股票 / 银行"));
    }

    void aLimitWithoutItsCategoryIsNotValid()
    {
        AssetsEditor editor;
        editor.load({limitOf(1)}, "深圳");
        answer(categories());
        editor.typeInto(0, Category, "没有");
        QString message;
        QVERIFY(!editor.widget().isDataValid(message));
        QCOMPARE(message, QString("请选择证券分类"));
        QVERIFY(WQ::CMessageTip::tipOf(&editor.cell(0, Category)));
    }

    void anotherAssetClassTakesTheCategoryAway()
    {
        AssetsEditor editor;
        editor.load({limitOf(1)}, "深圳");
        editor.choose(0, Class, "股票");
        QCOMPARE(editor.limits().at(0).categoryId, -1);
        QVERIFY(!editor.cell(0, Category).isEnabled());
        QCOMPARE(editor.cell<QLineEdit>(0, Category).text(), QString());
    }

    void aCategoryThatIsGoneStaysInTheLimit()
    {
        AssetsEditor editor;
        editor.load({limitOf(77), limitOf(5)}, "深圳");
        answer(categories());
        QTRY_COMPARE(editor.text(0, Category), QString("分类77"));
        // A category that the user may not use is none of the offers.
        QCOMPARE(editor.text(1, Category), QString("分类5"));
        QCOMPARE(editor.limits().at(0).categoryId, 77);
        QString message;
        QVERIFY(editor.widget().isDataValid(message));
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
        AssetsEditor editor;
        editor.load({limitOf(1)}, "深圳");
        answer(categories());
        QTRY_COMPARE(editor.text(0, Category), QString("股票"));
        editor.widget().refresh();
        answer(support::replyWithError(utils::EErrorCode::Failed, "服务忙"));
        // The reply to a third query comes after the failure.
        editor.widget().refresh();
        answer(support::replyWith({makeCategory(1, "股票"), makeCategory(9, "期货")}));
        editor.load({limitOf(1), limitOf(9)}, "深圳");
        QCOMPARE(editor.text(0, Category), QString("股票"));
        QTRY_COMPARE(editor.text(1, Category), QString("期货"));
    }

    void aReplyOfTheServerBeforeIsDropped()
    {
        AssetsEditor editor;
        editor.load({limitOf(1)}, "深圳");
        auto query = m_server->takeQuery(nvservice::DataType::Category, "-1_-1");
        editor.load({limitOf(1)}, "上海");
        query.handler(categories());
        editor.load({limitOf(1)}, "深圳");
        answer(support::replyWith({makeCategory(1, "现在")}));
        QTRY_COMPARE(editor.text(0, Category), QString("现在"));
    }

    void aCircleOfCategoriesDoesNoHarm()
    {
        AssetsEditor editor;
        editor.load({limitOf(1)}, "深圳");
        answer(support::replyWith({makeCategory(1, "甲", 2), makeCategory(2, "乙", 1)}));
        QTRY_VERIFY(editor.text(0, Category).endsWith("甲"));
    }

private:
    void answer(QAV::ITransport::Reply reply, const std::string& queryKey = "-1_-1")
    {
        m_server->takeQuery(nvservice::DataType::Category, queryKey).handler(std::move(reply));
    }

    std::unique_ptr<OneServer> m_server;
};

TEST_WITH_WIDGETS(AssetsCategoriesTest)
#include "tst_assets_categories.moc"
