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
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/CWidgetList.h>
#include <WQ/EventType.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
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
    m_callbackGate.close();
}

void CSetAccountGroupRiskDialog::createUi()
{
    m_mainList = new WQ::CWidgetList(WQ::VerticalList, this);
    m_mainList->setMargin(10, 10, 10, 10);
    m_mainList->addStretchWidget(createTabs(), 1, WQ::AnchorLeading, true);
    m_mainList->addFixedWidget(createBottomBar(), WQ::AnchorLeading, true);
    setInnerWidget(m_mainList);

    m_loadingMask = new WQ::CLoadingMaskWidget(QStringLiteral("正在加载风控数据"), m_mainList);
    m_loadingMask->hide();
}

QWidget* CSetAccountGroupRiskDialog::createTabs()
{
    auto* const tabs = new WQ::CStandardTabControl(m_mainList);
    tabs->setTabHeaderImage(QStringLiteral("qav_img_tab_page_top_1"), QStringLiteral("qav_img_tab_page_top"),
                            QStringLiteral("qav_img_tab_page_top_i_1"), QStringLiteral("qav_img_tab_page_top_i"));

    m_tradeLimitWidget = new CStockTradeLimitWidget(tabs);
    tabs->addTabWidget(QStringLiteral("黑白名单"), m_tradeLimitWidget);

    m_assetsWidget = new CAssetsProportionWidget(AssetsTableId, false, nvservice::EZVRCScopeType::AccountGroup,
                                                 CAssetsProportionWidget::AnyCategoryType, tabs);
    m_assetsWidget->resize(1500, m_assetsWidget->height());
    tabs->addTabWidget(QStringLiteral("资产组合风控"), m_assetsWidget);

    m_reverseOrderWidget = new CExemptCategoryWidget(ReverseOrderMode, ReverseOrderPageIndex, tabs);
    m_reverseOrderWidget->resize(1200, 130);
    tabs->addTabWidget(QStringLiteral("反向单交易设置"), m_reverseOrderWidget);

    m_washTradeWidget = new CExemptCategoryWidget(WashTradeMode, WashTradePageIndex, tabs);
    m_washTradeWidget->resize(1200, 130);
    tabs->addTabWidget(QStringLiteral("对敲交易设置"), m_washTradeWidget);
    return tabs;
}

QWidget* CSetAccountGroupRiskDialog::createBottomBar()
{
    auto* const bar = new WQ::CWidgetList(WQ::HorizontalList, m_mainList);
    bar->setMargin(0, 10, 0, 0);
    bar->setSpacing(0);
    bar->setFixedHeight(34);
    bar->addStretchSpace(1);
    m_saveButton = new WQ::CSmallNormalButton(SaveRiskButtonId, true, WQ::PrimaryButton, bar);
    m_saveButton->setFixedSize(70, 26);
    m_saveButton->setText(QStringLiteral("保存设置"));
    bar->addFixedWidget(m_saveButton, WQ::AnchorTrailing, false);
    return bar;
}

void CSetAccountGroupRiskDialog::setAccountGroup(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    m_group = group;
    m_groupId = group->groupId;
    if (m_emailWidget)
        m_emailWidget->setAccountKey(std::to_string(group->groupId));
    if (m_tradeLimitWidget)
        m_tradeLimitWidget->setTradeLimitGroupId(group->groupId);
    setTitle(QStringLiteral("%1组 - 风控设置").arg(WQ::sToQs(group->groupName), 0, QLatin1Char(' ')));
    m_assetsWidget->clearAssetsRCs();
    queryAccountGroupRisk();
    queryCategories();
}

void CSetAccountGroupRiskDialog::refreshAssets()
{
    m_assetsWidget->refresh();
}

bool CSetAccountGroupRiskDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (id == SwallowedControlId)
        return true;
    if (type == WQ::ButtonClicked && id == SaveRiskButtonId) {
        saveAccountGroupRisk();
        return true;
    }
    return CBaseDialog::handleEvent(type, id, param, text, data);
}

void CSetAccountGroupRiskDialog::slotQuaryAccountGroupRisk(const std::vector<nvservice::IDataPtr> datas, bool bSuccess,
                                                           QString qsErrorInfo)
{
    if (!bSuccess) {
        const QPointer<CSetAccountGroupRiskDialog> self(this);
        WQ::CMessageBox::information(this, QStringLiteral("错误"), qsErrorInfo, QMessageBox::Ok);
        if (!self) // the client may close the panel while the box is open
            return;
    }
    m_config.reset();
    if (!datas.empty())
        m_config = boost::dynamic_pointer_cast<nvservice::CAccountGroupRCConfig>(datas.front());
    if (m_config)
        showConfig(*m_config);

    m_configLoaded = true;
    finishLoading(m_categoriesLoaded);
    if (m_config)
        m_tradeLimitWidget->setTradeLimitRule(m_config->rcRule);
}

void CSetAccountGroupRiskDialog::showConfig(const nvservice::CAccountGroupRCConfig& config)
{
    m_assetsWidget->setAssetsRCs(nvservice::NoInstitutionId, config.assetsRCs, serverNameOf(*m_group));
    if (!m_emailWidget)
        return;
    m_emailRulesByKey.clear();
    for (const nvservice::CEmailRC& rule : config.emailRCs)
        m_emailRulesByKey[WQ::sToQs(rule.ruleKey)] = rule;
    m_emailWidget->setInfo(m_emailRulesByKey);
}

void CSetAccountGroupRiskDialog::slotQuaryCategories(std::vector<nvservice::IDataPtr> datas, bool, QString)
{
    const CConfigService* const configService = utils::CSingletonT<CConfigService>::instance();
    m_categories.clear();
    for (const nvservice::IDataPtr& data : datas) {
        const auto category = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(data);
        if (!category || category->categoryType == nvservice::CCategoryInfo::InternalCategoryType)
            continue;
        if (configService->testAuthByCategorySysType(category->sysType))
            m_categories.push_back(category);
    }
    m_categoriesLoaded = true;
    m_reverseOrderWidget->setCategories(&m_categories);
    m_washTradeWidget->setCategories(&m_categories);
    finishLoading(m_configLoaded);
}

void CSetAccountGroupRiskDialog::finishLoading(bool otherReplyIsIn)
{
    if (!otherReplyIsIn)
        return;
    m_loadingMask->hide();
    if (!m_config)
        return;
    m_reverseOrderWidget->setRatProofSetting(m_config->ratProofSetting);
    m_washTradeWidget->setRatProofSetting(m_config->ratProofSetting);
}

void CSetAccountGroupRiskDialog::slotUpdateAccountGroupRisk(QString qsError)
{
    if (m_loadingMask)
        m_loadingMask->hide();
    if (qsError.isEmpty())
        WQ::CMessageBox::information(this, QStringLiteral("提示"), QStringLiteral("保存成功"), QMessageBox::Ok);
    else
        WQ::CMessageBox::critical(this, QStringLiteral("提示"), qsError, QMessageBox::Ok);
}

} // namespace QAV
