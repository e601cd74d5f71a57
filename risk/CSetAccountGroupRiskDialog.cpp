// SPDX-License-Identifier: Apache-2.0
#include "risk/CSetAccountGroupRiskDialog.h"

#include "exempt/CExemptCategoryWidget.h"
#include "panel/DataRequest.h"
#include "risk/CStockTradeLimitWidget.h"
#include "risk/ControlId.h"

#include <QAV/CAccountRcEmailWidget.h>
#include <QAV/CAssetsProportionWidget.h>
#include <QAV/CConfigService.h>
#include <QAV/adaptScreenSize.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/CWidgetList.h>
#include <WQ/EventType.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/Codec.h>
#include <nvservice/NoInstitutionId.h>
#include <utils/CSingletonT.h>

#include <QPointer>

namespace QAV
{

CSetAccountGroupRiskDialog::CSetAccountGroupRiskDialog(QWidget* parent)
    : CCommonDialog(parent), m_groupId(nvservice::CAccountGroup().groupId)
{
    createUi();
    setMinimumSize(500, 500);
    int width = 0;
    int height = 0;
    adaptScreenSize(1250, 600, 1300, 700, width, height);
    resize(width, height);

    // The signals carry these types between threads; that must not depend on what the client happens to register.
    nvservice::registerMetaTypes();
    connect(this, SIGNAL(sigQuaryAccountGroupRisk(std::vector<nvservice::IDataPtr>, bool, QString)), this,
            SLOT(slotQuaryAccountGroupRisk(std::vector<nvservice::IDataPtr>, bool, QString)));
    connect(this, SIGNAL(sigQuaryCategories(std::vector<nvservice::IDataPtr>, bool, QString)), this,
            SLOT(slotQuaryCategories(std::vector<nvservice::IDataPtr>, bool, QString)));
    connect(this, SIGNAL(sigUpdateAccountGroupRisk(QString)), this, SLOT(slotUpdateAccountGroupRisk(QString)));
}

CSetAccountGroupRiskDialog::~CSetAccountGroupRiskDialog()
{
    m_loadReplies.close();
    m_callbackGate.close();
}

void CSetAccountGroupRiskDialog::createUi()
{
    m_pMainList = new WQ::CWidgetList(WQ::VerticalList, this);
    m_pMainList->setMargin(10, 10, 10, 10);
    m_pMainList->addStretchWidget(createTabs(), 1, WQ::AnchorLeading, true);
    m_pMainList->addFixedWidget(createBottomBar(), WQ::AnchorLeading, true);
    setInnerWidget(m_pMainList);

    m_pLoadingMask = new WQ::CLoadingMaskWidget(QStringLiteral("正在加载风控数据"), m_pMainList);
    m_pLoadingMask->hide();
}

QWidget* CSetAccountGroupRiskDialog::createTabs()
{
    auto* const tabs = new WQ::CStandardTabControl(m_pMainList);
    tabs->setTabHeaderImage(QStringLiteral("qav_img_tab_page_top_1"), QStringLiteral("qav_img_tab_page_top"),
                            QStringLiteral("qav_img_tab_page_top_i_1"), QStringLiteral("qav_img_tab_page_top_i"));

    m_pTradeLimitWidget = new CStockTradeLimitWidget(tabs);
    tabs->addTabWidget(QStringLiteral("黑白名单"), m_pTradeLimitWidget);

    m_pAssetsWidget = new CAssetsProportionWidget(AssetsTableId, false, nvservice::EZVRCScopeType::AccountGroup,
                                                  CAssetsProportionWidget::AnyCategoryType, tabs);
    m_pAssetsWidget->resize(1500, m_pAssetsWidget->height());
    tabs->addTabWidget(QStringLiteral("资产组合风控"), m_pAssetsWidget);

    m_pReverseOrderWidget = new CExemptCategoryWidget(ReverseOrderMode, ReverseOrderPageIndex, tabs);
    m_pReverseOrderWidget->resize(1200, 130);
    tabs->addTabWidget(QStringLiteral("反向单交易设置"), m_pReverseOrderWidget);

    m_pWashTradeWidget = new CExemptCategoryWidget(WashTradeMode, WashTradePageIndex, tabs);
    m_pWashTradeWidget->resize(1200, 130);
    tabs->addTabWidget(QStringLiteral("对敲交易设置"), m_pWashTradeWidget);
    return tabs;
}

QWidget* CSetAccountGroupRiskDialog::createBottomBar()
{
    auto* const bar = new WQ::CWidgetList(WQ::HorizontalList, m_pMainList);
    bar->setMargin(0, 10, 0, 0);
    bar->setSpacing(0);
    bar->setFixedHeight(34);
    m_pRecallButton = new WQ::CSmallNormalButton(RecallRiskInputButtonId, true, WQ::NormalButton, bar);
    m_pRecallButton->setFixedSize(170, 26);
    m_pRecallButton->setText(QStringLiteral("恢复上次未保存的输入"));
    m_pRecallButton->hide();
    bar->addFixedWidget(m_pRecallButton, WQ::AnchorLeading, false);
    bar->addStretchSpace(1);
    m_pSaveButton = new WQ::CSmallNormalButton(SaveRiskButtonId, true, WQ::PrimaryButton, bar);
    m_pSaveButton->setFixedSize(70, 26);
    m_pSaveButton->setText(QStringLiteral("保存设置"));
    m_pSaveButton->setKeys(QKeySequence::Save);
    bar->addFixedWidget(m_pSaveButton, WQ::AnchorTrailing, false);
    return bar;
}

void CSetAccountGroupRiskDialog::setAccountGroup(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    m_group = group;
    m_groupId = group->groupId;
    m_loadReplies.dropOutstanding();
    if (m_pEmailWidget) {
        m_pEmailWidget->setAccountKey(std::to_string(group->groupId));
    }
    if (m_pTradeLimitWidget) {
        m_pTradeLimitWidget->setTradeLimitGroupId(group->groupId);
    }
    setTitle(QStringLiteral("%1组 - 风控设置").arg(WQ::sToQs(group->groupName), 0, QLatin1Char(' ')));
    m_pAssetsWidget->clearAssetsRCs();
    m_savedInput = {};
    m_pRecallButton->hide();
    queryAccountGroupRisk();
    queryCategories();
}

void CSetAccountGroupRiskDialog::refreshAssets()
{
    m_pAssetsWidget->refresh();
}

bool CSetAccountGroupRiskDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (id == SwallowedControlId) {
        return true;
    }
    if (type == WQ::ButtonClicked && id == SaveRiskButtonId) {
        saveAccountGroupRisk();
        return true;
    }
    if (type == WQ::ButtonClicked && id == RecallRiskInputButtonId) {
        recallInput();
        return true;
    }
    return CBaseDialog::handleEvent(type, id, param, text, data);
}

void CSetAccountGroupRiskDialog::slotQuaryAccountGroupRisk(const std::vector<nvservice::IDataPtr> datas, bool bSuccess,
                                                           QString qsErrorInfo)
{
    if (m_loadReplies.isDropped()) {
        return;
    }
    if (!bSuccess) {
        const QPointer<CSetAccountGroupRiskDialog> self(this);
        const unsigned load = m_loadReplies.number();
        WQ::CMessageBox::information(this, QStringLiteral("错误"), qsErrorInfo, QMessageBox::Ok);
        // While the box is open the client may close the panel, or open another group.
        if (!self || m_loadReplies.number() != load) {
            return;
        }
    }
    m_config.reset();
    if (!datas.empty()) {
        m_config = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(datas.front());
    }
    if (m_config) {
        showConfig(*m_config);
    }

    m_bConfigLoaded = true;
    finishLoading(m_bCategoriesLoaded);
    if (m_config) {
        m_pTradeLimitWidget->setTradeLimitRule(m_config->rcRule);
    }
    rememberInput();
    offerRefusedInput();
}

void CSetAccountGroupRiskDialog::showConfig(const nvservice::CAccountGroupRCConfig& config)
{
    m_pAssetsWidget->setAssetsRCs(nvservice::NoInstitutionId, config.assetsRCs, serverNameOf(*m_group));
    if (!m_pEmailWidget) {
        return;
    }
    m_emailRulesByKey.clear();
    for (const nvservice::CEmailRC& rule : config.emailRCs) {
        m_emailRulesByKey[WQ::sToQs(rule.ruleKey)] = rule;
    }
    m_pEmailWidget->setInfo(m_emailRulesByKey);
}

void CSetAccountGroupRiskDialog::slotQuaryCategories(std::vector<nvservice::IDataPtr> datas, bool, QString)
{
    if (m_loadReplies.isDropped()) {
        return;
    }
    const CConfigService* const configService = utils::CSingletonT<CConfigService>::instance();
    m_categories.clear();
    for (const nvservice::IDataPtr& data : datas) {
        const auto category = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(data);
        if (!category || category->categoryType == nvservice::CCategoryInfo::InternalCategoryType) {
            continue;
        }
        if (configService->testAuthByCategorySysType(category->sysType)) {
            m_categories.push_back(category);
        }
    }
    m_bCategoriesLoaded = true;
    m_pReverseOrderWidget->setCategories(&m_categories);
    m_pWashTradeWidget->setCategories(&m_categories);
    finishLoading(m_bConfigLoaded);
    rememberInput();
    offerRefusedInput();
}

void CSetAccountGroupRiskDialog::readTabs(nvservice::CAccountGroupRCConfig& config) const
{
    m_pTradeLimitWidget->updateTradeLimitRule(config.rcRule);
    m_pAssetsWidget->getAssetsRCs(config.assetsRCs);
    m_pReverseOrderWidget->fillRatProofSetting(config.ratProofSetting);
    m_pWashTradeWidget->fillRatProofSetting(config.ratProofSetting);
}

bson::BSONObj CSetAccountGroupRiskDialog::input() const
{
    nvservice::CAccountGroupRCConfig config = *m_config;
    readTabs(config);
    return nvservice::encodeRecord(config);
}

void CSetAccountGroupRiskDialog::rememberInput()
{
    if (m_config && !isLoading()) {
        m_savedInput = input();
    }
}

bool CSetAccountGroupRiskDialog::hasUnsavedEdits() const
{
    return m_config && !m_savedInput.isEmpty() && !m_savedInput.binaryEqual(input());
}

void CSetAccountGroupRiskDialog::finishLoading(bool otherReplyIsIn)
{
    if (!otherReplyIsIn) {
        return;
    }
    m_pLoadingMask->hide();
    if (!m_config) {
        return;
    }
    showProofSettings(m_config->ratProofSetting);
}

void CSetAccountGroupRiskDialog::showProofSettings(const nvservice::CRatProofSetting& setting)
{
    m_pReverseOrderWidget->setRatProofSetting(setting);
    m_pWashTradeWidget->setRatProofSetting(setting);
}

void CSetAccountGroupRiskDialog::offerRefusedInput()
{
    m_pRecallButton->setVisible(m_config && !isLoading() && m_refusedGroup && isOpen(*m_refusedGroup));
}

void CSetAccountGroupRiskDialog::recallInput()
{
    // The revision stays that of the settings which were just loaded.
    m_config->assetsRCs = m_refusedConfig->assetsRCs;
    m_config->rcRule = m_refusedConfig->rcRule;
    m_config->ratProofSetting = m_refusedConfig->ratProofSetting;
    showConfig(*m_config);
    showProofSettings(m_config->ratProofSetting);
    m_pTradeLimitWidget->setTradeLimitRule(m_config->rcRule);
    m_pRecallButton->hide();
    WQ::CMessageTip::showTip(this, Qt::AlignHCenter, QStringLiteral("已恢复上次未保存的输入, 请核对后保存"), 5,
                             WQ::MessageInformation, 0);
}

void CSetAccountGroupRiskDialog::slotUpdateAccountGroupRisk(QString qsError)
{
    const std::optional<SaveLabel> label = m_saveLabel.take();
    if (label && !isOpen(*label->group)) {
        return;
    }
    const bool isOvertaken = isLoading() || (label && label->number != m_saveCount);
    if (m_pLoadingMask && !isOvertaken) {
        m_pLoadingMask->hide();
    }
    if (qsError.isEmpty()) {
        if (!isOvertaken) {
            rememberInput();
            m_refusedConfig.reset();
            m_refusedGroup.reset();
            m_pRecallButton->hide();
        }
        WQ::CMessageBox::information(this, QStringLiteral("提示"), QStringLiteral("保存成功"), QMessageBox::Ok);
    } else {
        if (!isOvertaken && m_config) {
            m_refusedConfig = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(m_config->copy());
            m_refusedGroup = m_group;
        }
        WQ::CMessageBox::critical(this, QStringLiteral("提示"), qsError, QMessageBox::Ok);
    }
}

bool CSetAccountGroupRiskDialog::isOpen(const nvservice::CAccountGroup& group) const
{
    return m_group->groupId == group.groupId && m_group->getSystemTag() == group.getSystemTag();
}

bool CSetAccountGroupRiskDialog::isLoading() const
{
    return m_group && !(m_bConfigLoaded && m_bCategoriesLoaded);
}

bool CSetAccountGroupRiskDialog::isCovered() const
{
    return m_pLoadingMask && !m_pLoadingMask->isHidden();
}

} // namespace QAV
