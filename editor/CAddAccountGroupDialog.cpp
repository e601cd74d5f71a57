// SPDX-License-Identifier: Apache-2.0
#include "editor/CAddAccountGroupDialog.h"

#include "editor/ControlId.h"
#include "panel/DataRequest.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserManager.h>
#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CWidgetList.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>

#include <boost/bind/bind.hpp>

#include <typeinfo>

namespace QAV
{

namespace
{

/// The institution id that old services give to users who are bound to none.
constexpr std::int32_t UnboundInstitutionId = -1;

boost::shared_ptr<nvservice::CUserInfo> loggedInUser()
{
    return utils::CSingletonT<CUserManager>::instance()->getUserInfoPtr();
}

/// Null for a record of another class. Nearly all records of a reply are of this very class, and comparing it takes a
/// fraction of the time of a cast.
const nvservice::CKolmAccountInfo* asAccount(const nvservice::IData* record)
{
    if (record && typeid(*record) == typeid(nvservice::CKolmAccountInfo)) {
        return static_cast<const nvservice::CKolmAccountInfo*>(record);
    }
    return dynamic_cast<const nvservice::CKolmAccountInfo*>(record);
}

bool isBoundToInstitution(const nvservice::CUserInfo& user)
{
    return user.institutionId != nvservice::NoInstitutionId && user.institutionId != UnboundInstitutionId;
}

} // namespace

CAddAccountGroupDialog::CAddAccountGroupDialog(QWidget* parent) : CCommonDialog(parent)
{
    setMinimumSize(600, 550);
    const auto user = loggedInUser();
    m_bCanSelectInstitution = user && !isBoundToInstitution(*user);
    createUi();
    nvservice::registerMetaTypes();
    connect(this, SIGNAL(sigQuaryAccountInfo(std::vector<nvservice::IDataPtr>, bool, QString)), this,
            SLOT(slotQuaryAccountInfo(std::vector<nvservice::IDataPtr>, bool, QString)));
}

CAddAccountGroupDialog::~CAddAccountGroupDialog()
{
    m_accountReplies.close();
    disconnect();
}

void CAddAccountGroupDialog::setServerName(QString serverName)
{
    m_strServerName = serverName;
    updateSystemRow();
    if (m_pInstitutionEdit) {
        m_pInstitutionEdit->setSystemTag(clientCenter().getSystemTagByServerName(WQ::qsToS(serverName)));
    }
}

void CAddAccountGroupDialog::setAccountProductMap(const ProductMap& products)
{
    m_accountProductMap = products;
}

void CAddAccountGroupDialog::updateSystemRow()
{
    const bool choosable = m_strServerName.isEmpty();
    if (m_pSystemRow) {
        m_pSystemRow->setVisible(choosable);
    }
    if (m_pSystemLabel) {
        m_pSystemLabel->setVisible(choosable);
    }
    if (!m_pSystemCombo) {
        return;
    }
    if (!choosable) {
        for (int i = 0; i < m_pSystemCombo->count(); ++i) {
            if (m_pSystemCombo->itemText(i) == m_strServerName) {
                m_pSystemCombo->setCurrentIndex(i);
            }
        }
    }
    m_pSystemCombo->setVisible(choosable);
}

void CAddAccountGroupDialog::selectServer(const QString& serverName)
{
    const int item = m_pSystemCombo->findText(serverName, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (item >= 0) {
        m_pSystemCombo->setCurrentIndex(item);
    }
}

void CAddAccountGroupDialog::resetForAdd()
{
    setTitle(QStringLiteral("添加账号组"));
    m_pGroupNameEdit->clear();
    m_pAccountTable->clear();
    m_rowAccountMap.clear();
    m_pNameTip->setText(QString(), WQ::CSimpleTextWidget::UnlimitedWidth);
    m_bInstitutionLoaded = false;
    m_inputBefore.reset();

    const auto user = loggedInUser();
    if (user && isBoundToInstitution(*user)) {
        m_pInstitutionEdit->setSystemTag(user->getSystemTag());
        m_pInstitutionEdit->setCurrentManagerId(user->institutionId);
        m_pInstitutionEdit->setEnabled(false);
    }
    if (m_pSystemCombo) {
        m_pSystemCombo->setEnabled(true);
    }
}

void CAddAccountGroupDialog::setGroupInfo(nvservice::IDataPtr data, QString serverName)
{
    m_strServerName = serverName;
    resetForAdd();
    setTitle(QStringLiteral("编辑账号组"));
    const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(data);
    if (group) {
        showGroup(*group);
    }
    if (m_pSystemCombo) {
        selectServer(m_strServerName);
        m_pSystemCombo->setEnabled(false);
    }
}

void CAddAccountGroupDialog::showGroup(const nvservice::CAccountGroup& group)
{
    m_pGroupNameEdit->setText(WQ::sToQs(group.groupName));
    m_pInstitutionEdit->setSystemTag(group.getSystemTag());
    m_pInstitutionEdit->setCurrentManagerId(group.institutionId);
    addAccountsToTable(group.accounts);
}

void CAddAccountGroupDialog::offerInput(nvservice::IDataPtr refused)
{
    m_refusedInput = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(refused);
    m_pRecallButton->setVisible(m_refusedInput != nullptr);
}

void CAddAccountGroupDialog::recallInput()
{
    m_pAccountTable->clear();
    m_rowAccountMap.clear();
    if (m_pSystemCombo && m_pSystemCombo->isEnabled()) {
        selectServer(serverNameOf(*m_refusedInput));
    }
    showGroup(*m_refusedInput);
    offerInput({});
    m_pGroupNameEdit->setFocus();
    WQ::CMessageTip::showTip(this, Qt::AlignHCenter, QStringLiteral("已恢复上次未保存的输入, 请核对后保存"), 5,
                             WQ::MessageInformation, 0);
}

int CAddAccountGroupDialog::execDialog(bool reset)
{
    if (reset) {
        resetForAdd();
    }
    m_pGroupNameEdit->setFocus();
    queryAccountInfo();
    return exec();
}

void CAddAccountGroupDialog::done(int result)
{
    m_accountReplies.dropOutstanding();
    CCommonDialog::done(result);
}

void CAddAccountGroupDialog::queryAccountInfo()
{
    m_accountReplies.dropOutstanding();
    m_bAccountLoaded = false;
    m_pLoadingMask->attach(this);
    m_allAccounts.clear();

    const QueryCallback callback = m_accountReplies.wrap(
        QueryCallback(boost::bind(&CAddAccountGroupDialog::onQueryAccountInfo, this, boost::placeholders::_1,
                                  boost::placeholders::_2, boost::placeholders::_3, boost::placeholders::_4)));
    clientCenter().queryData_async(makeQueryRequest(nvservice::DataType::Account), callback, 0);
}

void CAddAccountGroupDialog::onQueryAccountInfo(const utils::NVError& error,
                                                const std::vector<nvservice::IDataPtr>& datas, int, bson::BSONObj)
{
    emit sigQuaryAccountInfo(datas, error.isSuccess(), WQ::sToQs(error.errorMsg()));
}

void CAddAccountGroupDialog::slotQuaryAccountInfo(const std::vector<nvservice::IDataPtr>& datas, bool bSuccess,
                                                  QString qsError)
{
    if (m_accountReplies.isDropped()) {
        return;
    }
    m_allAccounts.reserve(m_allAccounts.size() + datas.size());
    for (const nvservice::IDataPtr& data : datas) {
        const auto* const account = asAccount(data.get());
        if (account && account->stateCode != nvservice::CKolmAccountInfo::ClosedState) {
            m_allAccounts.push_back(boost::static_pointer_cast<nvservice::CKolmAccountInfo>(data));
        }
    }
    m_bAccountLoaded = true;
    hideMaskWhenLoaded();
    if (!bSuccess) {
        WQ::CMessageBox::information(this, QStringLiteral("提示"), qsError, QMessageBox::Ok);
    }
}

void CAddAccountGroupDialog::hideMaskWhenLoaded()
{
    if (m_pLoadingMask && m_bAccountLoaded && m_bInstitutionLoaded) {
        m_pLoadingMask->hide();
        if (!m_inputBefore) {
            m_inputBefore = input();
        }
    }
}

CAddAccountGroupDialog::Input CAddAccountGroupDialog::input() const
{
    QString tagText;
    const int institutionId = m_pInstitutionEdit->getCurrentManagerId(tagText);
    return {m_pGroupNameEdit->getText(), institutionId, m_pInstitutionEdit->getText(),
            m_pSystemCombo ? m_pSystemCombo->currentText() : QString(), accountsAsDisplayed()};
}

bool CAddAccountGroupDialog::hasUnsavedEdits() const
{
    return m_inputBefore && *m_inputBefore != input();
}

bool CAddAccountGroupDialog::handleEvent(int eventType, int widgetId, int param, QString text, void* data)
{
    switch (eventType) {
    case WQ::ButtonClicked:
        switch (widgetId) {
        case AddAccountsButtonId:
            addAccounts();
            return true;
        case SaveGroupButtonId:
            if (checkInput()) {
                done(Accepted);
                close();
            }
            return true;
        case RecallGroupInputButtonId:
            recallInput();
            return true;
        case CloseGroupDialogButtonId:
            done(Rejected);
            close();
            return true;
        default:
            if (widgetId < FirstDeleteButtonId) {
                break;
            }
            deleteAccount(widgetId - FirstDeleteButtonId);
            return true;
        }
        break;
    case WQ::ManagerSelectionChanged:
        if (widgetId == InstitutionEditId) {
            onInstitutionChanged();
        }
        return true;
    case WQ::ManagerDataLoaded:
        if (widgetId == InstitutionEditId) {
            m_bInstitutionLoaded = true;
            hideMaskWhenLoaded();
        }
        return true;
    default:
        break;
    }
    return CBaseDialog::handleEvent(eventType, widgetId, param, text, data);
}

void CAddAccountGroupDialog::onInstitutionChanged()
{
    QString tagText;
    const int institutionId = m_pInstitutionEdit->getCurrentManagerId(tagText);
    if (institutionId == nvservice::NoInstitutionId) {
        if (m_pSystemRow) {
            m_pSystemRow->setVisible(true);
        }
        return;
    }
    if (!m_pSystemCombo) {
        return;
    }
    const QString name = WQ::sToQs(clientCenter().getServerNameBySystemTag(WQ::qsToS(tagText)));
    selectServer(name);
    setServerName(name);
    m_pSystemRow->setVisible(false);
}

} // namespace QAV
