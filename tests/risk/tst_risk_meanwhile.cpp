// SPDX-License-Identifier: Apache-2.0
#include "RiskFixture.h"

#include "exempt/ControlId.h"
#include "support/TestProgram.h"

#include <WQ/CBaseDialog.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageBox.h>
#include <WQ/EventType.h>

#include <QClipboard>

using namespace risk_test;
using nvservice::DataType::Category;
using nvservice::DataType::GroupRiskConfig;

namespace
{

constexpr int ExemptTab = 2;

/// Answers every box with Yes after something has happened.
class SlowPresenter : public WQ::IMessagePresenter
{
public:
    explicit SlowPresenter(std::function<void()> meanwhile)
        : m_before(WQ::CMessageBox::setPresenter(this)), m_meanwhile(std::move(meanwhile))
    {
    }
    ~SlowPresenter() override { WQ::CMessageBox::setPresenter(m_before); }

    QMessageBox::StandardButton showMessage(const WQ::MessageRequest&) override
    {
        m_meanwhile();
        return QMessageBox::Yes;
    }

private:
    WQ::IMessagePresenter* m_before;
    std::function<void()> m_meanwhile;
};

} // namespace

/// What is still open in a tab of the risk settings when another group comes into the dialog.
class RiskMeanwhileTest : public RiskTest
{
    Q_OBJECT

private slots:
    void init()
    {
        m_client = std::make_unique<RiskFixture>(QStringList{"mdl_tradetype_stock"});
        m_client->load(makeGroup(1, "A"), makeConfig(1, "A"));
    }

    void thePickerOfTheGroupBeforeIsClosedWhenTheCategoriesAreReplaced()
    {
        m_client->boxes->expectDialog([this](WQ::CBaseDialog& picker) {
            openB(true);
            QVERIFY(!picker.isVisible());
        });
        clickChoose();
        QCOMPARE(m_client->exemptNames(0), QStringList({"国债"}));
        QVERIFY(m_client->boxes->verify());
    }

    void whatIsPickedWhileAnotherGroupLoadsIsDropped()
    {
        m_client->boxes->expectDialog([this](WQ::CBaseDialog& picker) {
            for (WQ::CStandardSimpleTable* const table : picker.findChildren<WQ::CStandardSimpleTable*>()) {
                for (int row = 0; row < table->rowCount(); ++row) {
                    table->setRowSelected(table->rowID(row), true);
                }
            }
            picker.handleEvent(WQ::ButtonClicked, QAV::ChooseButtonId, 0, {}, nullptr);
            openB(false);
            picker.handleEvent(WQ::ButtonClicked, QAV::AcceptButtonId, 0, {}, nullptr);
        });
        clickChoose();
        QCOMPARE(m_client->exemptNames(0), QStringList({"国债"}));
    }

    void aDeletionThatIsConfirmedTooLateDeletesNothing_data() { addMoments(); }

    void aDeletionThatIsConfirmedTooLateDeletesNothing()
    {
        QFETCH(bool, answers);
        SlowPresenter boxes([&] { openB(answers); });
        const auto tables = m_client->dialog().findChildren<WQ::CStandardSimpleTable*>();
        const auto table = std::find_if(tables.begin(), tables.end(), [](const WQ::CStandardSimpleTable* candidate) {
            return candidate->tableId() == QAV::ReverseOrderCategoryTableId;
        });
        m_client->tabs().setCurrentIndex(ExemptTab);
        (*table)->view();
        QTest::mouseClick((*table)->itemWidget((*table)->rowID(0), 1), Qt::LeftButton);
        QVERIFY(answers != m_client->mask().isVisible());
        QCOMPARE(m_client->exemptNames(0), QStringList({"国债"}));
    }

    void anImportThatIsConfirmedTooLateImportsNothing_data() { addMoments(); }

    void anImportThatIsConfirmedTooLateImportsNothing()
    {
        QFETCH(bool, answers);
        QApplication::clipboard()->setText("600000\n600000\n");
        m_client->boxes->expectDialog([&](WQ::CBaseDialog& report) {
            openB(answers);
            QTest::mouseClick(report.findChild<QAbstractButton*>("take"), Qt::LeftButton);
        });
        QTest::mouseClick(m_client->dialog().findChild<QAbstractButton*>("paste"), Qt::LeftButton);
        const auto entries = m_client->tradeLimits().lists.front().entries;
        QCOMPARE(entries.size(), std::size_t(1));
        QCOMPARE(entries.front().securityName, std::string(answers ? "B" : "A"));
    }

    void theNamesOfCategoriesAreThoseOfTheGroupsServer()
    {
        constexpr int CategoryColumn = 3;
        const auto config = makeConfig(1, "B");
        config->assetsRCs.front().assetClass = nvservice::EZVRCAssetClass::ByCategory;
        config->assetsRCs.front().categoryId = 10;
        m_client->open(makeGroup(1, "B", ShenzhenTag));
        // The limits' own categories are asked anew, from the server of the group before, while B loads.
        m_client->dialog().refreshAssets();
        const auto ofShanghai = m_client->shanghai->takeQueryOf(Category);
        m_client->shenzhen->takeQueryOf(Category).handler(support::replyWith(someCategories()));
        m_client->shenzhen->takeQueryOf(GroupRiskConfig).handler(support::replyWith({config}));
        QTRY_VERIFY(m_client->mask().isHidden());
        m_client->shenzhen->takeQueryOf(Category).handler(support::replyWith({makeCategory(10, "深圳国债")}));
        ofShanghai.handler(support::replyWith({makeCategory(10, "上海国债")}));
        support::settleCallbacks();
        const auto* const limits = m_client->assets().findChild<WQ::CStandardSimpleTable*>("limits");
        QCOMPARE(limits->itemText(limits->rowID(0), CategoryColumn), QString("深圳国债"));
    }

private:
    static void addMoments()
    {
        const support::DataRows<bool> row("answers");
        row("while B loads", false);
        row("after B has loaded", true);
    }

    /// Opens the group B, and answers for it unless it is to go on loading.
    void openB(bool answers)
    {
        m_client->open(makeGroup(2, "B"));
        if (!answers) {
            return;
        }
        m_client->answerConfig({makeConfig(2, "B")});
        m_client->answerCategories(someCategories());
        QTRY_VERIFY(m_client->mask().isHidden());
    }

    void clickChoose()
    {
        m_client->tabs().setCurrentIndex(ExemptTab);
        QWidget* const page = m_client->tabs().tabWidget(ExemptTab);
        QTest::mouseClick(page->findChild<WQ::CMediumNormalButton*>(), Qt::LeftButton);
    }
};

TEST_WITH_WIDGETS(RiskMeanwhileTest)
#include "tst_risk_meanwhile.moc"
