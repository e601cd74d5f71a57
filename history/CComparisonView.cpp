// SPDX-License-Identifier: Apache-2.0
#include "history/CComparisonView.h"

#include "history/CTextModel.h"
#include "history/CTextRow.h"
#include "history/ControlId.h"

#include <WQ/CCheckBox.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EmptyReason.h>
#include <WQ/EventType.h>
#include <WQ/ResourceKeys.h>

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

namespace QAV
{

namespace
{

constexpr int AreaWidth = 150;
constexpr int ChangeWidth = 60;
constexpr int StateWidth = 360;

} // namespace

CComparisonView::CComparisonView(QWidget* parent)
    : CBaseWidget(QStringLiteral("historyComparison"), false, parent),
      m_title(new WQ::CSimpleTextWidget(false, NoControl, QString(), this)),
      m_unchanged(new WQ::CCheckBox(UnchangedCheckId, QStringLiteral("显示未变的内容"), this)),
      m_raw(new WQ::CCheckBox(RawCheckId, QStringLiteral("原始记录"), this))
{
    auto* const bar = new QHBoxLayout;
    bar->setContentsMargins(6, 4, 6, 4);
    bar->setSpacing(12);
    bar->addWidget(m_title, 1);
    bar->addWidget(m_unchanged);
    bar->addWidget(m_raw);
    m_restore = addButton(RestoreButtonId, WQ::NormalButton, QStringLiteral("恢复到此版本"));
    m_confirm = addButton(ConfirmButtonId, WQ::PrimaryButton, QStringLiteral("执行恢复"));
    m_abandon = addButton(AbandonButtonId, WQ::NormalButton, QStringLiteral("放弃恢复"));
    for (WQ::CNormalButton* const button : {m_restore, m_confirm, m_abandon}) {
        bar->addWidget(button);
    }
    m_table = new WQ::CStandardHpfTable(ComparisonTableId, this, WQ::MenuAll);
    m_model = new CTextModel(
        {QStringLiteral("项目"), QStringLiteral("变更"), QStringLiteral("变更前"), QStringLiteral("变更后")});
    m_table->setDataModel(m_model);
    m_table->setAccessibleName(QStringLiteral("变更内容"));
    m_table->setColumnFilterable(AreaColumn, true);
    m_table->setColumnFilterable(ChangeColumn, true);
    m_table->setColumnWidth(AreaColumn, AreaWidth);
    m_table->setColumnWidth(ChangeColumn, ChangeWidth);
    m_table->setColumnWidth(BeforeColumn, StateWidth);
    m_table->setColumnWidth(AfterColumn, StateWidth);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_table, 1);
    showText(QStringLiteral("请选择一条修改记录"));
}

WQ::CNormalButton* CComparisonView::addButton(int id, int type, const QString& text)
{
    auto* const button = new WQ::CSmallNormalButton(id, true, type, this);
    button->setText(text);
    return button;
}

void CComparisonView::showText(const QString& title)
{
    m_comparison.reset();
    m_headers.clear();
    m_obstacles.clear();
    m_text = title;
    setActions(NoActions);
    fill();
}

void CComparisonView::showRecords(const QString& title, const std::vector<RecordPair>& pairs,
                                  const QStringList& headers, const QStringList& obstacles)
{
    m_comparison = boost::make_shared<CComparison>(pairs);
    m_headers = headers;
    m_obstacles = obstacles;
    m_text = title;
    setActions(NoActions);
    fill();
}

void CComparisonView::setActions(EActions actions)
{
    const bool isPreview = actions == IsPreview || actions == IsObstructed;
    for (const auto& [button, isUsable] :
         {std::pair(m_restore, actions == CanRestore), std::pair(m_confirm, actions == IsPreview),
          std::pair(m_abandon, isPreview)}) {
        // Whoever has pressed a button that goes reads what comes instead.
        if (button->hasFocus() && !isUsable) {
            m_table->view()->setFocus();
        }
    }
    m_restore->setVisible(actions == CanRestore);
    m_confirm->setVisible(isPreview);
    m_confirm->setEnabled(actions == IsPreview);
    m_abandon->setVisible(isPreview);
}

void CComparisonView::setCategories(CategoryNames categories)
{
    m_categories = std::move(categories);
    m_table->updateTable();
}

QString CComparisonView::title() const
{
    return m_title->text();
}

void CComparisonView::fill()
{
    const bool isState = m_headers.size() == 1;
    std::vector<WQ::IBaseHpfTableDataPtr> rows;
    for (const QString& obstacle : m_obstacles) {
        rows.push_back(
            boost::make_shared<CTextRow>(QStringLiteral("obstacle%1").arg(rows.size()),
                                         QStringList{QStringLiteral("现在不能恢复"), QString(), QString(), obstacle},
                                         nvservice::IDataPtr(), WQ::key::Warning));
    }
    // Records of a class that has no lines of its own can only be read raw.
    const bool isRaw = m_comparison && (m_raw->isChecked() || m_comparison->lineCount() == 0);
    if (isRaw) {
        const auto raw = rawRows(m_comparison->pairs());
        rows.insert(rows.end(), raw.begin(), raw.end());
    } else if (m_comparison) {
        for (int index = 0; index < m_comparison->lineCount(); ++index) {
            if (isState || m_unchanged->isChecked() || m_comparison->line(index).change != EChange::Unchanged) {
                rows.push_back(boost::make_shared<CComparisonRow>(m_comparison, index, m_categories));
            }
        }
    }
    m_model->setHeaders({QStringLiteral("项目"), QStringLiteral("变更"), m_headers.value(0, QStringLiteral("变更前")),
                         m_headers.value(isState ? 0 : 1, QStringLiteral("变更后"))});
    m_table->setColumnVisible(ChangeColumn, !isState);
    m_table->setColumnVisible(BeforeColumn, !isState);
    m_model->replaceRows(rows);
    m_unchanged->setEnabled(m_comparison && !isState && !isRaw);
    m_raw->setEnabled(m_comparison != nullptr);
    WQ::setEmptyReason(*m_table, m_comparison ? QStringLiteral("内容没有变化") : m_text);
    showTitle();
}

void CComparisonView::showTitle()
{
    const bool isState = m_headers.size() == 1;
    if (!m_comparison || isState) {
        m_title->setText(m_text);
        return;
    }
    const int changed = m_comparison->changedCount();
    m_title->setText(QStringLiteral("%1（%2项变更，%3项未变）")
                         .arg(m_text, QString::number(changed), QString::number(m_comparison->lineCount() - changed)));
}

void CComparisonView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        emit sigLeft();
    } else {
        CBaseWidget::keyPressEvent(event);
    }
}

bool CComparisonView::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && (id == UnchangedCheckId || id == RawCheckId)) {
        fill();
        return true;
    }
    return CBaseWidget::handleEvent(type, id, param, text, data);
}

} // namespace QAV
