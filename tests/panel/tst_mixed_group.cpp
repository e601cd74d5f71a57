// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "editor/ControlId.h"
#include "support/TestProgram.h"
#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"

#include <WQ/CBaseDialog.h>
#include <WQ/CStandardSimpleTable.h>
#include <nvservice/CInstitutionInfo.h>

using namespace panel_test;
namespace DataType = nvservice::DataType;

/// A group of one server that holds an account of another one, from the table to what is sent.
class MixedGroupTest : public PanelTest
{
    Q_OBJECT

    static constexpr int InstitutionId = 7;

    static boost::shared_ptr<nvservice::CAccountInfo> makeAccount(const std::string& id, const std::string& tag)
    {
        const auto account = boost::make_shared<nvservice::CAccountInfo>();
        account->accountId = id;
        account->setSystemTag(tag);
        return account;
    }

    static nvservice::IDataPtr makeProducts(const std::string& name,
                                            const boost::shared_ptr<nvservice::CAccountInfo>& account)
    {
        const auto product = boost::make_shared<nvservice::CProductInfo>();
        product->productName = name;
        product->accounts = {account};
        const auto products = boost::make_shared<nvservice::CKolmProductsResp>();
        products->products = {product};
        return products;
    }

private slots:
    void everyAccountShowsItsOwnServerAndProduct_data() { addUsers(); }

    void everyAccountShowsItsOwnServerAndProduct()
    {
        QFETCH(int, institution);
        showMixedGroup(institution);
        edit([](WQ::CBaseDialog& dialog, WQ::CStandardSimpleTable& table) {
            QStringList rows;
            for (int row = 0; row < table.rowCount(); ++row) {
                rows << table.itemText(table.rowID(row), 2) + ' ' + table.itemText(table.rowID(row), 3);
            }
            QCOMPARE(rows, QStringList({"上海分系统 沪产品", "深圳分系统 深产品"}));
            dialog.done(0);
        });
    }

    void anUnboundUserIsToldOfTheAccountOfTheOtherServer()
    {
        showMixedGroup(nvservice::NoInstitutionId);
        edit([this](WQ::CBaseDialog& dialog, WQ::CStandardSimpleTable&) {
            m_boxes->expectMessage(QMessageBox::Information, "错误", "账号2 必须与账号组 分系统相同！");
            dialog.handleEvent(WQ::ButtonClicked, QAV::SaveGroupButtonId, 0, {}, nullptr);
            QCOMPARE(m_boxes->failures(), QStringList());
            QVERIFY(dialog.isVisible());
            dialog.done(0);
        });
    }

    void aPlainSaveOfABoundUserMovesNoAccount()
    {
        showMixedGroup(InstitutionId);
        edit([](WQ::CBaseDialog& dialog, WQ::CStandardSimpleTable&) {
            dialog.handleEvent(WQ::ButtonClicked, QAV::SaveGroupButtonId, 0, {}, nullptr);
        });
        QCOMPARE(tagsOfSentAccounts(), std::vector<std::string>({ShanghaiTag, ShenzhenTag}));
    }

    void withoutTheAccountOfTheOtherServerTheGroupIsSaved()
    {
        showMixedGroup(nvservice::NoInstitutionId);
        edit([this](WQ::CBaseDialog& dialog, WQ::CStandardSimpleTable& table) {
            m_boxes->expectQuestion(QMessageBox::Information, "删除", "确认删除? ", QMessageBox::Yes);
            dialog.handleEvent(WQ::ButtonClicked, QAV::FirstDeleteButtonId + table.rowID(1), 0, {}, nullptr);
            dialog.handleEvent(WQ::ButtonClicked, QAV::SaveGroupButtonId, 0, {}, nullptr);
        });
        QCOMPARE(tagsOfSentAccounts(), std::vector<std::string>({ShanghaiTag}));
    }

private:
    static void addUsers()
    {
        const support::DataRows<int> row("institution");
        row("unbound", nvservice::NoInstitutionId);
        row("bound", InstitutionId);
    }

    void showMixedGroup(int institutionId)
    {
        m_client->logIn(AllRights, institutionId);
        m_client->addBothServers();
        support::centre().setCurrentServer(Shanghai);
        for (const auto& server : {m_client->shanghai, m_client->shenzhen}) {
            const bool isShanghai = server == m_client->shanghai;
            server->onQuery = [isShanghai](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
                std::vector<nvservice::IDataPtr> records;
                if (request.dataType == DataType::AccountGroup) {
                    const auto group = makeGroup(17, "混合组", ShanghaiTag, 0);
                    group->institutionId = InstitutionId;
                    group->accounts = {makeAccount("1", ShanghaiTag), makeAccount("2", ShenzhenTag)};
                    records.push_back(group);
                } else if (request.dataType == DataType::Product) {
                    records.push_back(isShanghai ? makeProducts("沪产品", makeAccount("1", ShanghaiTag))
                                                 : makeProducts("深产品", makeAccount("2", ShenzhenTag)));
                } else if (request.dataType == DataType::Institution) {
                    const auto institution = boost::make_shared<nvservice::CInstitutionInfo>();
                    institution->institutionId = InstitutionId;
                    institution->name = "远山基金";
                    records.push_back(institution);
                }
                handler(support::replyWith(records));
            };
        }
        m_client->openPanel();
        QTRY_VERIFY(m_client->mask()->isHidden());
        QCOMPARE(m_client->shown(0), QStringList({"混合组"}));
    }

    /// Opens the dialog for the group and runs `script` when its data are there.
    void edit(const std::function<void(WQ::CBaseDialog&, WQ::CStandardSimpleTable&)>& script)
    {
        m_boxes->expectDialog([&](WQ::CBaseDialog& dialog) {
            QTRY_VERIFY(dialog.findChild<WQ::CLoadingMaskWidget*>()->isHidden());
            script(dialog, *dialog.findChild<WQ::CStandardSimpleTable*>());
        });
        QVERIFY(m_client->panel->handleEvent(WQ::RowButtonClicked, 4, QAV::EditRowButton, "上海分系统|17", nullptr));
    }

    std::vector<std::string> tagsOfSentAccounts()
    {
        const auto operation = m_client->shanghai->takeOperation();
        const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(operation.request.data);
        std::vector<std::string> tags;
        for (const auto& account : group->accounts) {
            tags.push_back(account->getSystemTag());
        }
        return tags;
    }
};

TEST_WITH_WIDGETS(MixedGroupTest)
#include "tst_mixed_group.moc"
