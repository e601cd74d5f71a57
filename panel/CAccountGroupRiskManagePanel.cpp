// SPDX-License-Identifier: Apache-2.0
#include "panel/CAccountGroupRiskManagePanel.h"

#include "editor/CAddAccountGroupDialog.h"
#include "editor/DestroyElsewhere.h"
#include "panel/AccountGroupColumn.h"
#include "panel/CAccountGroupRiskMainData.h"
#include "panel/CAccountGroupRiskModel.h"
#include "panel/ControlId.h"
#include "panel/DataRequest.h"
#include "risk/CSetAccountGroupRiskDialog.h"

#include <QAV/CProductDataManager.h>
#include <QAV/CUserManager.h>
#include <WQ/ButtonData.h>
#include <WQ/ButtonPainter.h>
#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CLineEdit.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EventType.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CKolmProductsResp.h>
#include <nvservice/CProductInfo.h>
#include <nvservice/DataType.h>
#include <nvservice/UserRight.h>

#include <QAbstractItemView>
#include <QScrollBar>
#include <QTimer>
#include <QVector>

#include <boost/bind/bind.hpp>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace QAV
{

namespace
{

const QChar ParamSeparator = QLatin1Char(';');
// So few that taking them takes some hundredths of a second.
constexpr std::size_t GroupsPerTurn = 2500;
constexpr std::size_t AccountsPerTurn = 20000;

struct RowButton {
    int id;
    QString text;
    int right;
};

/// The row buttons that the user may press. Rows with the same buttons share one list.
QVector<WQ::ButtonData> rowButtonsOfUser()
{
    static const std::array<RowButton, 3> rowButtons = {{
        {RiskSettingsRowButton, QStringLiteral("风控设置"), nvservice::UserRight::SetAccountGroupRisk},
        {EditRowButton, QStringLiteral("编辑"), nvservice::UserRight::EditAccountGroup},
        {DeleteRowButton, QStringLiteral("删除"), nvservice::UserRight::DeleteAccountGroup},
    }};
    static std::array<QVector<WQ::ButtonData>, 1U << rowButtons.size()> listsByRights;

    const CUserManager* const userManager = utils::CSingletonT<CUserManager>::instance();
    unsigned rights = 0;
    for (std::size_t i = 0; i < rowButtons.size(); ++i) {
        rights |= (userManager->checkUserAuth(rowButtons[i].right) ? 1U : 0U) << i;
    }
    QVector<WQ::ButtonData>& buttons = listsByRights[rights];
    if (rights != 0 && buttons.isEmpty()) {
        for (std::size_t i = 0; i < rowButtons.size(); ++i) {
            if ((rights & (1U << i)) != 0) {
                buttons.append(WQ::ButtonData(rowButtons[i].id, rowButtons[i].text, WQ::NormalButton));
            }
        }
    }
    return buttons;
}

} // namespace

CAccountGroupRiskManagePanel::CAccountGroupRiskManagePanel(QWidget* parent)
    : IkolmDockableWidget(false, QStringLiteral("agr"), parent, true)
{
    createUi();

    // The signals carry these types between threads; that must not depend on what the client happens to register.
    nvservice::registerMetaTypes();
    connect(this, SIGNAL(sigQuaryAccountGroup(std::vector<nvservice::IDataPtr>, int)), this,
            SLOT(slotQuaryAccountGroup(std::vector<nvservice::IDataPtr>, int)));
    // The blanks belong to the signatures.
    // clang-format off
    connect(this, SIGNAL(sigOperatorAccountGroupInfo( int , bool, QString)), this,
            SLOT(slotOperatorAccountGroupInfo( int , bool, QString)));
    connect(this, SIGNAL(sigQueryProduct(std::vector<nvservice::IDataPtr>)), this,
            SLOT(slotQueryProduct( std::vector<nvservice::IDataPtr>)));
    // clang-format on

    m_pRiskDialog = new CSetAccountGroupRiskDialog(this);
    m_pGroupDialog = new CAddAccountGroupDialog(this);
}

CAccountGroupRiskManagePanel::~CAccountGroupRiskManagePanel()
{
    m_queryReplies.close();
    callbackGate().close();
}

void CAccountGroupRiskManagePanel::setParam(const QString& param)
{
    const QStringList parts = param.split(ParamSeparator, Qt::KeepEmptyParts, Qt::CaseSensitive);
    if (parts.isEmpty() || !m_pTable) {
        return;
    }
    m_pTable->loadConfigStr(parts.first());
}

QString CAccountGroupRiskManagePanel::param() const
{
    QStringList parts;
    if (m_pTable) {
        parts.append(m_pTable->saveConfigStr());
    }
    return parts.join(ParamSeparator);
}

bool CAccountGroupRiskManagePanel::handleEvent(int eventId, int param1, int param2, QString strParam, void* data)
{
    switch (eventId) {
    case WQ::ButtonOrEnter:
    case WQ::ButtonClicked:
        if (eventId == WQ::ButtonOrEnter && param1 == SearchEditId) {
            filterByGroupName();
        } else if (param1 == AddButtonId) {
            addData();
        } else if (param1 == RefreshButtonId) {
            queryAccountGroupInfo();
            if (m_pRiskDialog) {
                m_pRiskDialog->refreshAssets();
            }
        }
        return true;
    case WQ::RowButtonClicked:
        handleRowButton(strParam, param2);
        return true;
    default:
        return CBaseWidget::handleEvent(eventId, param1, param2, strParam, data);
    }
}

void CAccountGroupRiskManagePanel::switchSystem(int index, QString serverName)
{
    IkolmDockableWidget::switchSystem(index, serverName);
    queryAccountGroupInfo();
}

void CAccountGroupRiskManagePanel::onActive()
{
    IkolmDockableWidget::onActive();
    queryAccountGroupInfo();
}

void CAccountGroupRiskManagePanel::clear()
{
    destroyElsewhere(std::make_tuple(std::exchange(m_accountGroups, {}), std::exchange(m_arrived, {}),
                                     std::exchange(m_accountProductMap, {})));
    if (m_pModel) {
        m_pModel->clear();
    }
    if (!m_pTable) {
        return;
    }
    m_pTable->clearSort();
    m_pTable->updateTable();
    if (const auto delegate =
            dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate*>(m_pTable->columnDelegate(OperationColumn))) {
        delegate->clear();
    }
}

void CAccountGroupRiskManagePanel::queryAccountGroupInfo()
{
    if (m_pLoadingMask) {
        m_pLoadingMask->attach(this);
    }
    rememberPlace();
    clear();
    if (m_pRiskDialog) {
        m_pRiskDialog->refreshAssets();
    }

    const auto request = makeQueryRequest(nvservice::DataType::AccountGroup);
    m_queryReplies.dropOutstanding();
    const QueryCallback callback = m_queryReplies.wrap(
        QueryCallback(boost::bind(&CAccountGroupRiskManagePanel::onQueryAccountGroupInfo, this, boost::placeholders::_1,
                                  boost::placeholders::_2, boost::placeholders::_3, boost::placeholders::_4)));
    if (m_qsServerName.isEmpty()) {
        clientCenter().queryData_async(request, callback, 0);
    } else {
        clientCenter().getClientByName(WQ::qsToS(m_qsServerName))->queryData_async(request, callback, 0);
    }
}

void CAccountGroupRiskManagePanel::queryProduct()
{
    const QueryCallback callback = m_queryReplies.wrap(
        QueryCallback(boost::bind(&CAccountGroupRiskManagePanel::onQueryProduct, this, boost::placeholders::_1,
                                  boost::placeholders::_2, boost::placeholders::_3, boost::placeholders::_4)));
    clientCenter().queryData_async(makeQueryRequest(nvservice::DataType::Product), callback, 0);
}

void CAccountGroupRiskManagePanel::onQueryAccountGroupInfo(const utils::NVError&,
                                                           const std::vector<nvservice::IDataPtr>& datas,
                                                           int totalCount, bson::BSONObj)
{
    emit sigQuaryAccountGroup(datas, totalCount);
}

void CAccountGroupRiskManagePanel::onQueryProduct(const utils::NVError&, const std::vector<nvservice::IDataPtr>& datas,
                                                  int, bson::BSONObj)
{
    emit sigQueryProduct(datas);
}

void CAccountGroupRiskManagePanel::slotQuaryAccountGroup(std::vector<nvservice::IDataPtr> datas, int)
{
    if (m_queryReplies.isDropped()) {
        return;
    }
    m_arrived = {std::move(datas), 0};
    takeArrived(&CAccountGroupRiskManagePanel::showNextGroups);
}

void CAccountGroupRiskManagePanel::takeArrived(bool (CAccountGroupRiskManagePanel::*takeNext)())
{
    if (!(this->*takeNext)()) {
        return;
    }
    QTimer::singleShot(0, this, [this, takeNext, query = m_queryReplies.number()] {
        if (query == m_queryReplies.number()) {
            takeArrived(takeNext);
        }
    });
}

bool CAccountGroupRiskManagePanel::showNextGroups()
{
    const std::size_t count = m_arrived.records.size();
    // What follows the last group takes turns as well.
    const bool takesTurns = count > GroupsPerTurn;
    if (m_pModel && m_pTable && m_arrived.taken < count) {
        const std::string currentServer = WQ::qsToS(m_qsServerName);
        const std::size_t end = std::min(m_arrived.taken + GroupsPerTurn, count);
        for (; m_arrived.taken < end; ++m_arrived.taken) {
            const auto group =
                boost::dynamic_pointer_cast<nvservice::CAccountGroup>(m_arrived.records[m_arrived.taken]);
            if (!group || clientCenter().getServerNameBySystemTag(group->getSystemTag()) != currentServer) {
                continue;
            }
            addAccountGroupInTable(group);
            m_accountGroups.append(group);
        }
        if (takesTurns) {
            return true;
        }
    }
    if (m_pModel && m_pTable && !m_arrived.isPlaceFound) {
        destroyElsewhere(m_accountGroups.finish());
        returnToPlace();
        m_arrived.isPlaceFound = true;
        if (takesTurns) {
            return true;
        }
    }
    std::vector<nvservice::IDataPtr> groups = std::exchange(m_arrived, {}).records;
    queryProduct();
    utils::CSingletonT<CProductDataManager>::instance()->initAccountGroupNameMap(groups);
    destroyElsewhere(std::move(groups));
    return false;
}

void CAccountGroupRiskManagePanel::rememberPlace()
{
    // An empty table may be waiting for the answer to an earlier query, and the user for his place in it; so may one
    // that is being filled.
    if (m_pTable && !m_accountGroups.empty() && m_arrived.records.empty()) {
        m_place = {m_accountGroups.systemTagAt(0), m_pTable->currentKey(),
                   m_pTable->view()->verticalScrollBar()->value()};
    }
}

void CAccountGroupRiskManagePanel::returnToPlace()
{
    const std::string added = std::exchange(m_addedGroupName, {});
    if (m_accountGroups.empty()) {
        return;
    }
    if (!added.empty() && goToGroup(added)) {
        return;
    }
    // Looking for a row makes the table build its index of keys, which a first filling does without.
    if (!m_place.currentKey.isEmpty()) {
        m_pTable->setCurrentKey(m_place.currentKey);
    }
    const bool isSameServer = m_accountGroups.systemTagAt(0) == m_place.systemTag;
    m_pTable->view()->verticalScrollBar()->setValue(isSameServer ? m_place.scrollValue : 0);
}

bool CAccountGroupRiskManagePanel::goToGroup(const std::string& name)
{
    for (std::size_t i = 0; i < m_accountGroups.size(); ++i) {
        if (m_accountGroups.nameAt(i) == name) {
            CAccountGroupRiskMainData row;
            row.serverName = m_qsServerName;
            row.groupId = m_accountGroups.idAt(i);
            return m_pTable->setCurrentKey(row.getKey());
        }
    }
    return false;
}

void CAccountGroupRiskManagePanel::addAccountGroupInTable(boost::shared_ptr<nvservice::CAccountGroup> group)
{
    if (const auto delegate =
            dynamic_cast<WQ::CBaseTableColumnMultiButtonsDelegate*>(m_pTable->columnDelegate(OperationColumn))) {
        const auto row = boost::make_shared<CAccountGroupRiskMainData>();
        // A conversion reserves a character for each byte; a copy holds as many as there are.
        const QString name = WQ::sToQs(group->groupName);
        row->groupName = QString(name.constData(), name.size());
        row->accountCount = static_cast<std::int32_t>(group->accounts.size());
        row->institutionName = sharedText(group->institutionName);
        row->serverName = sharedText(clientCenter().getServerNameBySystemTag(group->getSystemTag()));
        if (row->institutionName.isEmpty()) {
            row->institutionName = QStringLiteral("主经纪商");
        }
        row->groupId = group->groupId;
        m_pModel->addData(row);
        delegate->setItemButtons(row->getKey(), rowButtonsOfUser());
    }
    // Once per row: the table gathers these requests and carries them out once per turn of the event loop.
    m_pTable->updateTable();
    m_pTable->adjustColumnWidth();
}

const QString& CAccountGroupRiskManagePanel::sharedText(const std::string& name)
{
    const auto [place, isNew] = m_sharedTexts.try_emplace(name);
    if (isNew) {
        place->second = WQ::sToQs(name);
    }
    return place->second;
}

void CAccountGroupRiskManagePanel::slotQueryProduct(std::vector<nvservice::IDataPtr> datas)
{
    if (m_queryReplies.isDropped()) {
        return;
    }
    const auto reply = datas.empty() ? boost::shared_ptr<nvservice::CKolmProductsResp>()
                                     : boost::dynamic_pointer_cast<nvservice::CKolmProductsResp>(datas.front());
    m_arrived = {reply ? reply->products : std::vector<nvservice::IDataPtr>(), 0};
    takeArrived(&CAccountGroupRiskManagePanel::mapNextProducts);
}

bool CAccountGroupRiskManagePanel::mapNextProducts()
{
    std::size_t accounts = 0;
    for (; m_arrived.taken < m_arrived.records.size(); ++m_arrived.taken) {
        if (accounts >= AccountsPerTurn) {
            return true;
        }
        const auto product = boost::dynamic_pointer_cast<nvservice::CProductInfo>(m_arrived.records[m_arrived.taken]);
        if (!product || product->excluded) {
            continue;
        }
        // Only the name is shown. With their accounts the products would take a quarter of the client's memory.
        const auto entry = boost::make_shared<nvservice::CProductInfo>();
        entry->productName = product->productName;
        for (const auto& account : product->accounts) {
            if (account) {
                m_accountProductMap.insert(account->getKey(), entry);
            }
        }
        accounts += product->accounts.size();
    }
    destroyElsewhere(std::exchange(m_arrived, {}));
    if (m_pLoadingMask) {
        m_pLoadingMask->hide();
    }
    return false;
}

void CAccountGroupRiskManagePanel::filterByGroupName()
{
    if (!m_pModel || !m_pTable || !m_pSearchEdit) {
        return;
    }
    const QString text = m_pSearchEdit->getText();
    if (text.isEmpty()) {
        m_pModel->clearFilter();
    } else {
        m_pTable->filterColumn(AccountGroupNameColumn, {WQ::FilterContains, {text}});
    }
    m_pTable->updateTable();
}

} // namespace QAV
