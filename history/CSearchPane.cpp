// SPDX-License-Identifier: Apache-2.0
#include "history/CSearchPane.h"

#include "history/CPickList.h"
#include "history/ControlId.h"
#include "history/RecordText.h"
#include "history/TimeInput.h"

#include <WQ/CComboBox.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMessageTip.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/EventType.h>
#include <nvservice/DataType.h>

#include <QDate>
#include <QGridLayout>
#include <QVBoxLayout>

namespace QAV
{

namespace
{

/// The items of the box of periods; days before today that a period begins with.
constexpr int OwnPeriod = 4;
constexpr int DaysBefore[] = {0, 0, 6, 29};

} // namespace

CSearchPane::CSearchPane(bool hasOutcome, QWidget* parent)
    : CBaseWidget(QStringLiteral("historySearch"), false, parent),
      m_groups(new CPickList(GroupPickTableId, QStringLiteral("账号组"), QStringLiteral("账号组：名称或拼音（Ctrl+K）"),
                             QStringLiteral("全部账号组"), false, this)),
      m_users(new CPickList(UserPickTableId, QStringLiteral("用户"), QStringLiteral("用户：姓名、拼音或登录名"),
                            QStringLiteral("全部用户"), true, this)),
      m_period(new WQ::CComboBox(PeriodBoxId, this))
{
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(6);
    layout->addWidget(m_groups, 3);
    layout->addWidget(m_users, 1);
    layout->addLayout(createForm(hasOutcome));
    layout->addLayout(createStateRow());
    connect(m_groups, &CPickList::sigChosen, this, &CSearchPane::sigSearchChanged);
    connect(m_users, &CPickList::sigChosen, this, &CSearchPane::sigSearchChanged);
    m_isSetting = false;
}

QLayout* CSearchPane::createForm(bool hasOutcome)
{
    m_period->addItems({QStringLiteral("全部时间"), QStringLiteral("今天"), QStringLiteral("最近7天"),
                        QStringLiteral("最近30天"), QStringLiteral("自定义")});
    m_since = addTime(SinceEditId, QStringLiteral("起始时间"));
    m_until = addTime(UntilEditId, QStringLiteral("截止时间"));
    m_kind = new WQ::CComboBox(KindBoxId, this);
    m_kind->addItem(QStringLiteral("全部类型"), 0);
    for (const std::int32_t type : {nvservice::DataType::AccountGroup, nvservice::DataType::GroupRiskConfig,
                                    nvservice::DataType::EmailRule, nvservice::DataType::GroupRestore}) {
        // Without the audit, changes of e-mail rules are ones of the configuration, and there are no attempts.
        if (hasOutcome || type == nvservice::DataType::AccountGroup || type == nvservice::DataType::GroupRiskConfig) {
            m_kind->addItem(dataTypeText(type), type);
        }
    }
    m_outcome = new WQ::CComboBox(OutcomeBoxId, this);
    m_outcome->addItems({QStringLiteral("全部结果"), QStringLiteral("成功"), QStringLiteral("被拒绝")});
    m_outcome->setVisible(hasOutcome);

    auto* const form = new QGridLayout;
    form->setContentsMargins(0, 0, 0, 0);
    form->setSpacing(4);
    int row = 0;
    const auto add = [&](const QString& name, QWidget* control) {
        control->setAccessibleName(name);
        auto* const label = new WQ::CSimpleTextWidget(false, NoControl, name, this);
        label->setVisible(control->isVisibleTo(this));
        form->addWidget(label, row, 0);
        form->addWidget(control, row++, 1);
    };
    add(QStringLiteral("时间"), m_period);
    add(QStringLiteral("起始时间"), m_since);
    add(QStringLiteral("截止时间"), m_until);
    add(QStringLiteral("类型"), m_kind);
    add(QStringLiteral("结果"), m_outcome);
    form->setColumnStretch(1, 1);
    return form;
}

QLayout* CSearchPane::createStateRow()
{
    m_at = addTime(AtEditId, QStringLiteral("查看状态的时间"));
    auto* const show = new WQ::CSmallNormalButton(StateButtonId, true, WQ::NormalButton, this);
    show->setText(QStringLiteral("查看当时状态"));
    auto* const row = new QHBoxLayout;
    row->setSpacing(4);
    row->addWidget(m_at, 1);
    row->addWidget(show);
    return row;
}

WQ::CLineEdit* CSearchPane::addTime(int id, const QString& name)
{
    auto* const edit = new WQ::CLineEdit(id, this);
    showTimeHint(*edit);
    edit->setAccessibleName(name);
    return edit;
}

HistorySearch CSearchPane::search() const
{
    HistorySearch search;
    if (!m_groups->chosen().isEmpty()) {
        search.groupId = m_groups->chosen().toInt();
    }
    search.user = m_users->chosen();
    search.since = timeOf(m_since->getText(), false);
    search.until = timeOf(m_until->getText(), true);
    search.dataType = m_kind->currentData().toInt();
    search.outcome = static_cast<EOutcome>(m_outcome->currentIndex());
    return search;
}

QString CSearchPane::groupName() const
{
    return m_groups->chosenText();
}

void CSearchPane::choosePeriod(int index)
{
    if (index == OwnPeriod) {
        m_since->setFocus();
        return;
    }
    m_isSetting = true;
    m_until->clear();
    m_since->setText(index == 0 ? QString() : QDate::currentDate().addDays(-DaysBefore[index]).toString(Qt::ISODate));
    m_isSetting = false;
    emit sigSearchChanged();
}

void CSearchPane::mark(WQ::CLineEdit& edit)
{
    if (edit.getText().trimmed().isEmpty() || timeOf(edit.getText(), false)) {
        WQ::CMessageTip::hideTip(&edit);
    } else {
        askForTime(edit);
    }
}

void CSearchPane::reportStateTime()
{
    if (const std::optional<std::int64_t> at = timeOf(m_at->getText(), true)) {
        emit sigStateWanted(*at);
    } else {
        askForTime(*m_at);
    }
}

void CSearchPane::askForGroup()
{
    WQ::CMessageTip::showTip(m_at, Qt::AlignBottom, QStringLiteral("请先选择一个账号组或一条修改记录"), 3,
                             WQ::MessageWarning, 0);
}

bool CSearchPane::handleEvent(int type, int id, int param, QString, void*)
{
    if (id == AtEditId || id == StateButtonId) {
        if (type == WQ::ButtonClicked || type == WQ::ButtonOrEnter) {
            reportStateTime();
        }
        return true;
    }
    if (m_isSetting) {
        return true;
    }
    if (type == WQ::ComboIndexChanged && id == PeriodBoxId) {
        choosePeriod(param);
    } else if (type == WQ::LineEditTextChanged) {
        m_isSetting = true;
        m_period->setCurrentIndex(m_since->getText().isEmpty() && m_until->getText().isEmpty() ? 0 : OwnPeriod);
        m_isSetting = false;
        emit sigSearchChanged();
    } else if (type == WQ::ButtonOrEnter) {
        mark(id == SinceEditId ? *m_since : *m_until);
    } else if (type == WQ::ComboIndexChanged) {
        emit sigSearchChanged();
    }
    return true;
}

} // namespace QAV
