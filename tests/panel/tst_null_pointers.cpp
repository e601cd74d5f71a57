// SPDX-License-Identifier: Apache-2.0
#include "PanelTest.h"

#include "editor/CAddAccountGroupDialog.h"
#include "editor/CSelectAccountDialog.h"
#include "editor/ControlId.h"
#include "risk/CSetAccountGroupRiskDialog.h"
#include "risk/ControlId.h"
#include "support/TestProgram.h"
#include "support/qav/ServiceThread.h"
#include "support/records/DamagedRecords.h"
#include "support/wq/ActingPresenter.h"

#include <QAV/CUserCombobox.h>
#include <WQ/CBaseDialog.h>
#include <WQ/CComboBox.h>
#include <WQ/CStandardSimpleTable.h>
#include <nvservice/Codec.h>
#include <nvservice/UserRight.h>

#include <algorithm>

using namespace panel_test;
using support::SampleRecord;
namespace DataType = nvservice::DataType;

namespace
{

const std::map<int, QString> ClassOfReplies{
    {DataType::AccountGroup, "nvservice::CAccountGroup"},
    {DataType::Product, "nvservice::CKolmProductsResp"},
    {DataType::Account, "nvservice::CKolmAccountInfo"},
    {DataType::GroupRiskConfig, "nvservice::CAccountGroupRCConfig"},
    {DataType::Category, "nvservice::CCategoryInfo"},
    {DataType::Institution, "nvservice::CInstitutionInfo"},
    {DataType::Security, "nvservice::CSecurityInfo"},
};
constexpr int DamagedId = 2; ///< of a damaged group; the whole one has 1

nvservice::IDataPtr wholeRecord(const QString& className)
{
    const auto records = support::wholeRecords();
    const auto found =
        std::find_if(records.begin(), records.end(), [&](const auto& sample) { return sample.name == className; });
    return found == records.end() ? nvservice::IDataPtr() : found->record;
}

} // namespace

/// Replies in which a pointer is null, before the panel, the group dialog, the account picker and the risk settings.
class NullPointersTest : public PanelTest
{
    Q_OBJECT

private slots:
    void aReplyWithANullPointerIsShownWithoutIt_data()
    {
        const support::DataRows<int, bool> row("index", "first");
        const auto records = support::damagedRecords();
        QVERIFY(!records.empty());
        for (int i = 0; i < int(records.size()); ++i) {
            const QString& name = records[std::size_t(i)].name;
            row(name + ", first", i, true);
            row(name + ", last", i, false);
        }
    }
    void aReplyWithANullPointerIsShownWithoutIt()
    {
        QFETCH(int, index);
        QFETCH(bool, first);
        m_isDamagedFirst = first;
        m_damaged = support::damagedRecords().at(std::size_t(index));
        const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(m_damaged.record);
        if (group) {
            group->groupId = DamagedId;
            group->groupName = "damaged";
        }
        m_done.clear();

        m_client->logIn({nvservice::UserRight::EditAccountGroup, nvservice::UserRight::SetAccountGroupRisk,
                         nvservice::UserRight::DeleteAccountGroup, nvservice::UserRight::StockAccount});
        support::switchModules(
            "return { mdl_portal = { mdl_portal_pb = true }, mdl_tradetype = { mdl_tradetype_stock = true } }");
        m_client->addShanghai();
        m_client->shanghai->onQuery = [this](const nvservice::CKolmQueryDataReq& request, const auto& handler) {
            handler(support::replyWith(replyTo(request.dataType)));
        };
        m_client->shanghai->onOperate = [](const nvservice::COperateDataReq& request, const auto& handler) {
            nvservice::encodeRecord(*request.copy());
            handler({});
        };
        support::ActingPresenter presenter;
        presenter.onMessage = [](const WQ::MessageRequest&) { return QMessageBox::Ok; };
        presenter.onDialog = [this](WQ::CBaseDialog& dialog) { return workWith(dialog); };

        m_client->openPanel();
        QTRY_VERIFY(m_client->mask()->isHidden());
        QCOMPARE(m_client->model()->getDataCount(), group ? 2 : 1);
        workWithAllRows();
        QVERIFY(m_client->mask()->isHidden());
        QCOMPARE(m_client->model()->getDataCount(), group ? 2 : 1);
        QCOMPARE(m_done.count("settings opened"), group ? 2 : 1);
        QCOMPARE(m_done.count("2 accounts listed"), 1);
        QCOMPARE(m_done.count("1 accounts listed"), group ? 1 : 0);
        QCOMPARE(m_done.count("1 accounts offered"), group ? 2 : 1);
    }

    void nullRecordsAreSkipped()
    {
        auto& panel = m_client->createPanel();
        panel.onActive();
        QTRY_VERIFY(m_client->mask()->isHidden());
        emit panel.sigQuaryAccountGroup({nullptr}, 1);
        emit panel.sigQueryProduct({nullptr});
        QCOMPARE(m_client->model()->getDataCount(), 0);
    }

private:
    std::vector<nvservice::IDataPtr> replyTo(int dataType) const
    {
        const auto known = ClassOfReplies.find(dataType);
        std::vector<nvservice::IDataPtr> records;
        if (known != ClassOfReplies.end()) {
            records.push_back(wholeRecord(known->second));
        }
        records.insert(m_isDamagedFirst ? records.begin() : records.end(), m_damaged.record->copy());
        return records;
    }

    /// Opens every dialog of every row and does in it what there is to do.
    void workWithAllRows()
    {
        for (const QString& name : m_client->shown(0)) {
            const int row = m_client->shown(0).indexOf(name);
            const QString key = m_client->model()->getDataByRow(row)->getKey();
            for (const int button : {QAV::RiskSettingsRowButton, QAV::EditRowButton}) {
                m_client->panel->handleEvent(WQ::RowButtonClicked, 4, button, key, nullptr);
                // A save leads to an outcome, groups and products.
                for (int turns = 0; turns < 4; ++turns) {
                    support::settleCallbacks();
                }
            }
        }
    }

    int workWith(WQ::CBaseDialog& dialog)
    {
        dialog.setResult(QDialog::Rejected);
        for (int turns = 0; turns < 3; ++turns) {
            support::settleCallbacks();
        }
        if (qobject_cast<QAV::CSelectAccountDialog*>(&dialog)) {
            auto* const box = dialog.findChild<QAV::CUserCombobox*>();
            for (int type = dialog.findChild<WQ::CComboBox*>()->count() - 1; type >= 0; --type) {
                dialog.findChild<WQ::CComboBox*>()->setCurrentIndex(type);
            }
            m_done << QStringLiteral("%1 accounts offered").arg(box->itemCount());
            dialog.handleEvent(WQ::ButtonClicked, QAV::AcceptAccountsButtonId, 0, {}, nullptr);
            return QDialog::Accepted;
        }
        if (qobject_cast<QAV::CAddAccountGroupDialog*>(&dialog)) {
            m_done
                << QStringLiteral("%1 accounts listed").arg(dialog.findChild<WQ::CStandardSimpleTable*>()->rowCount());
            dialog.handleEvent(WQ::ButtonClicked, QAV::AddAccountsButtonId, 0, {}, nullptr);
            dialog.handleEvent(WQ::ButtonClicked, QAV::SaveGroupButtonId, 0, {}, nullptr);
            return dialog.result();
        }
        dialog.handleEvent(WQ::ButtonClicked, QAV::SaveRiskButtonId, 0, {}, nullptr);
        support::settleCallbacks();
        m_done << "settings opened";
        return QDialog::Rejected;
    }

    SampleRecord m_damaged;
    bool m_isDamagedFirst = false;
    QStringList m_done;
};

TEST_WITH_WIDGETS(NullPointersTest)
#include "tst_null_pointers.moc"
