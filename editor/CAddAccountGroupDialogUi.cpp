// SPDX-License-Identifier: Apache-2.0
#include "editor/CAddAccountGroupDialog.h"
#include "editor/ControlId.h"
#include "panel/DataRequest.h"

#include <QAV/CManagerSearchLineEdit.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/CWidgetList.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <luawrapper/LuaModuleCtrl.h>
#include <luawrapper/ModuleKey.h>
#include <utils/CSingletonT.h>

namespace QAV
{

namespace
{

constexpr int FieldWidth = 190;
constexpr int FieldHeight = 25;
constexpr int Gap = 10;

WQ::CSimpleTextWidget* createLabel(const QString& text, QWidget* parent)
{
    return new WQ::CSimpleTextWidget(false, 0, text, parent);
}

} // namespace

void CAddAccountGroupDialog::createUi()
{
    auto* const mainList = new WQ::CWidgetList(WQ::VerticalList, this);
    mainList->setSpacing(0);
    mainList->setMargin(15, 15, 15, 15);

    createNameRow(mainList);
    mainList->addFixedSpace(Gap);
    createInstitutionRow(mainList);
    mainList->addFixedSpace(Gap);
    if (m_bCanSelectInstitution && clientCenter().isMultiServers()) {
        createSystemRow(mainList);
        mainList->addFixedSpace(Gap);
    }
    WQ::CWidgetList* const buttonRow = createRow(mainList);
    createButton(buttonRow, AddAccountsButtonId, QStringLiteral("添加账号"), 80, 35);
    buttonRow->addStretchSpace(1);
    mainList->addFixedWidget(buttonRow, WQ::AnchorLine, true);
    mainList->addFixedSpace(Gap);
    createAccountTable(mainList);
    mainList->addFixedSpace(Gap);
    createBottomRow(mainList);

    mainList->updateWidgetLength();
    setInnerWidget(mainList);

    m_pLoadingMask = new WQ::CLoadingMaskWidget(QStringLiteral("正在加载基础数据"), this);
}

WQ::CWidgetList* CAddAccountGroupDialog::createRow(WQ::CWidgetList* mainList)
{
    auto* const row = new WQ::CWidgetList(WQ::HorizontalList, mainList);
    row->setSpacing(0);
    row->setMargin(0, 0, 0, 0);
    return row;
}

void CAddAccountGroupDialog::createNameRow(WQ::CWidgetList* mainList)
{
    WQ::CWidgetList* const row = createRow(mainList);
    row->setFixedWidth(400);
    row->addFixedWidget(createLabel(QStringLiteral("账号组名:"), row), WQ::AnchorLine, true);
    row->addFixedSpace(Gap);
    m_pGroupNameEdit = new WQ::CLineEdit(GroupNameEditId, row);
    m_pGroupNameEdit->setFixedSize(FieldWidth, FieldHeight);
    row->addFixedWidget(m_pGroupNameEdit, WQ::AnchorLine, true);
    row->addFixedSpace(Gap);
    m_pNameTip = createLabel(QString(), row);
    m_pNameTip->setColorKey(WQ::key::GlobalRise);
    m_pNameTip->setFixedHeight(FieldHeight);
    row->addFixedWidget(m_pNameTip, WQ::AnchorLine, true);
    row->addStretchSpace(1);
    mainList->addFixedWidget(row, WQ::AnchorLine, true);
}

void CAddAccountGroupDialog::createInstitutionRow(WQ::CWidgetList* mainList)
{
    WQ::CWidgetList* const row = createRow(mainList);
    row->addFixedWidget(createLabel(QStringLiteral("所属机构:"), row), WQ::AnchorLine, true);
    row->addFixedSpace(Gap);
    m_pInstitutionEdit = new CManagerSearchLineEdit(InstitutionEditId, row);
    m_pInstitutionEdit->setDependUser(false);
    m_pInstitutionEdit->setAccessibleName(QStringLiteral("所属机构"));
    m_pInstitutionEdit->setFixedSize(FieldWidth, FieldHeight);
    row->addFixedWidget(m_pInstitutionEdit, WQ::AnchorLine, true);
    row->addStretchSpace(1);
    mainList->addFixedWidget(row, WQ::AnchorLine, true);

    const bool shown =
        m_bCanSelectInstitution && utils::CSingletonT<luawrapper::LuaModuleCtrl>::instance()->checkModule(
                                       {luawrapper::ModuleKey::Portal, luawrapper::ModuleKey::PortalPrimeBroker});
    if (!shown) {
        row->setFixedHeight(0);
        row->setVisible(false);
    }
}

void CAddAccountGroupDialog::createSystemRow(WQ::CWidgetList* mainList)
{
    m_pSystemRow = createRow(mainList);
    m_pSystemLabel = createLabel(QStringLiteral("  分系统:"), m_pSystemRow);
    m_pSystemRow->addFixedWidget(m_pSystemLabel, WQ::AnchorLine, true);
    m_pSystemRow->addFixedSpace(Gap);
    m_pSystemCombo = new WQ::CComboBox(SystemComboId, m_pSystemRow);
    m_pSystemCombo->setFixedSize(FieldWidth, FieldHeight);
    for (const auto& [name, client] : clientCenter().getAllClients()) {
        m_pSystemCombo->addItem(WQ::sToQs(name), QVariant());
    }
    m_pSystemRow->addFixedWidget(m_pSystemCombo, WQ::AnchorLine, true);
    m_pSystemRow->addStretchSpace(1);
    mainList->addFixedWidget(m_pSystemRow, WQ::AnchorLine, true);
}

void CAddAccountGroupDialog::createAccountTable(WQ::CWidgetList* mainList)
{
    m_pAccountTable = new WQ::CStandardSimpleTable(GroupAccountTableId, mainList);
    m_pAccountTable->setHeaderHeight(28);
    m_pAccountTable->setRowHeight(28);
    m_pAccountTable->setColumnCount(GroupAccountColumnCount);
    m_pAccountTable->setFixedWidth(500);
    m_pAccountTable->setHeaderText(AccountTypeColumn, QStringLiteral("账号类型"));
    m_pAccountTable->setHeaderText(AccountIdColumn, QStringLiteral("账号"));
    m_pAccountTable->setHeaderText(AccountServerColumn, QStringLiteral("分系统"));
    m_pAccountTable->setHeaderText(AccountProductColumn, QStringLiteral("所属产品"));
    m_pAccountTable->setHeaderText(AccountOperationColumn, QStringLiteral("操作"));
    m_pAccountTable->setColumnVisible(AccountServerColumn, clientCenter().isMultiServers());
    m_pAccountTable->setAccessibleName(QStringLiteral("账号组的账号"));
    mainList->addStretchWidget(m_pAccountTable, 1, WQ::AnchorLeading, true);
}

void CAddAccountGroupDialog::createBottomRow(WQ::CWidgetList* mainList)
{
    WQ::CWidgetList* const row = createRow(mainList);
    m_pRecallButton = createButton(row, RecallGroupInputButtonId, QStringLiteral("恢复上次未保存的输入"), 170, 30);
    m_pRecallButton->hide();
    row->addStretchSpace(1);
    createButton(row, SaveGroupButtonId, QStringLiteral("保存"), 70, 30)->setKeys(QKeySequence::Save);
    row->addFixedSpace(20);
    createButton(row, CloseGroupDialogButtonId, QStringLiteral("关闭"), 70, 30);
    mainList->addFixedWidget(row, WQ::AnchorLine, true);
}

WQ::CMediumNormalButton* CAddAccountGroupDialog::createButton(WQ::CWidgetList* row, int id, const QString& text,
                                                              int width, int height)
{
    auto* const button = new WQ::CMediumNormalButton(id, WQ::NormalButton, row);
    button->setText(text);
    button->setFixedSize(width, height);
    row->addFixedWidget(button, WQ::AnchorMiddle, false);
    return button;
}

} // namespace QAV
