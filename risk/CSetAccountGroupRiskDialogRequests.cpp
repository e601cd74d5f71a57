// SPDX-License-Identifier: Apache-2.0
// What the risk settings dialog asks of the data service: loading and saving.
#include "exempt/CExemptCategoryWidget.h"
#include "panel/DataRequest.h"
#include "risk/CSetAccountGroupRiskDialog.h"
#include "risk/CStockTradeLimitWidget.h"

#include <QAV/CAccountRcEmailWidget.h>
#include <QAV/CAssetsProportionWidget.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CWidgetList.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CustomEmailRC.h>
#include <nvservice/DataType.h>
#include <utils/CSingletonT.h>

#include <boost/bind/bind.hpp>

namespace QAV
{

namespace
{

const char* const AllCategoriesQueryKey = "-1_-1";
const char* const GroupRuleKind = "2";

} // namespace

boost::shared_ptr<CKolmClient> CSetAccountGroupRiskDialog::clientOfGroup() const
{
    return clientCenter().getClientBySystemTag(m_group->getSystemTag());
}

void CSetAccountGroupRiskDialog::queryAccountGroupRisk()
{
    m_bConfigLoaded = false;
    m_pLoadingMask->setText(QStringLiteral("正在加载风控数据"));
    m_pLoadingMask->attach(m_pMainList);

    const int groupId = m_group->groupId;
    const auto request =
        makeQueryRequest(nvservice::DataType::GroupRiskConfig, WQ::qsToS(QString::number(groupId, 10)));
    const QueryCallback callback = m_loadReplies.wrap(
        QueryCallback(boost::bind(&CSetAccountGroupRiskDialog::onQueryAccountGroupRisk, this, boost::placeholders::_1,
                                  boost::placeholders::_2, boost::placeholders::_3, boost::placeholders::_4, groupId)));
    clientOfGroup()->queryData_async(request, callback, 0);
}

void CSetAccountGroupRiskDialog::onQueryAccountGroupRisk(const utils::NVError& error,
                                                         const std::vector<nvservice::IDataPtr>& datas, int,
                                                         bson::BSONObj, int groupId)
{
    if (m_groupId == groupId) {
        emit sigQuaryAccountGroupRisk(datas, error.isSuccess(), WQ::sToQs(error.errorMsg()));
    }
}

void CSetAccountGroupRiskDialog::queryCategories()
{
    m_bCategoriesLoaded = false;
    const auto request = makeQueryRequest(nvservice::DataType::Category, AllCategoriesQueryKey);
    const QueryCallback callback = m_loadReplies.wrap(
        QueryCallback(boost::bind(&CSetAccountGroupRiskDialog::onQueryCategories, this, boost::placeholders::_1,
                                  boost::placeholders::_2, boost::placeholders::_3, boost::placeholders::_4)));
    clientOfGroup()->queryData_async(request, callback, 0);
}

void CSetAccountGroupRiskDialog::onQueryCategories(const utils::NVError& error,
                                                   const std::vector<nvservice::IDataPtr>& datas, int, bson::BSONObj)
{
    emit sigQuaryCategories(datas, error.isSuccess(), WQ::sToQs(error.errorMsg()));
}

void CSetAccountGroupRiskDialog::saveAccountGroupRisk()
{
    if (!m_config || isCovered()) {
        return;
    }
    QString problem;
    if (!m_pAssetsWidget->isDataValid(problem)) {
        return;
    }
    m_pLoadingMask->setText(QStringLiteral("正在保存"));
    m_pLoadingMask->attach(this);

    readTabs(*m_config);
    m_config->emailRCs.clear();
    if (m_pEmailWidget) {
        m_pEmailWidget->fillDatas(m_config->emailRCs);
    }

    const boost::shared_ptr<CKolmClient> client = clientOfGroup();
    sendConfig(client);
    sendEmailRules(client);
}

void CSetAccountGroupRiskDialog::sendConfig(const boost::shared_ptr<CKolmClient>& client)
{
    const auto request =
        makeOperateRequest(nvservice::DataType::GroupRiskConfig, nvservice::EZvDataOperation::Modify, m_config);
    const OperateCallback callback = m_callbackGate.wrap(OperateCallback(
        boost::bind(&CSetAccountGroupRiskDialog::onUpdateAccountGroupRisk, this, boost::placeholders::_1,
                    boost::placeholders::_2, m_group->groupId, SaveLabel{++m_saveCount, m_group})));
    client->operateData_async(request, callback, 0);
}

void CSetAccountGroupRiskDialog::onUpdateAccountGroupRisk(const utils::NVError& error, bson::BSONObj, int groupId,
                                                          const SaveLabel& label)
{
    if (m_groupId != groupId) {
        return;
    }
    m_saveLabel.sendAhead(this, label);
    emit sigUpdateAccountGroupRisk(WQ::sToQs(error.errorMsg()));
}

void CSetAccountGroupRiskDialog::sendEmailRules(const boost::shared_ptr<CKolmClient>& client)
{
    const auto rules = boost::make_shared<nvservice::CustomEmailRC>();
    rules->emailRCs = m_config->emailRCs;
    const auto request = makeOperateRequest(nvservice::DataType::EmailRule, nvservice::EZvDataOperation::Modify, rules);
    if (rules->emailRCs.empty()) {
        // A delete names the rules' owner in a rule that stands for all of them.
        request->operation = nvservice::EZvDataOperation::Delete;
        nvservice::CEmailRC placeholder;
        placeholder.ruleKind = GroupRuleKind;
        placeholder.accountKey = std::to_string(m_group->groupId);
        rules->emailRCs.push_back(placeholder);
    }
    client->operateData_async(request, [](const utils::NVError&, bson::BSONObj) {}, 0);
}

} // namespace QAV
