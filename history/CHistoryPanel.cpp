// SPDX-License-Identifier: Apache-2.0
#include "history/CHistoryPanel.h"

#include "history/CChangeDetails.h"
#include "history/CPickList.h"
#include "history/CTextModel.h"
#include "history/CTextRow.h"
#include "history/ControlId.h"
#include "history/HistoryPanelParts.h"
#include "history/TimeInput.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/EmptyReason.h>
#include <WQ/EventType.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CCategoryInfo.h>
#include <nvservice/DataType.h>

#include <QAbstractItemView>
#include <QScrollBar>
#include <QSet>
#include <QSplitter>

#include <boost/make_shared.hpp>

#include <tuple>

namespace QAV
{

CHistoryPanel::CHistoryPanel(QWidget* parent)
    : IkolmDockableWidget(true, QStringLiteral("qavHistory"), parent, true),
      m_parts(std::make_unique<Parts>(
          callbackGate(), [this](const QueryAnswer& answer) { takePage(answer); },
          [this](const QueryAnswer& answer) { takeNewest(answer); }))
{
    createUi();
    m_parts->details = std::make_unique<CChangeDetails>(callbackGate(), *m_parts->comparison,
                                                        [this](std::int32_t groupId) { showRestored(groupId); });
    connect(m_parts->searchPane, &CSearchPane::sigSearchChanged, this, &CHistoryPanel::search);
    connect(m_parts->findings, &CFindingsPage::sigGroupWanted, this, &CHistoryPanel::showGroup);
    connect(m_parts->table, &WQ::CStandardHpfTable::sigCurrentKeyChanged, this, &CHistoryPanel::openRow);
    connect(m_parts->table, &WQ::CStandardHpfTable::sigRowActivated, this, [this](const QString& key) {
        openRow(key);
        m_parts->comparison->table().view()->setFocus();
    });
    connect(m_parts->table->view()->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &CHistoryPanel::loadMoreIfNeeded);
    connect(m_parts->tabs, &QTabWidget::currentChanged, this, &CHistoryPanel::checkIfShown);
    showState();
}

CHistoryPanel::~CHistoryPanel() = default;

void CHistoryPanel::setParam(const QString& param)
{
    const QStringList parts = param.split(QLatin1Char(';'));
    m_parts->table->loadConfigStr(parts.value(0));
    m_parts->comparison->table().loadConfigStr(parts.value(1));
    m_parts->findings->table().loadConfigStr(parts.value(2));
    m_parts->wide->restoreState(QByteArray::fromBase64(parts.value(3).toLatin1()));
    m_parts->high->restoreState(QByteArray::fromBase64(parts.value(4).toLatin1()));
}

QString CHistoryPanel::param() const
{
    return QStringList{m_parts->table->saveConfigStr(), m_parts->comparison->table().saveConfigStr(),
                       m_parts->findings->table().saveConfigStr(),
                       QString::fromLatin1(m_parts->wide->saveState().toBase64()),
                       QString::fromLatin1(m_parts->high->saveState().toBase64())}
        .join(QLatin1Char(';'));
}

bool CHistoryPanel::hasServer() const
{
    return !serverName().isEmpty() || !utils::CSingletonT<CKolmClientCenter>::instance()->isMultiServers();
}

bool CHistoryPanel::canSearch() const
{
    return hasServer() && (m_parts->mayReadAudit || m_parts->searchPane->search().groupId >= 0);
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
    m_parts->pages.stop();
    m_parts->newest.stop();
    m_parts->model->replaceRows({});
    showNotice({});
    showState();
    // A panel that nobody sees waits until it is activated.
    if (isVisible()) {
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
    } else if (m_parts->pages.state() != CPagedQuery::Loading) {
        loadNames();
        refresh();
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
    m_parts->newest.stop();
    m_parts->pages.stop();
    m_parts->isExpected = {};
    m_parts->details->clear();
    m_parts->model->replaceRows({});
    showNotice({});
    if (canSearch()) {
        const QueryPart part = queryOf(m_parts->searchPane->search(), m_parts->mayReadAudit);
        m_parts->pages.start(serverName(), part.dataType, part.key);
    }
    showState();
}

void CHistoryPanel::refresh()
{
    if (m_parts->model->getDataCount() == 0) {
        search();
        return;
    }
    showNotice({});
    const QueryPart part = queryOf(m_parts->searchPane->search(), m_parts->mayReadAudit);
    m_parts->newest.start(serverName(), part.dataType, part.key);
    showState();
}

namespace
{

std::vector<WQ::IBaseHpfTableDataPtr> rowsOf(const QueryAnswer& answer, const HistorySearch& search)
{
    std::vector<WQ::IBaseHpfTableDataPtr> rows;
    for (const nvservice::IDataPtr& record : answer.records) {
        const std::optional<HistoryChange> change = changeOf(*record);
        if (change && fits(search, *change)) {
            rows.push_back(boost::make_shared<CTextRow>(WQ::sToQs(record->getKey()), textsOf(*change), record,
                                                        change->isDone ? QString() : QString(WQ::key::Warning)));
        }
    }
    return rows;
}

} // namespace

void CHistoryPanel::offerUsers(const QueryAnswer& answer)
{
    for (const nvservice::IDataPtr& record : answer.records) {
        const std::optional<HistoryChange> change = changeOf(*record);
        if (change && !change->userId.empty()) {
            m_parts->searchPane->users().addItem(WQ::sToQs(change->userId), userText(change->userId, change->userName));
        }
    }
}

void CHistoryPanel::takePage(const QueryAnswer& answer)
{
    const bool isFirst = m_parts->model->getDataCount() == 0;
    for (const WQ::IBaseHpfTableDataPtr& row : rowsOf(answer, m_parts->searchPane->search())) {
        // What has come since the first page may shift a page.
        if (m_parts->model->getDataIndexByKey(row->getKey()) < 0) {
            m_parts->model->addData(row);
        }
    }
    m_parts->model->announce();
    offerUsers(answer);
    if (isFirst) {
        m_parts->table->adjustColumnWidth();
    }
    showState(WQ::sToQs(answer.error.errorMsg()));
    openExpected();
    loadMoreIfNeeded();
}

void CHistoryPanel::takeNewest(const QueryAnswer& answer)
{
    const std::vector<WQ::IBaseHpfTableDataPtr> found = rowsOf(answer, m_parts->searchPane->search());
    offerUsers(answer);
    QSet<QString> keys;
    bool isJoined = false;
    for (const WQ::IBaseHpfTableDataPtr& row : found) {
        keys.insert(row->getKey());
        isJoined = isJoined || m_parts->model->getDataIndexByKey(row->getKey()) >= 0;
    }
    if (!answer.error.isSuccess() || (!isJoined && m_parts->newest.state() == CPagedQuery::Complete)) {
        showState(WQ::sToQs(answer.error.errorMsg()));
    } else if (!isJoined) {
        search(); // so many are new that those in between are not there
        return;
    } else {
        joinRows(found, keys);
        showState();
    }
    openExpected();
}

void CHistoryPanel::joinRows(std::vector<WQ::IBaseHpfTableDataPtr> rows, const QSet<QString>& keys)
{
    const WQ::CStandardHpfTable& table = *m_parts->table;
    const QString current = table.currentKey();
    const bool isAtTop = table.view()->verticalScrollBar()->value() == 0;
    const WQ::IBaseHpfTableDataPtr top = m_parts->model->getDataByRow(table.view()->indexAt(QPoint(1, 1)).row());
    for (int index = 0; index < m_parts->model->getDataCount(); ++index) {
        const WQ::IBaseHpfTableDataPtr row = m_parts->model->getDataByIndex(index);
        if (!keys.contains(row->getKey())) {
            rows.push_back(row);
        }
    }
    m_parts->isJoining = true;
    m_parts->model->replaceRows(rows);
    if (!current.isEmpty()) {
        m_parts->table->setCurrentKey(current);
    }
    if (top && !isAtTop) {
        const int row = m_parts->model->getRowByDataIndex(m_parts->model->getDataIndexByKey(top->getKey()));
        table.view()->scrollTo(m_parts->model->index(row, 0), QAbstractItemView::PositionAtTop);
    } else {
        table.view()->verticalScrollBar()->setValue(0);
    }
    m_parts->isJoining = false;
}

void CHistoryPanel::loadMoreIfNeeded()
{
    const QScrollBar* const bar = m_parts->table->view()->verticalScrollBar();
    // A filter of the table may hide everything: it is no reason to read all there is.
    const bool isNeeded = bar->maximum() > 0 || !m_parts->model->isFiltered();
    if (!m_parts->isJoining && m_parts->pages.state() == CPagedQuery::HasMore && isNeeded &&
        bar->value() >= bar->maximum() - bar->pageStep()) {
        m_parts->pages.more();
        showState();
    }
}

void CHistoryPanel::showState(const QString& problem)
{
    const int count = m_parts->model->getDataCount();
    const bool hasFailed =
        m_parts->pages.state() == CPagedQuery::Failed || m_parts->newest.state() == CPagedQuery::Failed;
    QString text;
    QString reason;
    if (hasFailed) {
        text = QStringLiteral("查询失败：%1").arg(problem);
        reason = text;
    } else if (m_parts->pages.state() == CPagedQuery::Loading || m_parts->newest.state() == CPagedQuery::Loading) {
        text = QStringLiteral("正在加载…");
        reason = text;
    } else if (m_parts->pages.state() == CPagedQuery::HasMore) {
        text = QStringLiteral("已显示%1条，向下滚动加载更多").arg(count);
    } else if (m_parts->pages.state() == CPagedQuery::Complete) {
        text = QStringLiteral("共%1条").arg(count);
        reason = QStringLiteral("没有符合条件的修改记录");
    } else if (hasServer() && !canSearch()) {
        reason = QStringLiteral("请在左侧选择一个账号组");
    }
    m_parts->state->setText(text);
    m_parts->state->setColorKey(hasFailed ? QString(WQ::key::Warning) : QString());
    m_parts->retry->setVisible(hasFailed);
    WQ::setEmptyReason(*m_parts->table, reason);
}

void CHistoryPanel::showNotice(const QString& text)
{
    m_parts->notice->setText(text);
}

void CHistoryPanel::onChanged(const QString& changedServer, const std::vector<nvservice::CChangeInfoPtr>& changes,
                              bool isComplete)
{
    const bool isShown = changedServer == serverName() || (serverName().isEmpty() && hasServer());
    if (!isShown || m_parts->pages.state() == CPagedQuery::Idle) {
        return;
    }
    const std::int32_t groupId = m_parts->searchPane->search().groupId;
    const auto concerns = [groupId](const nvservice::CChangeInfoPtr& change) {
        return groupId < 0 || change->groupId == groupId;
    };
    if (!isComplete) {
        showNotice(QStringLiteral("可能有新的修改"));
        return;
    }
    const auto found = std::find_if(changes.begin(), changes.end(), concerns);
    if (found != changes.end()) {
        showNotice(QStringLiteral("有新的修改：%1 %2")
                       .arg(userText((*found)->userId, (*found)->userName), timeText((*found)->changedAt)));
    }
}

std::optional<HistoryChange> CHistoryPanel::changeOfRow(const QString& key) const
{
    const auto row = boost::dynamic_pointer_cast<CTextRow>(m_parts->model->getDataByKey(key));
    return row ? changeOf(*row->record()) : std::nullopt;
}

std::optional<std::int64_t> CHistoryPanel::revisionBefore(const QString& key) const
{
    const std::optional<HistoryChange> change = changeOfRow(key);
    for (int index = m_parts->model->getDataIndexByKey(key) + 1; index < m_parts->model->getDataCount(); ++index) {
        const std::optional<HistoryChange> earlier = changeOfRow(m_parts->model->getDataByIndex(index)->getKey());
        if (earlier && earlier->dataType == change->dataType && earlier->groupId == change->groupId) {
            return earlier->revision;
        }
    }
    return std::nullopt;
}

void CHistoryPanel::openRow(const QString& key)
{
    const std::optional<HistoryChange> change = changeOfRow(key);
    if (change && !m_parts->isJoining) {
        // With conditions that leave changes out, the one before in the table need not be the one before.
        const bool isWhole = m_parts->searchPane->search().user.isEmpty();
        m_parts->details->open(*change, isWhole && change->revision != 0 ? revisionBefore(key) : std::nullopt);
    }
}

void CHistoryPanel::compareSelected()
{
    const QStringList keys = m_parts->table->selectedKeys();
    if (keys.size() != 2) {
        WQ::CMessageTip::showTip(m_parts->compare, Qt::AlignBottom, QStringLiteral("请按住Ctrl键选择两条修改记录"), 3,
                                 WQ::MessageWarning, 0);
        return;
    }
    HistoryChange a = *changeOfRow(keys[0]);
    HistoryChange b = *changeOfRow(keys[1]);
    const auto order = [](const HistoryChange& change) { return std::tie(change.at, change.revision, change.entryId); };
    if (order(b) < order(a)) {
        std::swap(a, b);
    }
    m_parts->details->compare(a, b);
}

void CHistoryPanel::showStateAtTime()
{
    const std::optional<std::int64_t> at = timeOf(m_parts->at->getText(), true);
    if (!at) {
        askForTime(*m_parts->at);
        return;
    }
    const std::optional<HistoryChange> current = changeOfRow(m_parts->table->currentKey());
    const std::int32_t chosen = m_parts->searchPane->search().groupId;
    if (chosen >= 0) {
        m_parts->details->showStateAt(chosen, m_parts->searchPane->groupName(), *at);
    } else if (current && current->groupId >= 0) {
        m_parts->details->showStateAt(current->groupId, WQ::sToQs(current->groupName), *at);
    } else {
        WQ::CMessageTip::showTip(m_parts->at, Qt::AlignBottom, QStringLiteral("请先选择一个账号组或一条修改记录"), 3,
                                 WQ::MessageWarning, 0);
    }
}

void CHistoryPanel::showGroup(int groupId, const QString& groupName)
{
    const QString key = QString::number(groupId);
    m_parts->searchPane->groups().addItem(key, groupName);
    m_parts->searchPane->groups().choose(key);
    m_parts->tabs->setCurrentIndex(0);
    search();
    m_parts->table->view()->setFocus();
}

void CHistoryPanel::showRestored(std::int32_t groupId)
{
    if (groupId >= 0) {
        m_parts->isExpected = [groupId](const HistoryChange& change) {
            return change.isDone && change.groupId == groupId;
        };
        refresh();
        return;
    }
    loadNames();
    // Without the audit the user chooses the group that has come back.
    if (m_parts->mayReadAudit) {
        m_parts->searchPane->groups().choose({});
        search();
        m_parts->isExpected = [](const HistoryChange& change) {
            return change.isDone && change.operation == nvservice::EZvDataOperation::Add;
        };
    }
}

void CHistoryPanel::openExpected()
{
    const auto isExpected = std::exchange(m_parts->isExpected, {});
    for (int index = 0; isExpected && index < m_parts->model->getDataCount(); ++index) {
        const QString key = m_parts->model->getDataByIndex(index)->getKey();
        const std::optional<HistoryChange> change = changeOfRow(key);
        if (change && isExpected(*change)) {
            m_parts->table->setCurrentKey(key);
            openRow(key);
            return;
        }
    }
}

bool CHistoryPanel::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonOrEnter && id == AtEditId) {
        showStateAtTime();
        return true;
    }
    if (type != WQ::ButtonClicked) {
        return IkolmDockableWidget::handleEvent(type, id, param, text, data);
    }
    switch (id) {
    case CompareButtonId:
        compareSelected();
        return true;
    case StateButtonId:
        showStateAtTime();
        return true;
    case HistoryRefreshButtonId:
        refresh();
        return true;
    case RetryButtonId:
        retry();
        return true;
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

void CHistoryPanel::retry()
{
    if (m_parts->pages.state() == CPagedQuery::Failed) {
        m_parts->pages.more();
        showState();
    } else {
        refresh();
    }
}

} // namespace QAV
