// SPDX-License-Identifier: Apache-2.0
#include "history/CChangeList.h"

#include "history/CTextModel.h"
#include "history/CTextRow.h"
#include "history/ControlId.h"

#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EmptyReason.h>
#include <WQ/EventType.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QSet>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

#include <tuple>

namespace QAV
{

namespace
{

/// Empty without a row.
std::optional<HistoryChange> changeOfRow(const WQ::IBaseHpfTableDataPtr& data)
{
    const auto row = boost::dynamic_pointer_cast<CTextRow>(data);
    return row ? changeOf(*row->record()) : std::nullopt;
}

} // namespace

CChangeList::CChangeList(const CCallbackGate& gate, bool isAudit, QWidget* parent)
    : CBaseWidget(QStringLiteral("historyChanges"), false, parent), m_isAudit(isAudit),
      m_pages(gate, [this](const QueryAnswer& answer) { takePage(answer); }),
      m_newest(gate, [this](const QueryAnswer& answer) { takeNewest(answer); }),
      m_model(new CTextModel(headersOfChanges()))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(createToolBar());
    createTable();
    layout->addWidget(m_table, 1);
    layout->addLayout(createStateBar());
    showState();
}

QLayout* CChangeList::createToolBar()
{
    m_compare = new WQ::CSmallNormalButton(CompareButtonId, true, WQ::NormalButton, this);
    m_compare->setText(QStringLiteral("比较所选两项"));
    m_notice = new WQ::CSimpleTextWidget(false, NoControl, QString(), this);
    m_notice->setColorKey(WQ::key::Link);
    m_notice->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* const refreshButton = new WQ::CSmallNormalButton(HistoryRefreshButtonId, true, WQ::NormalButton, this);
    refreshButton->setText(QStringLiteral("刷新"));
    refreshButton->setToolTip(QStringLiteral("刷新（F5）"));
    auto* const bar = new QHBoxLayout;
    bar->setContentsMargins(6, 4, 6, 4);
    bar->setSpacing(8);
    bar->addWidget(m_compare);
    bar->addWidget(m_notice, 1);
    bar->addWidget(refreshButton);
    return bar;
}

void CChangeList::createTable()
{
    m_table = new WQ::CStandardHpfTable(ChangeTableId, this, WQ::MenuAll);
    m_table->setDataModel(m_model);
    m_table->setFlags(m_table->flags() & ~WQ::TableCellSelection);
    m_table->setAccessibleName(QStringLiteral("修改记录"));
    for (const int column : {UserColumn, GroupColumn, KindColumn, HistoryOperationColumn, OutcomeColumn}) {
        m_table->setColumnFilterable(column, true);
    }
    connect(m_table, &WQ::CStandardHpfTable::sigCurrentKeyChanged, this, &CChangeList::openRow);
    connect(m_table, &WQ::CStandardHpfTable::sigRowActivated, this, [this](const QString& key) {
        openRow(key);
        emit sigEntered();
    });
    connect(m_model, &CTextModel::sigFilterChanged, this, &CChangeList::onFiltered);
    const QScrollBar* const bar = m_table->view()->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, &CChangeList::onScrolled);
    connect(bar, &QScrollBar::rangeChanged, this, &CChangeList::loadMoreIfNeeded);
}

QLayout* CChangeList::createStateBar()
{
    m_state = new WQ::CSimpleTextWidget(false, NoControl, QString(), this);
    m_action = new WQ::CSmallNormalButton(ListActionButtonId, true, WQ::NormalButton, this);
    auto* const bar = new QHBoxLayout;
    bar->setContentsMargins(6, 2, 6, 2);
    bar->addWidget(m_state, 1);
    bar->addWidget(m_action);
    // The button comes and goes without moving anything.
    bar->addStrut(m_action->sizeHint().height());
    return bar;
}

void CChangeList::search(const QString& serverName, const HistorySearch& search)
{
    m_wanted = {};
    m_reason.clear();
    m_serverName = serverName;
    m_search = search;
    start();
}

void CChangeList::start()
{
    stop();
    const QueryPart part = queryOf(m_search, m_isAudit);
    m_pages.start(m_serverName, part.dataType, part.key);
    showState();
}

void CChangeList::clear(const QString& reason)
{
    m_wanted = {};
    m_reason = reason;
    stop();
    showState();
}

void CChangeList::stop()
{
    m_pages.stop();
    m_newest.stop();
    m_wantsMore = false;
    m_model->replaceRows({});
    dropNotice();
    emit sigCleared();
}

void CChangeList::refresh()
{
    if (m_pages.state() == CPagedQuery::Idle) {
        return;
    }
    if (m_model->getDataCount() == 0) {
        start();
        return;
    }
    dropNotice();
    const QueryPart part = queryOf(m_search, m_isAudit);
    m_newest.start(m_serverName, part.dataType, part.key);
    showState();
}

std::vector<WQ::IBaseHpfTableDataPtr> CChangeList::rowsOf(const QueryAnswer& answer)
{
    if (!answer.error.isSuccess()) {
        m_problem = WQ::sToQs(answer.error.errorMsg());
    }
    std::vector<WQ::IBaseHpfTableDataPtr> rows;
    for (const nvservice::IDataPtr& record : answer.records) {
        const std::optional<HistoryChange> change = changeOf(*record);
        if (!change) {
            continue;
        }
        if (!change->userId.empty()) {
            emit sigUserFound(WQ::sToQs(change->userId), userText(change->userId, change->userName));
        }
        if (fits(m_search, *change)) {
            rows.push_back(boost::make_shared<CTextRow>(WQ::sToQs(record->getKey()), textsOf(*change), record,
                                                        change->isDone ? QString() : QString(WQ::key::Warning)));
        }
    }
    return rows;
}

void CChangeList::takePage(const QueryAnswer& answer)
{
    const bool isFirst = m_model->getDataCount() == 0;
    for (const WQ::IBaseHpfTableDataPtr& row : rowsOf(answer)) {
        // What has come since the first page may shift a page.
        if (m_model->getDataIndexByKey(row->getKey()) < 0) {
            m_model->addData(row);
        }
    }
    m_model->announce();
    if (isFirst) {
        m_table->adjustColumnWidth();
        dropNoticeIfShown();
    }
    showState();
    if (m_newest.state() != CPagedQuery::Loading) {
        openWanted();
    }
    loadMoreIfNeeded();
}

void CChangeList::takeNewest(const QueryAnswer& answer)
{
    std::vector<WQ::IBaseHpfTableDataPtr> rows = rowsOf(answer);
    QSet<QString> keys;
    bool isJoined = m_newest.state() == CPagedQuery::Complete; // these are all
    for (const WQ::IBaseHpfTableDataPtr& row : rows) {
        keys.insert(row->getKey());
        isJoined = isJoined || m_model->getDataIndexByKey(row->getKey()) >= 0;
    }
    if (answer.error.isSuccess() && !isJoined) {
        start(); // so many are new that those in between are not there
        return;
    }
    if (answer.error.isSuccess()) {
        for (int index = 0; m_newest.state() == CPagedQuery::HasMore && index < m_model->getDataCount(); ++index) {
            const WQ::IBaseHpfTableDataPtr row = m_model->getDataByIndex(index);
            if (!keys.contains(row->getKey())) {
                rows.push_back(row);
            }
        }
        replaceRows(rows);
        dropNoticeIfShown();
    }
    showState();
    openWanted();
}

void CChangeList::replaceRows(const std::vector<WQ::IBaseHpfTableDataPtr>& rows)
{
    const QString current = m_table->currentKey();
    QScrollBar& bar = *m_table->view()->verticalScrollBar();
    const bool isAtTop = bar.value() == 0;
    const WQ::IBaseHpfTableDataPtr top = m_model->getDataByRow(m_table->view()->indexAt(QPoint(1, 1)).row());
    m_isReplacing = true;
    m_model->replaceRows(rows);
    if (!current.isEmpty()) {
        m_table->setCurrentKey(current);
    }
    const int row = top && !isAtTop ? m_model->getRowByDataIndex(m_model->getDataIndexByKey(top->getKey())) : -1;
    if (row >= 0) {
        m_table->view()->scrollTo(m_model->index(row, 0), QAbstractItemView::PositionAtTop);
    } else {
        bar.setValue(0);
    }
    m_isReplacing = false;
}

bool CChangeList::isAtEnd() const
{
    const QScrollBar* const bar = m_table->view()->verticalScrollBar();
    return bar->value() >= bar->maximum() - bar->pageStep();
}

void CChangeList::onScrolled(int position)
{
    // A filter that leaves less moves the view up; nobody asks for more by that.
    const bool isAskedFor = position > m_position && isAtEnd() && !m_isReplacing;
    m_position = position;
    if (isAskedFor) {
        m_wantsMore = true;
        showState();
    }
    loadMoreIfNeeded();
}

void CChangeList::onFiltered()
{
    if (!m_isReplacing) {
        m_wantsMore = false;
        showState();
        loadMoreIfNeeded();
    }
}

void CChangeList::loadMoreIfNeeded()
{
    if (m_isReplacing || m_pages.state() != CPagedQuery::HasMore) {
        return;
    }
    if (!isAtEnd()) {
        m_wantsMore = false;
    } else if (m_wantsMore || !m_model->isFiltered()) {
        // A filter may hide everything: by itself it is no reason to read all there is.
        m_pages.more();
        showState();
    }
}

CChangeList::EAction CChangeList::action() const
{
    const bool isLoadingMore = isLoading() && m_model->getDataCount() > 0;
    if (m_pages.state() == CPagedQuery::Failed || m_newest.state() == CPagedQuery::Failed) {
        return Retry;
    }
    if (!m_model->isFiltered() || (m_pages.state() != CPagedQuery::HasMore && !isLoadingMore)) {
        return NoAction;
    }
    return isLoadingMore && m_wantsMore ? Stop : LoadMore;
}

void CChangeList::act()
{
    const EAction action = this->action();
    if (action == Retry) {
        retry();
        return;
    }
    m_wantsMore = action == LoadMore;
    if (m_wantsMore) {
        m_pages.more();
    }
    showState();
}

QString CChangeList::countText() const
{
    const bool isWhole = m_pages.state() == CPagedQuery::Complete;
    const QString count = QString::number(m_model->getDataCount());
    if (m_model->isFiltered()) {
        return (isWhole ? QStringLiteral("共%1条，筛选出%2条") : QStringLiteral("已加载%1条，筛选出%2条"))
            .arg(count, QString::number(m_model->rowCount()));
    }
    return (isWhole ? QStringLiteral("共%1条") : QStringLiteral("已显示%1条，向下滚动加载更多")).arg(count);
}

void CChangeList::showState()
{
    const EAction action = this->action();
    QString text;
    QString reason = m_reason; // the table says itself that its filter hides everything
    if (action == Retry) {
        text = QStringLiteral("查询失败：%1").arg(m_problem);
        reason = text;
    } else if (isLoading() || m_newest.state() == CPagedQuery::Loading) {
        text = QStringLiteral("正在加载…");
        reason = text;
        if (action != NoAction) {
            text += countText();
        }
    } else if (m_pages.state() == CPagedQuery::HasMore) {
        text = countText();
    } else if (m_pages.state() == CPagedQuery::Complete) {
        text = countText();
        reason = QStringLiteral("没有符合条件的修改记录");
    }
    m_state->setText(text);
    m_state->setColorKey(action == Retry ? QString(WQ::key::Warning) : QString());
    showAction(action);
    WQ::setEmptyReason(*m_table, reason);
}

void CChangeList::showAction(EAction action)
{
    static const QString Texts[] = {{}, QStringLiteral("加载更多"), QStringLiteral("停止"), QStringLiteral("重试")};
    // Whoever has pressed a button that goes reads what comes instead; with another reason the view would open a row.
    if (action == NoAction && m_action->hasFocus()) {
        m_table->view()->setFocus(Qt::MouseFocusReason);
    }
    m_action->setText(Texts[action]);
    m_action->setVisible(action != NoAction);
}

void CChangeList::note(const std::vector<nvservice::CChangeInfoPtr>& changes, bool isComplete)
{
    if (m_pages.state() == CPagedQuery::Idle) {
        return;
    }
    if (!isComplete) {
        m_noted.reset();
        m_notice->setText(QStringLiteral("可能有新的修改"));
        return;
    }
    for (const nvservice::CChangeInfoPtr& change : changes) {
        const bool isWanted = m_search.groupId < 0 || change->groupId == m_search.groupId;
        if (isWanted && (!m_noted || change->changedAt >= m_noted->changedAt)) {
            m_noted = change;
            m_notice->setText(QStringLiteral("有新的修改：%1 %2")
                                  .arg(userText(change->userId, change->userName), timeText(change->changedAt)));
        }
    }
    dropNoticeIfShown();
}

void CChangeList::dropNotice()
{
    m_noted.reset();
    m_notice->setText({});
}

void CChangeList::dropNoticeIfShown()
{
    if (m_noted && isShown(*m_noted)) {
        dropNotice();
    }
}

bool CChangeList::isShown(const nvservice::CChangeInfo& change) const
{
    for (int index = 0; index < m_model->getDataCount(); ++index) {
        const std::optional<HistoryChange> shown = changeOfRow(m_model->getDataByIndex(index));
        if (!shown || shown->at < change.changedAt) {
            return false;
        }
        if (shown->isDone && shown->at == change.changedAt && shown->groupId == change.groupId) {
            return true;
        }
    }
    return false;
}

std::optional<HistoryChange> CChangeList::changeOfKey(const QString& key) const
{
    return changeOfRow(m_model->getDataByKey(key));
}

std::optional<HistoryChange> CChangeList::current() const
{
    return changeOfKey(m_table->currentKey());
}

std::optional<std::int64_t> CChangeList::revisionBefore(const QString& key) const
{
    const std::optional<HistoryChange> change = changeOfKey(key);
    for (int index = m_model->getDataIndexByKey(key) + 1; index < m_model->getDataCount(); ++index) {
        const std::optional<HistoryChange> earlier = changeOfRow(m_model->getDataByIndex(index));
        if (earlier && earlier->dataType == change->dataType && earlier->groupId == change->groupId) {
            return earlier->revision;
        }
    }
    return std::nullopt;
}

void CChangeList::openRow(const QString& key)
{
    const std::optional<HistoryChange> change = changeOfKey(key);
    if (change && !m_isReplacing) {
        // With conditions that leave changes out, the one before in the table need not be the one before.
        const bool isWhole = m_search.user.isEmpty();
        emit sigOpened(*change, isWhole && change->revision != 0 ? revisionBefore(key) : std::nullopt);
    }
}

void CChangeList::openWanted()
{
    const Wanted isWanted = std::exchange(m_wanted, {});
    for (int index = 0; isWanted && index < m_model->getDataCount(); ++index) {
        const WQ::IBaseHpfTableDataPtr row = m_model->getDataByIndex(index);
        const std::optional<HistoryChange> change = changeOfRow(row);
        if (change && isWanted(*change)) {
            const QString key = row->getKey();
            // A new current row opens by itself.
            if (m_table->currentKey() == key || !m_table->setCurrentKey(key)) {
                openRow(key);
            }
            return;
        }
    }
}

void CChangeList::compareSelected()
{
    const QStringList keys = m_table->selectedKeys();
    if (keys.size() != 2) {
        WQ::CMessageTip::showTip(m_compare, Qt::AlignBottom, QStringLiteral("请按住Ctrl键选择两条修改记录"), 3,
                                 WQ::MessageWarning, 0);
        return;
    }
    HistoryChange a = *changeOfKey(keys[0]);
    HistoryChange b = *changeOfKey(keys[1]);
    const auto order = [](const HistoryChange& change) { return std::tie(change.at, change.revision, change.entryId); };
    if (order(b) < order(a)) {
        std::swap(a, b);
    }
    emit sigComparisonWanted(a, b);
}

void CChangeList::retry()
{
    if (m_pages.state() == CPagedQuery::Failed) {
        m_pages.more();
        showState();
    } else {
        refresh();
    }
}

bool CChangeList::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type != WQ::ButtonClicked) {
        return CBaseWidget::handleEvent(type, id, param, text, data);
    }
    switch (id) {
    case CompareButtonId:
        compareSelected();
        return true;
    case HistoryRefreshButtonId:
        refresh();
        return true;
    case ListActionButtonId:
        act();
        return true;
    default:
        return CBaseWidget::handleEvent(type, id, param, text, data);
    }
}

} // namespace QAV
