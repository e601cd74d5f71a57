// SPDX-License-Identifier: Apache-2.0
#include "editor/CSelectAccountDialog.h"

#include "editor/AccountProduct.h"
#include "editor/AccountType.h"
#include "editor/AccountUnitRule.h"
#include "editor/ControlId.h"
#include "editor/DestroyElsewhere.h"

#include <QAV/CUserCombobox.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CComboBox.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageBox.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CWidgetList.h>
#include <WQ/StringConversion.h>

#include <QStringBuilder>

#include <unordered_set>

namespace QAV
{

namespace
{

constexpr int BoxWidth = 240;

} // namespace

CSelectAccountDialog::CSelectAccountDialog(QWidget* parent) : CCommonDialog(parent)
{
    setTitle(QStringLiteral("添加"));
    createUi();
    resize(450, 240);
}

CSelectAccountDialog::~CSelectAccountDialog() = default;

void CSelectAccountDialog::createUi()
{
    auto* const list = new WQ::CWidgetList(WQ::VerticalList, this);
    list->setSpacing(0);
    list->setMargin(30, 30, 30, 30);

    m_pTypeCombo = new WQ::CComboBox(AccountTypeComboId, list);
    list->addFixedWidget(createRow(list, QStringLiteral("选择类型:"), m_pTypeCombo), WQ::AnchorLine, true);
    list->addFixedSpace(15);
    m_pAccountBox = new CUserCombobox(AccountBoxId, QStringLiteral("账号"), list);
    list->addFixedWidget(createRow(list, QStringLiteral("选择账号:"), m_pAccountBox), WQ::AnchorLine, true);
    list->addFixedSpace(20);

    auto* const buttons = new WQ::CWidgetList(WQ::HorizontalList, list);
    buttons->setSpacing(0);
    buttons->setMargin(0, 0, 0, 0);
    const auto addButton = [buttons](int id, const QString& text) {
        auto* const button = new WQ::CMediumNormalButton(id, WQ::NormalButton, buttons);
        button->setText(text);
        button->setFixedSize(70, 30);
        buttons->addFixedWidget(button, WQ::AnchorMiddle, false);
    };
    buttons->addStretchSpace(1);
    addButton(AcceptAccountsButtonId, QStringLiteral("确定"));
    buttons->addFixedSpace(5);
    addButton(CancelAccountsButtonId, QStringLiteral("取消"));
    list->addFixedWidget(buttons, WQ::AnchorLine, true);

    list->updateWidgetLength();
    setInnerWidget(list);
}

WQ::CWidgetList* CSelectAccountDialog::createRow(WQ::CWidgetList* list, const QString& label, QWidget* control)
{
    auto* const row = new WQ::CWidgetList(WQ::HorizontalList, list);
    row->setSpacing(0);
    row->setMargin(0, 0, 0, 0);
    row->addFixedWidget(new WQ::CSimpleTextWidget(false, 0, label, row), WQ::AnchorLine, true);
    row->addFixedSpace(20);
    control->setFixedWidth(BoxWidth);
    row->addFixedWidget(control, WQ::AnchorLine, true);
    row->addStretchSpace(1);
    return row;
}

void CSelectAccountDialog::setProductMap(const ProductMap& products)
{
    m_accountProductMap = products;
}

void CSelectAccountDialog::setAccounts(const CandidateList& candidates, const AccountList& inGroup)
{
    m_accountsByType.clear();
    for (const auto& candidate : candidates) {
        if (!candidate || !candidate->account) {
            continue;
        }
        candidate->account->setSystemTag(candidate->getSystemTag());
        m_accountsByType[static_cast<std::int32_t>(candidate->account->brokerType)].push_back(candidate->account);
    }
    m_preselected = inGroup;

    m_pTypeCombo->clear();
    for (const auto& [type, accounts] : m_accountsByType) {
        if (isAccountTypeOffered(type)) {
            m_pTypeCombo->addItem(accountTypeName(type), type);
        }
    }
}

const AccountList* CSelectAccountDialog::accountsAt(int typeIndex) const
{
    // An index without an item has no type, not even the one that an empty value would turn into.
    const QVariant type = m_pTypeCombo->itemData(typeIndex);
    if (!type.isValid()) {
        return nullptr;
    }
    const auto accounts = m_accountsByType.find(type.toInt());
    return accounts == m_accountsByType.end() ? nullptr : &accounts->second;
}

QString CSelectAccountDialog::itemText(const boost::shared_ptr<nvservice::CAccountInfo>& account) const
{
    return WQ::sToQs(nvservice::accountDisplayID(account)) % QLatin1Char('(') %
           productNameOf(*account, m_accountProductMap) % QLatin1Char(')');
}

void CSelectAccountDialog::fillAccountBox(int typeIndex)
{
    const AccountList* const accounts = accountsAt(typeIndex);
    if (!accounts) {
        return;
    }
    const nvservice::EZVBrokerType type = accounts->front()->brokerType;
    std::unordered_set<std::string> preselectedIds;
    for (const auto& account : m_preselected) {
        if (account && account->brokerType == type) {
            preselectedIds.insert(nvservice::accountDisplayID(account));
        }
    }

    QMap<QString, QString> items;
    QSet<QString> checked;
    for (const auto& account : *accounts) {
        const QString key = WQ::sToQs(account->getCsKey());
        items.insert(items.cend(), key, itemText(account)); // the service sorts the accounts much like their keys
        if (!preselectedIds.empty() && preselectedIds.count(nvservice::accountDisplayID(account)) > 0) {
            checked.insert(key);
        }
    }
    m_pAccountBox->clear();
    m_pAccountBox->addItems(items);
    m_pAccountBox->setCheckItems(checked);
    destroyElsewhere(std::move(items));
}

void CSelectAccountDialog::selectedAccounts(AccountList& out) const
{
    out.clear();
    const AccountList* const accounts = accountsAt(m_pTypeCombo->currentIndex());
    if (!accounts) {
        return;
    }
    const QSet<QString> keys = m_pAccountBox->checkKeys();
    if (keys.isEmpty()) {
        return;
    }
    for (const auto& account : *accounts) {
        if (keys.contains(WQ::sToQs(account->getCsKey()))) {
            out.push_back(account);
        }
    }
}

bool CSelectAccountDialog::checkAccountUnits()
{
    AccountList accounts;
    selectedAccounts(accounts);
    const auto pair = firstAccountWithOwnUnit(accounts);
    if (!pair) {
        return true;
    }
    const QString message = QStringLiteral("账号和下属账号单元不能配在同一组中!(%1 %2)")
                                .arg(WQ::sToQs(nvservice::accountDisplayID(accounts[pair->first])),
                                     WQ::sToQs(nvservice::accountDisplayID(accounts[pair->second])));
    WQ::CMessageBox::critical(this, QStringLiteral("错误提示"), message, QMessageBox::Ok);
    return false;
}

bool CSelectAccountDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == AcceptAccountsButtonId) {
        if (checkAccountUnits()) {
            done(Accepted);
        }
        return true;
    }
    if (type == WQ::ButtonClicked && id == CancelAccountsButtonId) {
        done(Rejected);
        return true;
    }
    // A click that carries the type box's id counts as a change of the type, as the box's own event does.
    if ((type == WQ::ComboIndexChanged || type == WQ::ButtonClicked) && id == AccountTypeComboId) {
        fillAccountBox(param);
    }
    return CBaseDialog::handleEvent(type, id, param, text, data);
}

} // namespace QAV
