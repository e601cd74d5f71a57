#include "PanelFixture.h"

#include "editor/CAddAccountGroupDialog.h"
#include "risk/CSetAccountGroupRiskDialog.h"
#include "support/UnexpectedLog.h"
#include "support/wq/ScriptedPresenter.h"

#include <WQ/CStandardSimpleTable.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/DataType.h>

#include <QtTest>

using namespace panel_test;
namespace DataType = nvservice::DataType;

namespace
{

constexpr int RowButtonEvent = 218;

boost::shared_ptr<nvservice::CProductInfo> makeProduct(const std::string& name, const nvservice::CAccountGroup& group)
{
    const auto product = boost::make_shared<nvservice::CProductInfo>();
    product->productName = name;
    product->accounts = group.accounts;
    return product;
}

} // namespace

/// What the panel does with the two dialogs that it keeps.
class TestPanelDialogs : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void thePanelKeepsOneDialogOfEachKind();
    void everyGroupQueryReloadsTheAssetsOfTheRiskSettingsFirst();
    void theRefreshButtonReloadsTheAssetsTwice();
    void theRiskSettingsOfARowAreOpenedAndTheTableStays();
    void theEditorKnowsTheProductOfEachAccount();

private:
    std::vector<nvservice::IDataPtr> recordsOf(int dataType);
    void press(int button);
    void openRiskSettings();
    /// What was asked for since the last call, by data type.
    QList<int> asked();

    std::vector<nvservice::IDataPtr> m_groups;
    std::vector<nvservice::IDataPtr> m_products;
    QList<int> m_asked; ///< queries are sent on the test's own thread
    std::unique_ptr<support::UnexpectedLog> m_log;
    std::unique_ptr<PanelFixture> m_client;
    std::unique_ptr<support::ScriptedPresenter> m_boxes;
};

void TestPanelDialogs::init()
{
    m_log = std::make_unique<support::UnexpectedLog>();
    m_boxes = std::make_unique<support::ScriptedPresenter>();
    m_client = std::make_unique<PanelFixture>();
    m_groups = {makeGroup(17, "一组", ShanghaiTag, 2)};
    m_products.clear();
    m_asked.clear();
    m_client->addShanghai();
    m_client->shanghai->onQuery = [this](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
        m_asked << request.dataType;
        handler(support::replyWith(recordsOf(request.dataType)));
    };
    m_client->createPanel().switchSystem(0, QString::fromStdString(Shanghai));
    QTRY_VERIFY(m_client->mask()->isHidden());
    asked();
}

void TestPanelDialogs::cleanup()
{
    m_client.reset();
    m_boxes->verify();
    m_boxes.reset();
    QCOMPARE(m_log->unexpected(), QStringList());
    m_log.reset();
}

std::vector<nvservice::IDataPtr> TestPanelDialogs::recordsOf(int dataType)
{
    if (dataType == DataType::AccountGroup)
        return m_groups;
    if (dataType == DataType::Product) {
        const auto products = boost::make_shared<nvservice::CKolmProductsResp>();
        products->products = m_products;
        return {products};
    }
    if (dataType == DataType::GroupRiskConfig)
        return {boost::make_shared<nvservice::CAccountGroupRCConfig>()};
    return {};
}

QList<int> TestPanelDialogs::asked()
{
    return std::exchange(m_asked, {});
}

void TestPanelDialogs::press(int button)
{
    QVERIFY(m_client->panel->handleEvent(RowButtonEvent, 4, button, "上海分系统|17", nullptr));
}

void TestPanelDialogs::openRiskSettings()
{
    m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
        auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
        QTRY_VERIFY(mask->isHidden());
        dialog.done(0);
    });
    press(0);
}

void TestPanelDialogs::thePanelKeepsOneDialogOfEachKind()
{
    const auto* const risk = m_client->panel->findChild<QAV::CSetAccountGroupRiskDialog*>();
    const auto* const editor = m_client->panel->findChild<QAV::CAddAccountGroupDialog*>();
    QVERIFY(risk && editor);
    QCOMPARE(risk->parentWidget(), m_client->panel.get());
    QCOMPARE(editor->parentWidget(), m_client->panel.get());
    QVERIFY(m_client->panel->children().indexOf(const_cast<QAV::CSetAccountGroupRiskDialog*>(risk)) <
            m_client->panel->children().indexOf(const_cast<QAV::CAddAccountGroupDialog*>(editor)));
    openRiskSettings();
    QCOMPARE(m_client->panel->findChildren<QAV::CSetAccountGroupRiskDialog*>().size(), 1);
    QCOMPARE(m_client->panel->findChild<QAV::CSetAccountGroupRiskDialog*>(), risk);
}

void TestPanelDialogs::everyGroupQueryReloadsTheAssetsOfTheRiskSettingsFirst()
{
    // Before the settings of a group were open, there is no server to ask.
    m_client->panel->onActive();
    QTRY_VERIFY(m_client->mask()->isHidden());
    QCOMPARE(asked(), QList<int>({DataType::AccountGroup, DataType::Product}));

    openRiskSettings();
    asked();
    m_client->panel->onActive();
    QTRY_VERIFY(m_client->mask()->isHidden());
    QCOMPARE(asked(), QList<int>({DataType::Category, DataType::AccountGroup, DataType::Product}));
    m_client->panel->switchSystem(0, QString::fromStdString(Shanghai));
    QTRY_VERIFY(m_client->mask()->isHidden());
    QCOMPARE(asked(), QList<int>({DataType::Category, DataType::AccountGroup, DataType::Product}));
}

void TestPanelDialogs::theRefreshButtonReloadsTheAssetsTwice()
{
    openRiskSettings();
    asked();
    QTest::mouseClick(m_client->button("立即刷新"), Qt::LeftButton);
    QTRY_VERIFY(m_client->mask()->isHidden());
    QCOMPARE(asked(), QList<int>({DataType::Category, DataType::AccountGroup, DataType::Category, DataType::Product}));
}

void TestPanelDialogs::theRiskSettingsOfARowAreOpenedAndTheTableStays()
{
    m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
        QCOMPARE(dialog.windowTitle(), QString("一组组 - 风控设置"));
        auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
        QTRY_VERIFY(mask->isHidden());
        dialog.done(1);
    });
    press(0);
    const QList<int> queries = asked();
    QVERIFY(queries.contains(DataType::GroupRiskConfig));
    QVERIFY(!queries.contains(DataType::AccountGroup));
    QCOMPARE(m_client->shown(0), QStringList("一组"));
}

void TestPanelDialogs::theEditorKnowsTheProductOfEachAccount()
{
    const auto group = makeGroup(17, "一组", ShanghaiTag, 3);
    m_groups = {group};
    const auto excluded = makeProduct("除外产品", *group);
    excluded->excluded = true;
    const auto later = makeProduct("后来的产品", *group);
    later->accounts.erase(later->accounts.begin());
    const auto first = makeProduct("先来的产品", *group);
    first->accounts.pop_back();
    // A foreign record among the products is skipped; of two products of one account the later one counts.
    m_products = {first, makeGroup(1, "组", ShanghaiTag), later, excluded};
    m_client->panel->onActive();
    QTRY_VERIFY(m_client->mask()->isHidden());
    m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
        const auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
        QStringList products;
        for (int row = 0; row < table->rowCount(); ++row)
            products << table->itemText(table->rowID(row), 3);
        QCOMPARE(products, QStringList({"先来的产品", "后来的产品", "后来的产品"}));
        dialog.done(0);
    });
    press(1);

    // The next reply replaces them all.
    m_products.clear();
    m_client->panel->onActive();
    QTRY_VERIFY(m_client->mask()->isHidden());
    m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
        const auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
        QCOMPARE(table->itemText(table->rowID(0), 3), QString("未关联产品"));
        dialog.done(0);
    });
    press(1);
}

QTEST_MAIN(TestPanelDialogs)
#include "tst_panel_dialogs.moc"
