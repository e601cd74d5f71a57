// SPDX-License-Identifier: Apache-2.0
#include "history/CChangeList.h"

#include "history/CTextModel.h"
#include "history/CTextRow.h"
#include "history/ControlId.h"

#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EventType.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>

#include <QHBoxLayout>
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
    : CBaseWidget(QStringLiteral("historyChanges"), false, parent), m_isAudit(isAudit)
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(createToolBar());
    m_pages = new CPagedTable(
        gate, ChangeTableId, headersOfChanges(), [this](const QueryAnswer& answer) { return rowsOf(answer); }, this);
    layout->addWidget(m_pages, 1);
    table().setAccessibleName(QStringLiteral("修改记录"));
    for (const int column : {UserColumn, GroupColumn, KindColumn, HistoryOperationColumn, OutcomeColumn}) {
        table().setColumnFilterable(column, true);
    }
    connect(m_pages, &CPagedTable::sigCurrentChanged, this, &CChangeList::openRow);
    connect(&table(), &WQ::CStandardHpfTable::sigRowActivated, this, [this](const QString& key) {
        openRow(key);
        emit sigEntered();
    });
    connect(m_pages, &CPagedTable::sigRefreshing, this, &CChangeList::dropNotice);
    connect(m_pages, &CPagedTable::sigCleared, this, [this] {
        dropNotice();
        emit sigCleared();
    });
    connect(m_pages, &CPagedTable::sigAnswered, this, [this] {
        dropNoticeIfShown();
        openWanted();
    });
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

void CChangeList::search(const QString& serverName, const HistorySearch& search)
{
    m_wanted = {};
    m_search = search;
    m_pages->start(serverName, queryOf(search, m_isAudit));
}

void CChangeList::clear(const QString& reason)
{
    m_wanted = {};
    m_pages->clear(reason);
}

CPagedTable::Rows CChangeList::rowsOf(const QueryAnswer& answer)
{
    CPagedTable::Rows rows;
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

void CChangeList::note(const std::vector<nvservice::CChangeInfoPtr>& changes, bool isComplete)
{
    if (m_pages->isIdle()) {
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
    for (int index = 0; index < m_pages->model().getDataCount(); ++index) {
        const std::optional<HistoryChange> shown = changeOfRow(m_pages->model().getDataByIndex(index));
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
    return changeOfRow(m_pages->model().getDataByKey(key));
}

std::optional<HistoryChange> CChangeList::current() const
{
    return changeOfKey(table().currentKey());
}

std::optional<std::int64_t> CChangeList::revisionBefore(const QString& key) const
{
    const std::optional<HistoryChange> change = changeOfKey(key);
    for (int index = m_pages->model().getDataIndexByKey(key) + 1; index < m_pages->model().getDataCount(); ++index) {
        const std::optional<HistoryChange> earlier = changeOfRow(m_pages->model().getDataByIndex(index));
        if (earlier && earlier->dataType == change->dataType && earlier->groupId == change->groupId) {
            return earlier->revision;
        }
    }
    return std::nullopt;
}

void CChangeList::openRow(const QString& key)
{
    const std::optional<HistoryChange> change = changeOfKey(key);
    if (change) {
        // With conditions that leave changes out, the one before in the table need not be the one before.
        const bool isWhole = m_search.user.isEmpty();
        emit sigOpened(*change, isWhole && change->revision != 0 ? revisionBefore(key) : std::nullopt);
    }
}

void CChangeList::openWanted()
{
    const Wanted isWanted = std::exchange(m_wanted, {});
    for (int index = 0; isWanted && index < m_pages->model().getDataCount(); ++index) {
        const WQ::IBaseHpfTableDataPtr row = m_pages->model().getDataByIndex(index);
        const std::optional<HistoryChange> change = changeOfRow(row);
        if (change && isWanted(*change)) {
            const QString key = row->getKey();
            // A new current row opens by itself.
            if (table().currentKey() == key || !table().setCurrentKey(key)) {
                openRow(key);
            }
            return;
        }
    }
}

void CChangeList::compareSelected()
{
    const QStringList keys = table().selectedKeys();
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
    default:
        return CBaseWidget::handleEvent(type, id, param, text, data);
    }
}

} // namespace QAV
