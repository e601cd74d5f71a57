// SPDX-License-Identifier: Apache-2.0
// What the user does to a group: from the button of its row to the message about the outcome.
#include "editor/CAddAccountGroupDialog.h"
#include "panel/CAccountGroupRiskMainData.h"
#include "panel/CAccountGroupRiskManagePanel.h"
#include "panel/CAccountGroupRiskModel.h"
#include "panel/ControlId.h"
#include "panel/DataRequest.h"
#include "risk/CSetAccountGroupRiskDialog.h"

#include <WQ/CMessageBox.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>
#include <utils/CSingletonT.h>

#include <boost/bind/bind.hpp>

namespace QAV
{

void CAccountGroupRiskManagePanel::handleRowButton(const QString& rowKey, int button)
{
    const boost::shared_ptr<nvservice::CAccountGroup> group = groupOfRow(rowKey);
    if (!group) {
        return;
    }
    // A flow works on a copy, so that the listed group stays as the service sent it.
    const auto copy = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(group->copy());
    copy->setSystemTag(group->getSystemTag());
    switch (button) {
    case RiskSettingsRowButton:
        setData(copy);
        break;
    case EditRowButton:
        modifyData(copy);
        break;
    case DeleteRowButton:
        removeData(group);
        break;
    default:
        break;
    }
}

boost::shared_ptr<nvservice::CAccountGroup> CAccountGroupRiskManagePanel::groupOfRow(const QString& rowKey) const
{
    if (!m_pModel || m_pModel->getDataIndexByKey(rowKey) == -1) {
        return {};
    }
    const auto row = boost::dynamic_pointer_cast<CAccountGroupRiskMainData>(m_pModel->getDataByKey(rowKey));
    if (!row) {
        return {};
    }
    for (std::size_t i = 0; i < m_accountGroups.size(); ++i) {
        if (m_accountGroups.idAt(i) == row->groupId) {
            return m_accountGroups.at(i);
        }
    }
    return {};
}

void CAccountGroupRiskManagePanel::setData(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    m_pRiskDialog->setAccountGroup(group);
    m_pRiskDialog->exec();
}

void CAccountGroupRiskManagePanel::addData()
{
    const QPointer<CAccountGroupRiskManagePanel> self(this); // the client may close the panel while a box is open
    m_pGroupDialog->setServerName(m_qsServerName);
    m_pGroupDialog->setAccountProductMap(m_accountProductMap);
    m_pGroupDialog->offerInput(refusedInputOf(nvservice::CAccountGroup()));
    for (int result = m_pGroupDialog->execDialog(true); result == QDialog::Accepted;
         result = m_pGroupDialog->execDialog(false)) {
        const auto group = boost::make_shared<nvservice::CAccountGroup>();
        // Where the dialog offers no choice, the group belongs to the server that the panel shows.
        QString serverName = m_qsServerName;
        m_pGroupDialog->getGroupInfo(group, serverName);
        if (checkGroupInfo(group)) {
            operatorAccountGroupInfo(nvservice::EZvDataOperation::Add, group, WQ::qsToS(serverName));
            return;
        }
        if (!self) {
            return;
        }
    }
}

void CAccountGroupRiskManagePanel::modifyData(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    const QPointer<CAccountGroupRiskManagePanel> self(this);
    m_pGroupDialog->setAccountProductMap(m_accountProductMap);
    m_pGroupDialog->setGroupInfo(group, serverNameOf(*group));
    m_pGroupDialog->offerInput(refusedInputOf(*group));
    for (int result = m_pGroupDialog->execDialog(false); result == QDialog::Accepted;
         result = m_pGroupDialog->execDialog(false)) {
        // The server cannot be changed: the group's own system tag decides who gets it.
        QString ignoredServerName;
        m_pGroupDialog->getGroupInfo(group, ignoredServerName);
        if (checkGroupInfo(group)) {
            operatorAccountGroupInfo(nvservice::EZvDataOperation::Modify, group, std::string());
            return;
        }
        if (!self) {
            return;
        }
    }
}

boost::shared_ptr<nvservice::CAccountGroup>
CAccountGroupRiskManagePanel::refusedInputOf(const nvservice::CAccountGroup& group) const
{
    if (!m_refusedGroup || m_refusedGroup->groupId != group.groupId) {
        return {};
    }
    // A new group has no server yet; it is entered again where it was to be.
    const bool isThere = group.groupId == nvservice::CAccountGroup().groupId
                             ? m_qsServerName.isEmpty() || serverNameOf(*m_refusedGroup) == m_qsServerName
                             : m_refusedGroup->getSystemTag() == group.getSystemTag();
    return isThere ? m_refusedGroup : nullptr;
}

void CAccountGroupRiskManagePanel::removeData(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    const QPointer<CAccountGroupRiskManagePanel> self(this);
    const QMessageBox::StandardButton answer =
        WQ::CMessageBox::question(this, QStringLiteral("提示"), QStringLiteral("确定要删除该项?"),
                                  QMessageBox::Yes | QMessageBox::No, QMessageBox::NoButton);
    if (self && answer == QMessageBox::Yes) {
        operatorAccountGroupInfo(nvservice::EZvDataOperation::Delete, group, std::string());
    }
}

bool CAccountGroupRiskManagePanel::checkGroupInfo(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    const auto refuse = [this](const QString& text) {
        WQ::CMessageBox::critical(this, QStringLiteral("保存账号组"), text, QMessageBox::Ok, QMessageBox::NoButton);
        return false;
    };
    if (group->accounts.empty()) {
        return refuse(QStringLiteral("保存账号组失败: 请选择账号!"));
    }
    for (std::size_t i = 0; i < m_accountGroups.size(); ++i) {
        if (m_accountGroups.nameAt(i) == group->groupName && m_accountGroups.idAt(i) != group->groupId &&
            m_accountGroups.systemTagAt(i) == group->getSystemTag()) {
            return refuse(QStringLiteral("保存账号组失败: 已存在相同的账号组名称!"));
        }
    }
    return true;
}

void CAccountGroupRiskManagePanel::operatorAccountGroupInfo(nvservice::EZvDataOperation operation,
                                                            boost::shared_ptr<nvservice::CAccountGroup> group,
                                                            std::string serverName)
{
    const auto request = makeOperateRequest(nvservice::DataType::AccountGroup, operation, group);
    // A new group goes to the server that the user chose; every other one to the server that holds it.
    const boost::shared_ptr<CKolmClient> client = operation == nvservice::EZvDataOperation::Add
                                                      ? clientCenter().getClientByName(serverName)
                                                      : clientCenter().getClientBySystemTag(group->getSystemTag());
    const OperateCallback callback = callbackGate().wrap(
        OperateCallback(boost::bind(&CAccountGroupRiskManagePanel::onOperatorAccountGroupInfo, this,
                                    boost::placeholders::_1, boost::placeholders::_2, operation, group)));
    client->operateData_async(request, callback, 0);
}

void CAccountGroupRiskManagePanel::onOperatorAccountGroupInfo(const utils::NVError& error, bson::BSONObj result,
                                                              nvservice::EZvDataOperation operation,
                                                              boost::shared_ptr<nvservice::CAccountGroup> group)
{
    m_sentGroup.sendAhead(this, group);
    const OperateOutcome outcome = operateOutcome(error, result);
    emit sigOperatorAccountGroupInfo(static_cast<int>(operation), outcome.success, outcome.message);
}

void CAccountGroupRiskManagePanel::slotOperatorAccountGroupInfo(int nOperation, bool bSuccess, QString qsError)
{
    const boost::shared_ptr<nvservice::CAccountGroup> group = m_sentGroup.take().value_or(nullptr);
    QString text;
    switch (nOperation) {
    case int(nvservice::EZvDataOperation::Modify):
        text = QStringLiteral("编辑");
        break;
    case int(nvservice::EZvDataOperation::Add):
        text = QStringLiteral("添加");
        break;
    case int(nvservice::EZvDataOperation::Delete):
        text = QStringLiteral("删除");
        break;
    default:
        return;
    }
    text += QStringLiteral("账号组");
    text += bSuccess ? QStringLiteral("成功!") : QStringLiteral("失败!(%1)").arg(qsError);
    if (!bSuccess && nOperation != int(nvservice::EZvDataOperation::Delete)) {
        m_refusedGroup = group;
    } else if (group && refusedInputOf(*group)) {
        m_refusedGroup.reset();
    }
    const QPointer<CAccountGroupRiskManagePanel> self(this);
    WQ::CMessageBox::information(this, QStringLiteral("提示"), text, QMessageBox::Ok, QMessageBox::NoButton);
    if (self && bSuccess) {
        if (group && nOperation == int(nvservice::EZvDataOperation::Add)) {
            m_addedGroupName = group->groupName;
        }
        queryAccountGroupInfo();
    }
}

} // namespace QAV
