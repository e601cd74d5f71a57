// SPDX-License-Identifier: Apache-2.0
#include "history/CTextModel.h"
#include "history/ControlId.h"
#include "history/HistoryPanelParts.h"
#include "history/TimeInput.h"

#include <QAV/CUserManager.h>
#include <WQ/CLineEdit.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/ResourceKeys.h>
#include <nvservice/UserRight.h>

#include <QHBoxLayout>
#include <QSplitter>
#include <QVBoxLayout>

namespace QAV
{

namespace
{

constexpr int SearchWidth = 240;

WQ::CSmallNormalButton* createHistoryButton(int id, const QString& text, QWidget* parent)
{
    auto* const button = new WQ::CSmallNormalButton(id, true, WQ::NormalButton, parent);
    button->setText(text);
    return button;
}

} // namespace

void CHistoryPanel::createUi()
{
    m_parts->mayReadAudit =
        utils::CSingletonT<CUserManager>::instance()->checkUserAuth(nvservice::UserRight::ReadAudit);
    m_parts->wide = new QSplitter(Qt::Horizontal, this);
    m_parts->wide->setChildrenCollapsible(false);
    m_parts->searchPane = new CSearchPane(m_parts->mayReadAudit, m_parts->wide);
    addStateSearch();
    m_parts->tabs = new WQ::CStandardTabControl(m_parts->wide);
    m_parts->tabs->addTabWidget(QStringLiteral("修改记录"), createChanges());
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

void CHistoryPanel::addStateSearch()
{
    QWidget* const pane = m_parts->searchPane;
    m_parts->at = new WQ::CLineEdit(AtEditId, pane);
    showTimeHint(*m_parts->at);
    m_parts->at->setAccessibleName(QStringLiteral("查看状态的时间"));
    auto* const row = new QHBoxLayout;
    row->setSpacing(4);
    row->addWidget(m_parts->at, 1);
    row->addWidget(createHistoryButton(StateButtonId, QStringLiteral("查看当时状态"), pane));
    static_cast<QBoxLayout*>(pane->layout())->addLayout(row);
}

QWidget* CHistoryPanel::createChanges()
{
    m_parts->high = new QSplitter(Qt::Vertical, m_parts->tabs);
    m_parts->high->setChildrenCollapsible(false);
    auto* const page = new QWidget(m_parts->high);
    m_parts->table = new WQ::CStandardHpfTable(ChangeTableId, page, WQ::MenuAll);
    m_parts->model = new CTextModel(headersOfChanges());
    m_parts->table->setDataModel(m_parts->model);
    m_parts->table->setFlags(m_parts->table->flags() & ~WQ::TableCellSelection);
    m_parts->table->setAccessibleName(QStringLiteral("修改记录"));
    for (const int column : {UserColumn, GroupColumn, KindColumn, HistoryOperationColumn, OutcomeColumn}) {
        m_parts->table->setColumnFilterable(column, true);
    }
    m_parts->state = new WQ::CSimpleTextWidget(false, NoControl, QString(), page);
    m_parts->retry = createHistoryButton(RetryButtonId, QStringLiteral("重试"), page);
    auto* const stateBar = new QHBoxLayout;
    stateBar->setContentsMargins(6, 2, 6, 2);
    stateBar->addWidget(m_parts->state, 1);
    stateBar->addWidget(m_parts->retry);
    // The button comes and goes without moving anything.
    stateBar->addStrut(m_parts->retry->sizeHint().height());
    auto* const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(createToolBar(page));
    layout->addWidget(m_parts->table, 1);
    layout->addLayout(stateBar);
    m_parts->comparison = new CComparisonView(m_parts->high);
    m_parts->high->setStretchFactor(0, 3);
    m_parts->high->setStretchFactor(1, 2);
    return m_parts->high;
}

QLayout* CHistoryPanel::createToolBar(QWidget* parent)
{
    m_parts->compare = createHistoryButton(CompareButtonId, QStringLiteral("比较所选两项"), parent);
    m_parts->notice = new WQ::CSimpleTextWidget(false, NoControl, QString(), parent);
    m_parts->notice->setColorKey(WQ::key::Link);
    m_parts->notice->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* const refreshButton = createHistoryButton(HistoryRefreshButtonId, QStringLiteral("刷新"), parent);
    refreshButton->setToolTip(QStringLiteral("刷新（F5）"));
    auto* const bar = new QHBoxLayout;
    bar->setContentsMargins(6, 4, 6, 4);
    bar->setSpacing(8);
    bar->addWidget(m_parts->compare);
    bar->addWidget(m_parts->notice, 1);
    bar->addWidget(refreshButton);
    return bar;
}

} // namespace QAV
