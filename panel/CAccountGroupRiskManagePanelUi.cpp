// SPDX-License-Identifier: Apache-2.0
#include "panel/AccountGroupColumn.h"
#include "panel/CAccountGroupRiskManagePanel.h"
#include "panel/CAccountGroupRiskModel.h"
#include "panel/ControlId.h"
#include "panel/DataRequest.h"

#include <QAV/CUserManager.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/CWidgetList.h>
#include <WQ/ResourceKeys.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <luawrapper/ModuleKey.h>
#include <nvservice/CUserInfo.h>
#include <nvservice/UserRight.h>
#include <utils/CSingletonT.h>

namespace QAV
{

namespace
{

WQ::CSmallNormalButton* createButton(int id, const QString& text, int width, QWidget* parent)
{
    auto* const button = new WQ::CSmallNormalButton(id, true, WQ::NormalButton, parent);
    button->setFixedHeight(26);
    button->setFixedWidth(width);
    button->setText(text);
    return button;
}

/// A user who is bound to an institution works on that institution's server and has no use for server names. Only the
/// id that stands for no institution counts as unbound here.
bool isServerColumnShown()
{
    const boost::shared_ptr<nvservice::CUserInfo> user = utils::CSingletonT<CUserManager>::instance()->getUserInfoPtr();
    return user && user->institutionId == nvservice::NoInstitutionId && clientCenter().isMultiServers();
}

} // namespace

void CAccountGroupRiskManagePanel::createUi()
{
    auto* const mainList = new WQ::CWidgetList(WQ::VerticalList, this);
    mainList->setSpacing(0);
    mainList->setMargin(0, 0, 0, 0);
    createTopBar(mainList);
    createTable(mainList);

    m_pLoadingMask = new WQ::CLoadingMaskWidget(QStringLiteral("正在加载基础数据"), this);
    m_pLoadingMask->hide();
}

void CAccountGroupRiskManagePanel::createTopBar(WQ::CWidgetList* mainList)
{
    auto* const topBar = new WQ::CWidgetList(WQ::HorizontalList, mainList);
    topBar->setFixedHeight(36);
    topBar->setSpacing(0);
    topBar->setMargin(3, 5, 0, 5);

    topBar->addFixedWidget(new WQ::CSimpleTextWidget(false, 0, QStringLiteral("查询组名: "), topBar), WQ::AnchorLine,
                           true);
    m_pSearchEdit = new WQ::CLineEdit(SearchEditId, topBar);
    m_pSearchEdit->setFixedWidth(190);
    m_pSearchEdit->setToolTip(QStringLiteral("查询组名（Ctrl+K）"));
    m_pSearchEdit->setEmptyHintText(QStringLiteral("请输入账号组名, 按Enter键查询"));
    m_pSearchEdit->setEmptyHintColor(WQ::CUiResourceManager::instance()->colour(WQ::key::EditHint));
    topBar->addFixedWidget(m_pSearchEdit, WQ::AnchorLine, true);
    topBar->addFixedSpace(15);
    if (utils::CSingletonT<CUserManager>::instance()->checkUserAuth(nvservice::UserRight::EditAccountGroup)) {
        WQ::CSmallNormalButton* const add = createButton(AddButtonId, QStringLiteral("添加账号组"), 70, topBar);
        add->setKeys(QKeySequence::New, this);
        topBar->addFixedWidget(add, WQ::AnchorLine, true);
    }
    topBar->addFixedSpace(20);
    WQ::CSmallNormalButton* const refresh = createButton(RefreshButtonId, QStringLiteral("立即刷新"), 71, topBar);
    refresh->setToolTip(QStringLiteral("立即刷新（F5）"));
    topBar->addFixedWidget(refresh, WQ::AnchorLine, true);
    topBar->addStretchSpace(1);
    topBar->setMinimumWidth(950);

    mainList->addFixedWidget(topBar, WQ::AnchorLine, true);
}

void CAccountGroupRiskManagePanel::createTable(WQ::CWidgetList* mainList)
{
    m_pTable = new WQ::CStandardHpfTable(AccountGroupTableId, this, WQ::MenuAll);
    m_pTable->setFlags(m_pTable->flags() & ~WQ::TableCellSelection);
    m_pModel = new CAccountGroupRiskModel;
    m_pTable->setDataModel(m_pModel);
    for (const int column : {AccountCountColumn, InstitutionColumn, ServerColumn}) {
        m_pTable->setColumnFilterable(column, true);
    }
    m_pTable->setColumnDelegate(OperationColumn, new WQ::CBaseTableColumnMultiButtonsDelegate(OperationColumn, this));
    m_pTable->setColumnVisible(ServerColumn, isServerColumnShown());
    m_pTable->setColumnWidth(ServerColumn, 200);

    mainList->addStretchWidget(m_pTable, 1, WQ::AnchorLine, true);
    setInnerStretchWidget(mainList, 0, 0, 0, 0);

    if (!utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->checkModule(
            {luawrapper::ModuleKey::Portal, luawrapper::ModuleKey::PortalPrimeBroker})) {
        m_pTable->removeColumn(InstitutionColumn);
    }
}

} // namespace QAV
