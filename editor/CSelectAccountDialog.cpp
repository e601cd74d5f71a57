#include "editor/CSelectAccountDialog.h"

#include "editor/AccountType.h"
#include "editor/AccountUnitRule.h"
#include "editor/ControlId.h"

#include <QAV/CUserCombobox.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CComboBox.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageBox.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CWidgetList.h>
#include <WQ/StringConversion.h>
#include <nvservice/CProductInfo.h>

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

    m_typeCombo = new WQ::CComboBox(AccountTypeComboId, list);
    list->addFixedWidget(createRow(list, QStringLiteral("选择类型:"), m_typeCombo), WQ::AnchorLine, true);
    list->addFixedSpace(15);
    m_accountBox = new CUserCombobox(AccountBoxId, QStringLiteral("账号"), list);
    list->addFixedWidget(createRow(list, QStringLiteral("选择账号:"), m_accountBox), WQ::AnchorLine, true);
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

void CSelectAccountDialog::setProductMap(const std::map<std::string, nvservice::IDataPtr>& products)
{
    m_productByAccountKey = products;
}

void CSelectAccountDialog::setAccounts(const CandidateList& candidates, const AccountList& inGroup)
{
    m_accountsByType.clear();
    for (const auto& candidate : candidates) {
        if (!candidate || !candidate->account)
            continue;
        candidate->account->setSystemTag(candidate->getSystemTag());
        m_accountsByType[static_cast<std::int32_t>(candidate->account->brokerType)].push_back(candidate->account);
    }
    m_preselected = inGroup;

    m_typeCombo->clear();
    for (const auto& [type, accounts] : m_accountsByType) {
        if (isAccountTypeOffered(type))
            m_typeCombo->addItem(accountTypeName(type), type);
    }
}

const CSelectAccountDialog::AccountList* CSelectAccountDialog::accountsAt(int typeIndex) const
{
    // An index without an item has no type, not even the one that an empty value would turn into.
    const QVariant type = m_typeCombo->itemData(typeIndex);
    if (!type.isValid())
        return nullptr;
    const auto accounts = m_accountsByType.find(type.toInt());
    return accounts == m_accountsByType.end() ? nullptr : &accounts->second;
}

QString CSelectAccountDialog::itemText(const boost::shared_ptr<nvservice::CAccountInfo>& account) const
{
    const auto entry = m_productByAccountKey.find(account->getKey());
    const auto product = entry == m_productByAccountKey.end()
                             ? boost::shared_ptr<nvservice::CProductInfo>()
                             : boost::dynamic_pointer_cast<nvservice::CProductInfo>(entry->second);
    const QString displayId = WQ::sToQs(nvservice::accountDisplayID(account));
    return displayId + (product ? QLatin1Char('(') + WQ::sToQs(product->productName) + QLatin1Char(')')
                                : QStringLiteral("(未关联产品)"));
}

void CSelectAccountDialog::fillAccountBox(int typeIndex)
{
    const AccountList* const accounts = accountsAt(typeIndex);
    if (!accounts)
        return;
    const nvservice::EZVBrokerType type = accounts->front()->brokerType;
    std::unordered_set<std::string> preselectedIds;
    for (const auto& account : m_preselected) {
        if (account && account->brokerType == type)
            preselectedIds.insert(nvservice::accountDisplayID(account));
    }

    QMap<QString, QString> items;
    QSet<QString> checked;
    for (const auto& account : *accounts) {
        const QString key = WQ::sToQs(account->getCsKey());
        items.insert(key, itemText(account));
        if (!preselectedIds.empty() && preselectedIds.count(nvservice::accountDisplayID(account)) > 0)
            checked.insert(key);
    }
    m_accountBox->clear();
    m_accountBox->addItems(items);
    m_accountBox->setCheckItems(checked);
}

void CSelectAccountDialog::selectedAccounts(AccountList& out) const
{
    out.clear();
    const AccountList* const accounts = accountsAt(m_typeCombo->currentIndex());
    if (!accounts)
        return;
    const QSet<QString> keys = m_accountBox->checkKeys();
    if (keys.isEmpty())
        return;
    for (const auto& account : *accounts) {
        if (keys.contains(WQ::sToQs(account->getCsKey())))
            out.push_back(account);
    }
}

bool CSelectAccountDialog::checkAccountUnits()
{
    AccountList accounts;
    selectedAccounts(accounts);
    const auto pair = firstAccountWithOwnUnit(accounts);
    if (!pair)
        return true;
    const QString message = QStringLiteral("账号和下属账号单元不能配在同一组中!(%1 %2)")
                                .arg(WQ::sToQs(nvservice::accountDisplayID(accounts[pair->first])),
                                     WQ::sToQs(nvservice::accountDisplayID(accounts[pair->second])));
    WQ::CMessageBox::critical(this, QStringLiteral("错误提示"), message, QMessageBox::Ok);
    return false;
}

bool CSelectAccountDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == AcceptAccountsButtonId) {
        if (checkAccountUnits())
            done(Accepted);
        return true;
    }
    if (type == WQ::ButtonClicked && id == CancelAccountsButtonId) {
        done(Rejected);
        return true;
    }
    // A click that carries the type box's id counts as a change of the type, as the box's own event does.
    if ((type == WQ::ComboIndexChanged || type == WQ::ButtonClicked) && id == AccountTypeComboId)
        fillAccountBox(param);
    return CBaseDialog::handleEvent(type, id, param, text, data);
}

} // namespace QAV
