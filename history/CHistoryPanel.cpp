// SPDX-License-Identifier: Apache-2.0
#include "history/CHistoryPanel.h"

#include "history/CChangeDetails.h"
#include "history/CChangeList.h"
#include "history/CComparisonView.h"
#include "history/CFindingsPage.h"
#include "history/CPickList.h"
#include "history/ControlId.h"

#include <QAV/CKolmClientCenter.h>
#include <QAV/CUserManager.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/EventType.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/DataType.h>
#include <nvservice/UserRight.h>

#include <QAbstractItemView>
#include <QSplitter>

namespace QAV
{

namespace
{

constexpr int SearchWidth = 240;

/// A dock behind another one keeps its widget visible, outside of the window.
bool isInSight(const QWidget& widget)
{
    const QWidget& window = *widget.window();
    return widget.isVisible() && window.rect().intersects({widget.mapTo(&window, QPoint()), widget.size()});
}

} // namespace

/// The widgets belong to their parents.
struct CHistoryPanel::Parts {
    explicit Parts(const CCallbackGate& gate)
        : mayReadAudit(utils::CSingletonT<CUserManager>::instance()->checkUserAuth(nvservice::UserRight::ReadAudit)),
          names(gate)
    {
    }

    const bool mayReadAudit;
    CJointQuery names;
    std::unique_ptr<CChangeDetails> details;
    bool isOld = true; ///< what is shown is not that of the server
    bool areFindingsOld = true;

    CSearchPane* searchPane = nullptr;
    CChangeList* changes = nullptr;
    CComparisonView* comparison = nullptr;
    CFindingsPage* findings = nullptr;
    WQ::CStandardTabControl* tabs = nullptr;
    QSplitter* wide = nullptr; ///< between the search and the rest
    QSplitter* high = nullptr; ///< between the changes and the comparison
};

CHistoryPanel::CHistoryPanel(QWidget* parent)
    : IkolmDockableWidget(true, QStringLiteral("qavHistory"), parent, true),
      m_parts(std::make_unique<Parts>(callbackGate()))
{
    createUi();
    m_parts->details = std::make_unique<CChangeDetails>(callbackGate(), *m_parts->comparison,
                                                        [this](std::int32_t groupId) { showRestored(groupId); });
    connectParts();
}

CHistoryPanel::~CHistoryPanel() = default;

void CHistoryPanel::createUi()
{
    m_parts->wide = new QSplitter(Qt::Horizontal, this);
    m_parts->wide->setChildrenCollapsible(false);
    m_parts->searchPane = new CSearchPane(m_parts->mayReadAudit, m_parts->wide);
    m_parts->tabs = new WQ::CStandardTabControl(m_parts->wide);
    m_parts->high = new QSplitter(Qt::Vertical, m_parts->tabs);
    m_parts->high->setChildrenCollapsible(false);
    m_parts->changes = new CChangeList(callbackGate(), m_parts->mayReadAudit, m_parts->high);
    m_parts->comparison = new CComparisonView(m_parts->high);
    m_parts->high->setStretchFactor(0, 3);
    m_parts->high->setStretchFactor(1, 2);
    m_parts->tabs->addTabWidget(QStringLiteral("修改记录"), m_parts->high);
    m_parts->findings = new CFindingsPage(callbackGate(), m_parts->mayReadAudit, m_parts->tabs);
    m_parts->tabs->addTabWidget(QStringLiteral("一致性检查"), m_parts->findings);
    // The client counts the rows of the first child that is a table: the changes are to be before the others.
    m_parts->searchPane->raise();
    m_parts->comparison->raise();
    m_parts->findings->raise();
    m_parts->wide->setStretchFactor(0, 0);
    m_parts->wide->setStretchFactor(1, 1);
    m_parts->wide->setSizes({SearchWidth, 4 * SearchWidth});
    setInnerStretchWidget(m_parts->wide, 0, 0, 0, 0);
}

void CHistoryPanel::connectParts()
{
    CChangeDetails& details = *m_parts->details;
    connect(m_parts->searchPane, &CSearchPane::sigSearchChanged, this, &CHistoryPanel::search);
    connect(m_parts->searchPane, &CSearchPane::sigStateWanted, this, &CHistoryPanel::showStateAt);
    connect(m_parts->changes, &CChangeList::sigCleared, this, [&details] { details.clear(); });
    connect(m_parts->changes, &CChangeList::sigOpened, this,
            [&details](const HistoryChange& change, std::optional<std::int64_t> previous) {
                details.open(change, previous);
            });
    connect(m_parts->changes, &CChangeList::sigEntered, this,
            [this] { m_parts->comparison->table().view()->setFocus(); });
    connect(m_parts->comparison, &CComparisonView::sigLeft, this,
            [this] { m_parts->changes->table().view()->setFocus(); });
    connect(m_parts->changes, &CChangeList::sigComparisonWanted, this,
            [&details](const HistoryChange& earlier, const HistoryChange& later) { details.compare(earlier, later); });
    connect(m_parts->changes, &CChangeList::sigUserFound, this,
            [this](const QString& userId, const QString& text) { m_parts->searchPane->users().addItem(userId, text); });
    connect(m_parts->findings, &CFindingsPage::sigGroupWanted, this, &CHistoryPanel::showGroup);
    connect(m_parts->tabs, &QTabWidget::currentChanged, this, &CHistoryPanel::checkIfShown);
}

void CHistoryPanel::setParam(const QString& param)
{
    const QStringList parts = param.split(QLatin1Char(';'));
    m_parts->changes->table().loadConfigStr(parts.value(0));
    m_parts->comparison->table().loadConfigStr(parts.value(1));
    m_parts->findings->table().loadConfigStr(parts.value(2));
    m_parts->wide->restoreState(QByteArray::fromBase64(parts.value(3).toLatin1()));
    m_parts->high->restoreState(QByteArray::fromBase64(parts.value(4).toLatin1()));
}

QString CHistoryPanel::param() const
{
    return QStringList{m_parts->changes->table().saveConfigStr(), m_parts->comparison->table().saveConfigStr(),
                       m_parts->findings->table().saveConfigStr(),
                       QString::fromLatin1(m_parts->wide->saveState().toBase64()),
                       QString::fromLatin1(m_parts->high->saveState().toBase64())}
        .join(QLatin1Char(';'));
}

bool CHistoryPanel::hasServer() const
{
    return !serverName().isEmpty() || !utils::CSingletonT<CKolmClientCenter>::instance()->isMultiServers();
}

void CHistoryPanel::switchSystem(int index, QString serverName)
{
    IkolmDockableWidget::switchSystem(index, serverName);
    m_parts->searchPane->groups().choose({});
    m_parts->searchPane->users().choose({});
    m_parts->searchPane->groups().setItems({});
    m_parts->searchPane->users().setItems({});
    m_parts->details->setServer(serverName);
    m_parts->findings->setServer(serverName, hasServer());
    m_parts->areFindingsOld = true;
    m_parts->isOld = true;
    m_parts->changes->clear();
    // A panel that nobody sees waits until it is activated.
    if (isInSight(*this)) {
        load();
    }
}

void CHistoryPanel::load()
{
    m_parts->isOld = false;
    loadNames();
    search();
    checkIfShown();
}

void CHistoryPanel::checkIfShown()
{
    if (m_parts->tabs->currentWidget() == m_parts->findings && m_parts->areFindingsOld) {
        m_parts->areFindingsOld = false;
        m_parts->findings->refresh();
    }
}

void CHistoryPanel::onActive()
{
    if (m_parts->isOld) {
        load();
    } else if (!m_parts->changes->isLoading()) {
        loadNames();
        m_parts->changes->refresh();
    }
}

void CHistoryPanel::loadNames()
{
    if (!hasServer()) {
        m_parts->names.drop();
        return;
    }
    m_parts->names.ask(
        serverName(), {{nvservice::DataType::AccountGroup, {}, 0}, {nvservice::DataType::Category, {}, 0}},
        [this](const std::vector<QueryAnswer>& answers) {
            QVector<QPair<QString, QString>> groups;
            for (const nvservice::IDataPtr& record : answers[0].records) {
                if (const auto group = boost::dynamic_pointer_cast<nvservice::CAccountGroup>(record)) {
                    groups.append({QString::number(group->groupId), WQ::sToQs(group->groupName)});
                }
            }
            // After a failure what is offered stays.
            if (answers[0].error.isSuccess()) {
                m_parts->searchPane->groups().setItems(groups);
            }
            CategoryNames categories;
            for (const nvservice::IDataPtr& record : answers[1].records) {
                if (const auto category = boost::dynamic_pointer_cast<nvservice::CCategoryInfo>(record)) {
                    categories[category->categoryId] = WQ::sToQs(category->categoryName);
                }
            }
            m_parts->comparison->setCategories(std::move(categories));
        });
}

void CHistoryPanel::search()
{
    const HistorySearch search = m_parts->searchPane->search();
    if (hasServer() && (m_parts->mayReadAudit || search.groupId >= 0)) {
        m_parts->changes->search(serverName(), search);
    } else {
        m_parts->changes->clear(hasServer() ? QStringLiteral("请在左侧选择一个账号组") : QString());
    }
}

void CHistoryPanel::onChanged(const QString& changedServer, const std::vector<nvservice::CChangeInfoPtr>& changes,
                              bool isComplete)
{
    if (changedServer == serverName() || (serverName().isEmpty() && hasServer())) {
        m_parts->changes->note(changes, isComplete);
    }
}

void CHistoryPanel::showStateAt(std::int64_t at)
{
    const std::int32_t chosen = m_parts->searchPane->search().groupId;
    const std::optional<HistoryChange> current = m_parts->changes->current();
    if (chosen >= 0) {
        m_parts->details->showStateAt(chosen, m_parts->searchPane->groupName(), at);
    } else if (current && current->groupId >= 0) {
        m_parts->details->showStateAt(current->groupId, WQ::sToQs(current->groupName), at);
    } else {
        m_parts->searchPane->askForGroup();
    }
}

void CHistoryPanel::showGroup(int groupId, const QString& groupName)
{
    const QString key = QString::number(groupId);
    m_parts->searchPane->groups().addItem(key, groupName);
    m_parts->searchPane->groups().choose(key);
    m_parts->tabs->setCurrentIndex(0);
    search();
    m_parts->changes->table().view()->setFocus();
}

void CHistoryPanel::showRestored(std::int32_t groupId)
{
    loadNames();
    if (groupId >= 0) {
        m_parts->changes->openNext(
            [groupId](const HistoryChange& change) { return change.isDone && change.groupId == groupId; });
        m_parts->changes->refresh();
        return;
    }
    // Without the audit the user chooses the group that has come back.
    if (m_parts->mayReadAudit) {
        m_parts->searchPane->groups().choose({});
        search();
        m_parts->changes->openNext([](const HistoryChange& change) {
            return change.isDone && change.operation == nvservice::EZvDataOperation::Add;
        });
    }
}

bool CHistoryPanel::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type != WQ::ButtonClicked) {
        return IkolmDockableWidget::handleEvent(type, id, param, text, data);
    }
    switch (id) {
    case RestoreButtonId:
        m_parts->details->preview();
        return true;
    case ConfirmButtonId:
        m_parts->details->restore();
        return true;
    case AbandonButtonId:
        m_parts->details->abandon();
        return true;
    default:
        return IkolmDockableWidget::handleEvent(type, id, param, text, data);
    }
}

} // namespace QAV
