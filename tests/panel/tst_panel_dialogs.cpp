// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "editor/CAddAccountGroupDialog.h"
#include "risk/CSetAccountGroupRiskDialog.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/wq/Widgets.h"

#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserCombobox.h>
#include <WQ/CStandardSimpleTable.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CInstitutionInfo.h>
#include <nvservice/CKolmAccountInfo.h>
#include <nvservice/UserRight.h>

using namespace panel_test;
namespace DataType = nvservice::DataType;

namespace
{

constexpr int RowButtonEvent = 218;
constexpr int InstitutionId = 7;

boost::shared_ptr<nvservice::CProductInfo> makeProduct(const std::string& name, const nvservice::CAccountGroup& group)
{
    const auto product = boost::make_shared<nvservice::CProductInfo>();
    product->productName = name;
    product->accounts = group.accounts;
    return product;
}

/// A group whose copies call themselves so and know no server.
class MarkedGroup : public nvservice::CAccountGroup
{
public:
    nvservice::IDataPtr copy() const override
    {
        const auto copy = boost::dynamic_pointer_cast<CAccountGroup>(CAccountGroup::copy());
        copy->groupName += "的副本";
        copy->setSystemTag({});
        return copy;
    }
};

} // namespace

/// What the panel does with the two dialogs that it keeps.
class PanelDialogsTest : public PanelTest
{
    Q_OBJECT

private slots:
    void init()
    {
        PanelTest::init();
        m_groups = {makeGroup(17, "一组", ShanghaiTag, 2)};
        m_products.clear();
        m_accounts.clear();
        m_asked.clear();
        m_client->addShanghai();
        m_client->shanghai->onQuery = [this](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
            m_asked << request.dataType;
            handler(support::replyWith(recordsOf(request.dataType)));
        };
        m_client->openPanel();
        QTRY_VERIFY(m_client->mask()->isHidden());
        asked();
    }

    void thePanelKeepsOneDialogOfEachKind()
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

    void everyGroupQueryReloadsTheAssetsOfTheRiskSettingsFirst()
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

    void theRefreshButtonReloadsTheAssetsTwice()
    {
        openRiskSettings();
        asked();
        QTest::mouseClick(m_client->button("立即刷新"), Qt::LeftButton);
        QTRY_VERIFY(m_client->mask()->isHidden());
        QCOMPARE(asked(),
                 QList<int>({DataType::Category, DataType::AccountGroup, DataType::Category, DataType::Product}));
    }

    void theRiskSettingsOfARowAreOpenedAndTheTableStays()
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

    void theWorkingCopyHasTheSystemTagOfTheListedGroup()
    {
        const auto group = boost::make_shared<MarkedGroup>();
        group->groupId = 17;
        group->groupName = "一组";
        group->setSystemTag(ShanghaiTag);
        m_groups = {group};
        m_client->panel->onActive();
        QTRY_VERIFY(m_client->mask()->isHidden());
        asked();
        QCOMPARE(m_client->shown(0), QStringList("一组"));
        // The settings are asked of the server that the copy's tag names.
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QString("一组的副本组 - 风控设置"));
            dialog.done(0);
        });
        press(0);
        QVERIFY(asked().contains(DataType::GroupRiskConfig));
    }

    void aNewGroupIsSentToThePanelsServerWithItsProductsKnown_data()
    {
        const support::DataRows<QString, bool, int> row("server", "isOneOfTwo", "institution");
        const QString shanghai = QString::fromStdString(Shanghai);
        row("the server is chosen", shanghai, false, nvservice::NoInstitutionId);
        row("all servers are chosen, of which there is one", {}, false, nvservice::NoInstitutionId);
        row("one of two servers is chosen", shanghai, true, nvservice::NoInstitutionId);
        row("one of two servers is chosen, by a user of an institution", shanghai, true, InstitutionId);
    }
    void aNewGroupIsSentToThePanelsServerWithItsProductsKnown()
    {
        QFETCH(QString, server);
        QFETCH(bool, isOneOfTwo);
        QFETCH(int, institution);
        constexpr int AddAccountsButton = 1;
        constexpr int SaveButton = 2;
        constexpr int AcceptButton = 2;
        support::switchModules(
            "return { mdl_portal = { mdl_portal_pb = true }, mdl_tradetype = { mdl_tradetype_stock = true } }");
        m_client->logIn({10717, nvservice::UserRight::StockAccount}, institution);
        if (isOneOfTwo) {
            m_client->addShenzhen();
            m_client->shenzhen->onQuery = [](const auto&, const auto& handler) { handler(support::replyWith({})); };
        }
        const auto account = boost::make_shared<nvservice::CKolmAccountInfo>();
        account->account->brokerType = nvservice::EZVBrokerType::Stock;
        account->account->accountId = "10001";
        account->account->setSystemTag(ShanghaiTag);
        account->setSystemTag(ShanghaiTag);
        m_accounts = {account};
        const auto product = boost::make_shared<nvservice::CProductInfo>();
        product->productName = "远山一号";
        product->accounts = {account->account};
        m_products = {product};
        m_client->createPanel().switchSystem(0, server);
        QTRY_VERIFY(m_client->mask()->isHidden());

        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
            QTRY_VERIFY(mask->isHidden());
            dialog.findChild<WQ::CLineEdit*>()->setText("新组");
            dialog.findChild<QAV::CManagerSearchLineEdit*>()->setCurrentManagerId(InstitutionId);
            m_boxes->expectDialog([&](WQ::CBaseDialog& picker) {
                picker.findChild<QAV::CUserCombobox*>()->setCheckItems({QString::fromStdString(account->getCsKey())});
                picker.handleEvent(WQ::ButtonClicked, AcceptButton, 0, QString(), nullptr);
            });
            dialog.handleEvent(WQ::ButtonClicked, AddAccountsButton, 0, QString(), nullptr);
            const auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
            QCOMPARE(table->rowCount(), 1);
            QCOMPARE(table->itemText(table->rowID(0), 3), QString("远山一号"));
            dialog.handleEvent(WQ::ButtonClicked, SaveButton, 0, QString(), nullptr);
        });
        QVERIFY(m_client->panel->handleEvent(WQ::ButtonClicked, 1, 0, QString(), nullptr));
        QCOMPARE(m_boxes->failures(), QStringList());
        const auto operation = m_client->shanghai->takeOperation();
        QCOMPARE(operation.request.operation, nvservice::EZvDataOperation::Add);
        const auto sent = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(operation.request.data);
        QCOMPARE(sent->groupId, nvservice::CAccountGroup().groupId);
        QCOMPARE(sent->groupName, std::string("新组"));
        QCOMPARE(sent->getSystemTag(), ShanghaiTag);
        QCOMPARE(sent->institutionId, InstitutionId);
        QCOMPARE(sent->accounts.size(), std::size_t(1));
    }

    void theInputOfARefusedSaveCanBeRecalledWhenItsGroupIsEditedAgain()
    {
        m_groups = {makeGroup(17, "一组", ShanghaiTag, 2), makeGroup(18, "二组", ShanghaiTag, 1)};
        refresh();
        edit("上海分系统|17", [this](WQ::CBaseDialog& dialog) {
            QVERIFY(!recall(dialog).isVisible());
            save(dialog, "改名");
        });
        answer(utils::EErrorCode::Conflict);
        edit("上海分系统|18", [](WQ::CBaseDialog& dialog) {
            QVERIFY(!recall(dialog).isVisible());
            dialog.done(0);
        });
        // Meanwhile the group has lost an account.
        m_groups.front() = makeGroup(17, "一组", ShanghaiTag, 1);
        m_groups.front()->setRevision(5);
        refresh();
        edit("上海分系统|17", [this](WQ::CBaseDialog& dialog) {
            const auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
            QCOMPARE(table->rowCount(), 1);
            QTest::mouseClick(&recall(dialog), Qt::LeftButton);
            QVERIFY(!recall(dialog).isVisible());
            QCOMPARE(dialog.findChild<WQ::CLineEdit*>()->text(), QString("改名"));
            QCOMPARE(table->rowCount(), 2);
            QVERIFY(dialog.hasUnsavedEdits());
            save(dialog, "改名");
        });
        answer(utils::EErrorCode::Success);
        QCOMPARE(m_sent->revision(), std::int64_t(5));
        QCOMPARE(m_sent->accounts.size(), std::size_t(2));
        edit("上海分系统|17", [](WQ::CBaseDialog& dialog) {
            QVERIFY(!recall(dialog).isVisible());
            dialog.done(0);
        });
    }

    void theEditorKnowsTheProductOfEachAccount()
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
            QCOMPARE(support::shown(*table, 3), QStringList({"先来的产品", "后来的产品", "后来的产品"}));
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

private:
    std::vector<nvservice::IDataPtr> recordsOf(int dataType)
    {
        if (dataType == DataType::AccountGroup) {
            return m_groups;
        }
        if (dataType == DataType::Product) {
            const auto products = boost::make_shared<nvservice::CKolmProductsResp>();
            products->products = m_products;
            return {products};
        }
        if (dataType == DataType::GroupRiskConfig) {
            return {boost::make_shared<nvservice::CAccountGroupRCConfig>()};
        }
        if (dataType == DataType::Account) {
            return m_accounts;
        }
        if (dataType == DataType::Institution) {
            const auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
            institution->institutionId = InstitutionId;
            institution->name = "远山基金";
            return {institution};
        }
        return {};
    }

    void press(int button)
    {
        QVERIFY(m_client->panel->handleEvent(RowButtonEvent, 4, button, "上海分系统|17", nullptr));
    }

    void refresh()
    {
        m_client->panel->onActive();
        QTRY_VERIFY(m_client->mask()->isHidden());
    }

    static QAbstractButton& recall(const QWidget& dialog) { return *support::buttonOf(dialog, "恢复上次未保存的输入"); }

    void edit(const QString& key, const std::function<void(WQ::CBaseDialog&)>& script)
    {
        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
            QTRY_VERIFY(mask->isHidden());
            script(dialog);
        });
        QVERIFY(m_client->panel->handleEvent(RowButtonEvent, 4, 1, key, nullptr));
    }

    void save(WQ::CBaseDialog& dialog, const QString& name)
    {
        constexpr int SaveButton = 2;
        dialog.findChild<WQ::CLineEdit*>()->setText(name);
        dialog.findChild<QAV::CManagerSearchLineEdit*>()->setCurrentManagerId(InstitutionId);
        dialog.handleEvent(WQ::ButtonClicked, SaveButton, 0, QString(), nullptr);
    }

    /// Answers the save that was sent.
    void answer(utils::EErrorCode code)
    {
        const auto operation = m_client->shanghai->takeOperation();
        const bool isDone = code == utils::EErrorCode::Success;
        m_boxes->expectMessage(QMessageBox::Information, "提示", isDone ? "编辑账号组成功!" : "编辑账号组失败!(不行)");
        operation.handler(isDone ? support::replyWith({}) : support::replyWithError(code, "不行"));
        support::settleCallbacks();
        QTRY_VERIFY(m_client->mask()->isHidden());
        m_sent = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(operation.request.data);
    }

    void openRiskSettings()
    {
        m_boxes->expectDialog([](WQ::CBaseDialog& dialog) {
            auto* const mask = dialog.findChild<WQ::CLoadingMaskWidget*>();
            QTRY_VERIFY(mask->isHidden());
            dialog.done(0);
        });
        press(0);
    }

    /// What was asked for since the last call, by data type.
    QList<int> asked() { return std::exchange(m_asked, {}); }

    boost::shared_ptr<nvservice::CAccountGroup> m_sent;
    std::vector<nvservice::IDataPtr> m_groups;
    std::vector<nvservice::IDataPtr> m_products;
    std::vector<nvservice::IDataPtr> m_accounts;
    QList<int> m_asked; ///< queries are sent on the test's own thread
};

TEST_WITH_WIDGETS(PanelDialogsTest)
#include "tst_panel_dialogs.moc"
