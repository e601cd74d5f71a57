// SPDX-License-Identifier: Apache-2.0
#include "history/CFindingsPage.h"

#include "history/CTextModel.h"
#include "history/CTextRow.h"
#include "history/ControlId.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/EmptyReason.h>
#include <WQ/EventType.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>
#include <nvservice/CFinding.h>
#include <nvservice/DataType.h>

#include <QHBoxLayout>
#include <QTimerEvent>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

namespace QAV
{

namespace
{

/// What the service allows a check.
constexpr int LongestCheckSeconds = 25;
constexpr int ShowTimeEveryMs = 500;

/// Leaves room for what to do about it.
constexpr int TextWidth = 360;

/// The button stands beside the group that it leads to, before the long texts: it is to be seen at any width.
enum EFindingColumn {
    FindingKindColumn,
    FindingGroupColumn,
    FindingButtonColumn,
    FindingTextColumn,
    FindingAdviceColumn
};

/// "账号已销户3项、重名1项"
QString countsByKind(const WQ::IBaseHpfTableModel& findings)
{
    std::map<QString, int> counts;
    for (int index = 0; index < findings.getDataCount(); ++index) {
        ++counts[findings.getDataByIndex(index)->getDisplayQString(FindingKindColumn)];
    }
    QStringList texts;
    for (const auto& [kind, count] : counts) {
        texts << QStringLiteral("%1%2项").arg(kind, QString::number(count));
    }
    return texts.join(QStringLiteral("、"));
}

} // namespace

CFindingsPage::CFindingsPage(const CCallbackGate& gate, bool mayRead, QWidget* parent)
    : CBaseWidget(QStringLiteral("historyFindings"), false, parent), m_mayRead(mayRead),
      m_pages(gate, [this](const QueryAnswer& answer) { takePage(answer); }),
      m_button(new WQ::CSmallNormalButton(FindingsButtonId, true, WQ::NormalButton, this)),
      m_state(new WQ::CSimpleTextWidget(false, NoControl, QString(), this)),
      m_table(new WQ::CStandardHpfTable(FindingTableId, this, WQ::MenuAll)),
      m_model(new CTextModel({QStringLiteral("问题类型"), QStringLiteral("账号组"), QStringLiteral("操作"),
                              QStringLiteral("内容"), QStringLiteral("处理建议")},
                             FindingButtonColumn))
{
    m_button->setEnabled(mayRead);
    m_table->setDataModel(m_model);
    m_table->setFlags(m_table->flags() & ~WQ::TableCellSelection);
    m_table->setAccessibleName(QStringLiteral("一致性检查结果"));
    m_table->sortByColumn(FindingKindColumn, Qt::AscendingOrder);
    m_table->setColumnWidth(FindingTextColumn, TextWidth);
    m_table->setColumnFilterable(FindingKindColumn, true);
    m_table->setColumnFilterable(FindingGroupColumn, true);
    m_table->setColumnDelegate(FindingButtonColumn,
                               new WQ::CBaseTableColumnMultiButtonsDelegate(FindingButtonColumn, this));
    auto* const bar = new QHBoxLayout;
    bar->setContentsMargins(6, 4, 6, 4);
    bar->setSpacing(8);
    bar->addWidget(m_button);
    bar->addWidget(m_state, 1);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_table, 1);
    connect(m_table, &WQ::CStandardHpfTable::sigRowActivated, this, &CFindingsPage::showGroup);
    showState();
}

void CFindingsPage::setServer(const QString& serverName, bool isUsable)
{
    stop();
    m_isCancelled = false;
    m_serverName = serverName;
    m_isUsable = isUsable && m_mayRead;
    m_model->replaceRows({});
    showState();
}

void CFindingsPage::refresh()
{
    if (!m_isUsable) {
        return;
    }
    m_model->replaceRows({});
    m_pages.start(m_serverName, nvservice::DataType::Finding, {});
    m_sinceStart.start();
    showState();
}

void CFindingsPage::stop()
{
    if (m_pages.state() == CPagedQuery::Loading) {
        cancelQueries(m_serverName, nvservice::DataType::Finding);
    }
    m_pages.stop();
}

void CFindingsPage::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_timer.timerId()) {
        showState();
    } else {
        CBaseWidget::timerEvent(event);
    }
}

void CFindingsPage::takePage(const QueryAnswer& answer)
{
    m_problem = WQ::sToQs(answer.error.errorMsg());
    if (answer.error.code() == utils::EErrorCode::Cancelled) {
        m_isCancelled = true;
        m_pages.stop();
    }
    auto* const buttons =
        static_cast<WQ::CBaseTableColumnMultiButtonsDelegate*>(m_table->columnDelegate(FindingButtonColumn));
    WQ::ButtonData show;
    show.id = ShowGroupRowButton;
    show.text = QStringLiteral("查看历史");
    for (const nvservice::IDataPtr& record : answer.records) {
        const auto finding = boost::dynamic_pointer_cast<nvservice::CFinding>(record);
        if (!finding) {
            continue;
        }
        const QString key = WQ::sToQs(finding->getKey());
        m_model->addData(
            boost::make_shared<CTextRow>(key,
                                         QStringList{WQ::sToQs(finding->kindName), WQ::sToQs(finding->groupName),
                                                     QString(), WQ::sToQs(finding->text), WQ::sToQs(finding->advice)},
                                         record));
        if (finding->groupId > 0) {
            buttons->setItemButtons(key, {show});
        }
    }
    m_model->announce();
    m_table->adjustColumnWidth();
    showState();
}

void CFindingsPage::showGroup(const QString& rowKey)
{
    const auto row = boost::dynamic_pointer_cast<CTextRow>(m_model->getDataByKey(rowKey));
    const auto finding = row ? boost::dynamic_pointer_cast<nvservice::CFinding>(row->record()) : nullptr;
    if (finding && finding->groupId > 0) {
        emit sigGroupWanted(finding->groupId, WQ::sToQs(finding->groupName));
    }
}

void CFindingsPage::showState()
{
    const int count = m_model->getDataCount();
    QString text;
    QString reason;
    switch (m_pages.state()) {
    case CPagedQuery::Idle:
        text = m_isCancelled ? QStringLiteral("检查已取消") : QString();
        reason = m_mayRead ? text : QStringLiteral("没有权限：查看检查结果需要审计权限");
        break;
    case CPagedQuery::Loading:
        text = QStringLiteral("正在检查，最多%1秒…").arg(LongestCheckSeconds);
        if (const qint64 seconds = m_sinceStart.elapsed() / 1000; seconds > 0) {
            text += QStringLiteral("已用%1秒").arg(seconds);
        }
        reason = QStringLiteral("正在检查…");
        break;
    case CPagedQuery::HasMore: // the answer comes as a whole
    case CPagedQuery::Complete:
        text = count == 0 ? QStringLiteral("共0项")
                          : QStringLiteral("共%1项：%2").arg(QString::number(count), countsByKind(*m_model));
        reason = QStringLiteral("没有发现问题");
        break;
    case CPagedQuery::Failed:
        text = QStringLiteral("检查失败：%1").arg(m_problem);
        reason = text;
        break;
    }
    const bool isRunning = m_pages.state() == CPagedQuery::Loading;
    m_button->setText(isRunning ? QStringLiteral("取消检查") : QStringLiteral("重新检查"));
    if (!isRunning) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_timer.start(ShowTimeEveryMs, this);
    }
    m_state->setText(text);
    m_state->setColorKey(m_pages.state() == CPagedQuery::Failed ? QString(WQ::key::Warning) : QString());
    WQ::setEmptyReason(*m_table, reason);
}

bool CFindingsPage::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == FindingsButtonId) {
        if (m_pages.state() == CPagedQuery::Loading) {
            stop();
            m_isCancelled = true;
            showState();
        } else {
            refresh();
        }
    } else if (type == WQ::RowButtonClicked) {
        showGroup(text);
    } else {
        return CBaseWidget::handleEvent(type, id, param, text, data);
    }
    return true;
}

} // namespace QAV
