// What the user does to a group: from the button of its row to the message about the outcome.
#include "panel/CAccountGroupRiskMainData.h"
#include "panel/CAccountGroupRiskManagePanel.h"
#include "panel/CAccountGroupRiskModel.h"
#include "panel/ControlId.h"
#include "panel/DataRequest.h"

#include <WQ/CMessageBox.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/DataType.h>
#include <utils/CSingletonT.h>

#include <boost/bind/bind.hpp>

namespace QAV
{

void CAccountGroupRiskManagePanel::handleRowButton(const QString& rowKey, int button)
{
    const boost::shared_ptr<nvservice::CAccountGroup> group = groupOfRow(rowKey);
    if (group && button == DeleteRowButton)
        removeData(group);
}

boost::shared_ptr<nvservice::CAccountGroup> CAccountGroupRiskManagePanel::groupOfRow(const QString& rowKey) const
{
    if (!m_pModel || m_pModel->getDataIndexByKey(rowKey) == -1)
        return {};
    const auto row = boost::dynamic_pointer_cast<CAccountGroupRiskMainData>(m_pModel->getDataByKey(rowKey));
    if (!row)
        return {};
    for (const nvservice::IDataPtr& data : m_accountGroups) {
        auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(data);
        if (group && group->groupId == row->groupId)
            return group;
    }
    return {};
}

void CAccountGroupRiskManagePanel::removeData(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    const QMessageBox::StandardButton answer =
        WQ::CMessageBox::question(this, QStringLiteral("提示"), QStringLiteral("确定要删除该项?"),
                                  QMessageBox::Yes | QMessageBox::No, QMessageBox::NoButton);
    if (answer == QMessageBox::Yes)
        operatorAccountGroupInfo(nvservice::EZvDataOperation::Delete, group, std::string());
}

void CAccountGroupRiskManagePanel::operatorAccountGroupInfo(nvservice::EZvDataOperation operation,
                                                            boost::shared_ptr<nvservice::CAccountGroup> group,
                                                            std::string serverName)
{
    const auto request = makeOperateRequest(nvservice::DataType::AccountGroup, operation, group);
    // A new group goes to the server that the user chose; every other one to the server that holds it.
    CKolmClientCenter* const center = utils::CSingletonT<CKolmClientCenter>::instance();
    const boost::shared_ptr<CKolmClient> client = operation == nvservice::EZvDataOperation::Add
                                                      ? center->getClientByName(serverName)
                                                      : center->getClientBySystemTag(group->getSystemTag());
    const OperateCallback callback = m_callbackGate.wrap(
        OperateCallback(boost::bind(&CAccountGroupRiskManagePanel::onOperatorAccountGroupInfo, this,
                                    boost::placeholders::_1, boost::placeholders::_2, operation, group)));
    client->operateData_async(request, callback, 0);
}

void CAccountGroupRiskManagePanel::onOperatorAccountGroupInfo(const utils::NVError& error, bson::BSONObj result,
                                                              nvservice::EZvDataOperation operation,
                                                              boost::shared_ptr<nvservice::CAccountGroup>)
{
    const OperateOutcome outcome = operateOutcome(error, result);
    emit sigOperatorAccountGroupInfo(static_cast<int>(operation), outcome.success, outcome.message);
}

void CAccountGroupRiskManagePanel::slotOperatorAccountGroupInfo(int nOperation, bool bSuccess, QString qsError)
{
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
    WQ::CMessageBox::information(this, QStringLiteral("提示"), text, QMessageBox::Ok, QMessageBox::NoButton);
    if (bSuccess)
        queryAccountGroupInfo();
}

} // namespace QAV
