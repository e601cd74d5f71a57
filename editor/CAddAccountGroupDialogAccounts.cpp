// SPDX-License-Identifier: Apache-2.0
// The accounts of the group: from the picker into the table, the checks on Save and the way back into the record.
#include "editor/AccountProduct.h"
#include "editor/CAddAccountGroupDialog.h"
#include "editor/CSelectAccountDialog.h"
#include "editor/ControlId.h"
#include "panel/DataRequest.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CManagerSearchLineEdit.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/EZvTraderType.h>
#include <nvservice/TypeManager.h>

#include <QPointer>

#include <unordered_set>

namespace QAV
{

namespace
{

QWidget* createDeleteButton(int rowId, const QString& account, QWidget* parent)
{
    auto* const button = new WQ::CSmallNormalButton(FirstDeleteButtonId + rowId, true, WQ::NormalButton, parent);
    button->setText(QStringLiteral("删除"));
    button->setAccessibleName(QStringLiteral("删除账号 %1").arg(account));
    return button;
}

} // namespace

void CAddAccountGroupDialog::addAccounts()
{
    AccountList listed;
    listed.reserve(m_rowAccountMap.size());
    for (const auto& [rowId, account] : m_rowAccountMap) {
        listed.push_back(account);
    }

    const QPointer<CSelectAccountDialog> picker = new CSelectAccountDialog(this);
    picker->setProductMap(m_accountProductMap);
    picker->setAccounts(candidates(), listed);
    if (picker->exec() == QDialog::Accepted) {
        AccountList picked;
        picker->selectedAccounts(picked);
        addAccountsToTable(picked);
    }
    if (picker) { // the client may close the panel, and all with it, while the picker is open
        picker->deleteLater();
    }
}

CandidateList CAddAccountGroupDialog::candidates() const
{
    CandidateList candidates;
    candidates.reserve(m_allAccounts.size());
    // The accounts of one server stand together: its name is looked up once, not 100 000 times.
    const nvservice::CKolmAccountInfo* asked = nullptr;
    bool isOfGroupsServer = true;
    for (const auto& candidate : m_allAccounts) {
        if (candidate->excluded) {
            continue;
        }
        if (m_pSystemCombo && (!asked || asked->getSystemTag() != candidate->getSystemTag())) {
            asked = candidate.get();
            isOfGroupsServer = serverNameOf(*candidate) == m_pSystemCombo->currentText();
        }
        if (isOfGroupsServer) {
            candidates.push_back(candidate);
        }
    }
    return candidates;
}

void CAddAccountGroupDialog::addAccountsToTable(const AccountList& accounts)
{
    std::unordered_set<std::string> listedKeys;
    listedKeys.reserve(m_rowAccountMap.size() + accounts.size());
    for (const auto& [rowId, account] : m_rowAccountMap) {
        listedKeys.insert(account->getCsKey());
    }

    constexpr int Centred = Qt::AlignCenter;
    for (const auto& account : accounts) {
        if (!account || !listedKeys.insert(account->getCsKey()).second) {
            continue;
        }
        const int row = m_pAccountTable->appendRow();
        const QString displayId = WQ::sToQs(nvservice::accountDisplayID(account));
        const std::string typeName =
            nvservice::TypeManager::getEnumItemName("nvservice::EZVBrokerType", static_cast<int>(account->brokerType),
                                                    static_cast<int>(nvservice::EZvTraderType::Stock));
        m_pAccountTable->setItemText(row, AccountTypeColumn, WQ::sToQs(typeName), true);
        m_pAccountTable->setItemText(row, AccountIdColumn, displayId, true);
        m_pAccountTable->setItemText(row, AccountServerColumn, serverNameOf(*account), true);
        m_pAccountTable->setItemText(row, AccountProductColumn, productNameOf(*account, m_accountProductMap), true);
        m_pAccountTable->setItemWidget(
            row, AccountOperationColumn,
            [row, displayId](QWidget* parent) { return createDeleteButton(row, displayId, parent); }, Centred, true);
        m_rowAccountMap.emplace_hint(m_rowAccountMap.end(), row, account);
    }
}

void CAddAccountGroupDialog::deleteAccount(int rowId)
{
    const QPointer<CAddAccountGroupDialog> self(this);
    const QMessageBox::StandardButton answer = WQ::CMessageBox::information(
        nullptr, QStringLiteral("删除"), QStringLiteral("确认删除? "), QMessageBox::Yes | QMessageBox::No);
    if (!self || answer != QMessageBox::Yes) {
        return;
    }
    m_pAccountTable->removeRow(rowId);
    m_rowAccountMap.erase(rowId);
}

bool CAddAccountGroupDialog::checkInput()
{
    const bool named = !m_pGroupNameEdit->getText().trimmed().isEmpty();
    m_pNameTip->setText(named ? QString() : QStringLiteral("账号组名称,不能为空"),
                        WQ::CSimpleTextWidget::UnlimitedWidth);

    bool hasInstitution = true;
    if (m_pInstitutionEdit && m_pInstitutionEdit->toString().trimmed().isEmpty()) {
        hasInstitution = false;
        constexpr int TipSeconds = 2;
        constexpr int TipWidth = 300;
        WQ::CMessageTip::showTip(m_pInstitutionEdit, Qt::AlignLeft | Qt::AlignBottom,
                                 QStringLiteral("所属机构不能为空!"), TipSeconds, WQ::MessageError, TipWidth);
    }
    const bool onOneServer = checkAccountServers();
    return named && hasInstitution && onOneServer;
}

AccountList CAddAccountGroupDialog::accountsAsDisplayed() const
{
    AccountList accounts;
    accounts.reserve(m_rowAccountMap.size());
    // Unless the user has sorted, the rows stand in the order of their ids, and the next one is the next in the map.
    auto entry = m_rowAccountMap.begin();
    const int rows = m_pAccountTable->rowCount();
    for (int index = 0; index < rows; ++index) {
        const int rowId = m_pAccountTable->rowID(index);
        if (entry == m_rowAccountMap.end() || entry->first != rowId) {
            entry = m_rowAccountMap.find(rowId);
        }
        if (entry != m_rowAccountMap.end()) {
            accounts.push_back((entry++)->second);
        }
    }
    return accounts;
}

bool CAddAccountGroupDialog::checkAccountServers()
{
    if (!m_pSystemCombo) {
        return true;
    }
    const QString groupServer = m_pSystemCombo->currentText();
    for (const auto& account : accountsAsDisplayed()) {
        if (serverNameOf(*account) == groupServer) {
            continue;
        }
        const QString text = QStringLiteral("账号%1 必须与账号组 分系统相同！").arg(WQ::sToQs(account->accountId));
        WQ::CMessageBox::information(this, QStringLiteral("错误"), text, QMessageBox::Ok);
        return false;
    }
    return true;
}

void CAddAccountGroupDialog::getGroupInfo(nvservice::IDataPtr data, QString& serverName)
{
    const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(data);
    if (!group) {
        return;
    }
    group->groupName = WQ::qsToS(m_pGroupNameEdit->getText().trimmed());
    QString tagText;
    group->institutionId = m_pInstitutionEdit->getCurrentManagerId(tagText);
    group->institutionName = WQ::qsToS(m_pInstitutionEdit->getText());
    if (m_pSystemCombo) {
        serverName = m_pSystemCombo->currentText();
    }
    group->setSystemTag(clientCenter().getSystemTagByServerName(WQ::qsToS(serverName)));
    group->accounts = accountsAsDisplayed();
}

} // namespace QAV
