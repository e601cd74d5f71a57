// SPDX-License-Identifier: Apache-2.0
#include "history/CPagedTable.h"

#include "history/CTextModel.h"
#include "history/ControlId.h"

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

namespace QAV
{

CPagedTable::CPagedTable(const CCallbackGate& gate, int tableId, const QStringList& headers, RowsOf rowsOf,
                         QWidget* parent)
    : CBaseWidget(QStringLiteral("historyTable"), false, parent), m_rowsOf(std::move(rowsOf)),
      m_pages(gate, [this](const QueryAnswer& answer) { takePage(answer); }),
      m_newest(gate, [this](const QueryAnswer& answer) { takeNewest(answer); }), m_model(new CTextModel(headers)),
      m_table(new WQ::CStandardHpfTable(tableId, this, WQ::MenuAll))
{
    m_table->setDataModel(m_model);
    m_table->setFlags(m_table->flags() & ~WQ::TableCellSelection);
    connect(m_table, &WQ::CStandardHpfTable::sigCurrentKeyChanged, this, [this](const QString& key) {
        if (!m_isReplacing) {
            emit sigCurrentChanged(key);
        }
    });
    connect(m_model, &CTextModel::sigFilterChanged, this, &CPagedTable::onFiltered);
    const QScrollBar* const bar = m_table->view()->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, &CPagedTable::onScrolled);
    connect(bar, &QScrollBar::rangeChanged, this, &CPagedTable::loadMoreIfNeeded);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_table, 1);
    layout->addLayout(createStateBar());
    showState();
}

QLayout* CPagedTable::createStateBar()
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

void CPagedTable::start(const QString& serverName, const QueryPart& query)
{
    m_reason.clear();
    m_serverName = serverName;
    m_query = query;
    restart();
}

void CPagedTable::restart()
{
    stop();
    m_pages.start(m_serverName, m_query.dataType, m_query.key);
    showState();
}

void CPagedTable::clear(const QString& reason)
{
    m_reason = reason;
    stop();
    showState();
}

void CPagedTable::stop()
{
    m_pages.stop();
    m_newest.stop();
    m_model->replaceRows({});
    emit sigCleared();
}

void CPagedTable::refresh()
{
    if (isIdle()) {
        return;
    }
    if (m_model->getDataCount() == 0) {
        restart();
        return;
    }
    emit sigRefreshing();
    m_newest.start(m_serverName, m_query.dataType, m_query.key);
    showState();
}

CPagedTable::Rows CPagedTable::rowsOf(const QueryAnswer& answer)
{
    if (!answer.error.isSuccess()) {
        m_problem = WQ::sToQs(answer.error.errorMsg());
    }
    return m_rowsOf(answer);
}

void CPagedTable::takePage(const QueryAnswer& answer)
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
    }
    showState();
    if (m_newest.state() != CPagedQuery::Loading) {
        emit sigAnswered();
    }
    loadMoreIfNeeded();
}

void CPagedTable::takeNewest(const QueryAnswer& answer)
{
    Rows rows = rowsOf(answer);
    QSet<QString> keys;
    bool isJoined = m_newest.state() == CPagedQuery::Complete; // these are all
    for (const WQ::IBaseHpfTableDataPtr& row : rows) {
        keys.insert(row->getKey());
        isJoined = isJoined || m_model->getDataIndexByKey(row->getKey()) >= 0;
    }
    if (answer.error.isSuccess() && !isJoined) {
        restart(); // so many are new that those in between are not there
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
    }
    showState();
    emit sigAnswered();
}

void CPagedTable::replaceRows(const Rows& rows)
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

bool CPagedTable::isAtEnd() const
{
    const QScrollBar* const bar = m_table->view()->verticalScrollBar();
    return bar->value() >= bar->maximum() - bar->pageStep();
}

void CPagedTable::onScrolled(int position)
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

void CPagedTable::onFiltered()
{
    if (!m_isReplacing) {
        m_wantsMore = false;
        showState();
        loadMoreIfNeeded();
    }
}

void CPagedTable::loadMoreIfNeeded()
{
    // A filter may hide everything: by itself it is no reason to read all there is.
    const bool isWanted = m_wantsMore || !m_model->isFiltered();
    if (!m_isReplacing && m_pages.state() == CPagedQuery::HasMore && isWanted && isAtEnd()) {
        m_pages.more();
        showState();
    }
}

CPagedTable::EAction CPagedTable::action() const
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

void CPagedTable::act()
{
    switch (action()) {
    case NoAction:
        break;
    case LoadMore:
        m_wantsMore = true;
        m_pages.more();
        break;
    case Stop:
        m_wantsMore = false;
        break;
    case Retry:
        if (m_pages.state() != CPagedQuery::Failed) {
            refresh();
            return;
        }
        m_pages.more();
        break;
    }
    showState();
}

QString CPagedTable::countText() const
{
    const bool isWhole = m_pages.state() == CPagedQuery::Complete;
    const QString count = QString::number(m_model->getDataCount());
    if (m_model->isFiltered()) {
        return (isWhole ? QStringLiteral("共%1条，筛选出%2条") : QStringLiteral("已加载%1条，筛选出%2条"))
            .arg(count, QString::number(m_model->rowCount()));
    }
    return (isWhole ? QStringLiteral("共%1条") : QStringLiteral("已显示%1条，向下滚动加载更多")).arg(count);
}

void CPagedTable::showState()
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

void CPagedTable::showAction(EAction action)
{
    static const QString Texts[] = {{}, QStringLiteral("加载更多"), QStringLiteral("停止"), QStringLiteral("重试")};
    // Whoever has pressed a button that goes reads what comes instead; with another reason the view would open a row.
    if (action == NoAction && m_action->hasFocus()) {
        m_table->view()->setFocus(Qt::MouseFocusReason);
    }
    m_action->setText(Texts[action]);
    m_action->setVisible(action != NoAction);
}

bool CPagedTable::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == ListActionButtonId) {
        act();
        return true;
    }
    return CBaseWidget::handleEvent(type, id, param, text, data);
}

} // namespace QAV
