// SPDX-License-Identifier: Apache-2.0
#include "FlowDialogs.h"

#include "editor/CSelectAccountDialog.h"
#include "editor/ControlId.h"

#include <QAV/CManagerSearchLineEdit.h>
#include <QAV/CUserCombobox.h>
#include <WQ/CBaseDialog.h>
#include <WQ/CCheckBox.h>
#include <WQ/CComboBox.h>
#include <WQ/CStandardSimpleTable.h>

#include <QtTest>

namespace panel_test
{

namespace
{

void typeWhole(QLineEdit& edit, const QString& text)
{
    edit.selectAll();
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(&edit, &event);
}

QString csKeyOf(const ModelAccount& account)
{
    return QString::fromStdString(account.info.getCsKey());
}

void pickAccount(WQ::CBaseDialog& dialog, FlowWorld& world, std::int64_t row)
{
    const ModelAccount& account = world.current().model.account(row);
    world.boxes.expectDialog([&account](WQ::CBaseDialog& picker) {
        auto* const types = picker.findChild<WQ::CComboBox*>();
        const int type = types->findData(int(account.info.brokerType));
        QVERIFY2(type >= 0, "the account's type is not offered");
        types->setCurrentIndex(type);
        auto* const box = picker.findChild<QAV::CUserCombobox*>();
        box->setCheckItems({csKeyOf(account)});
        QCOMPARE(box->checkedCount(), 1);
        pressButton(picker, QStringLiteral("确定"));
    });
    pressButton(dialog, QStringLiteral("添加账号"));
}

} // namespace

void pressButton(QWidget& dialog, const QString& text)
{
    for (QPushButton* const button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == text && button->isVisibleTo(&dialog)) {
            button->click();
            return;
        }
    }
    QFAIL(qPrintable("no button " + text));
}

void followPlan(WQ::CBaseDialog& dialog, FlowWorld& world, const EditorPlan& plan, GroupInput& input)
{
    auto* const nameEdit = dialog.findChild<WQ::CLineEdit*>();
    auto* const institutionEdit = dialog.findChild<QAV::CManagerSearchLineEdit*>();
    auto* const table = dialog.findChild<WQ::CStandardSimpleTable*>();
    if (plan.waitsForData) {
        world.settle();
        QVERIFY(dialog.findChild<WQ::CLoadingMaskWidget*>()->isHidden());
        QCOMPARE(nameEdit->getText().trimmed(), QString::fromStdString(input.name));
        QCOMPARE(table->rowCount(), int(input.accounts.size()));
        if (plan.institution) {
            typeWhole(*institutionEdit,
                      QString::fromStdString(world.current().model.institutions().at(*plan.institution)));
            QTest::keyClick(institutionEdit, Qt::Key_Return);
        }
        for (const std::int64_t row : plan.accountsToAdd) {
            pickAccount(dialog, world, row);
            if (std::find(input.accounts.begin(), input.accounts.end(), row) == input.accounts.end()) {
                input.accounts.push_back(row);
            }
        }
        if (plan.deletesFirstAccount && !input.accounts.empty()) {
            world.boxes.expectQuestion(QMessageBox::Information, "删除", "确认删除? ", QMessageBox::Yes);
            dialog.handleEvent(WQ::ButtonClicked, QAV::FirstDeleteButtonId + table->rowID(0), 0, {}, nullptr);
            input.accounts.erase(input.accounts.begin());
        }
        world.settle();
    }
    if (plan.name) {
        typeWhole(*nameEdit, *plan.name);
        input.name = plan.name->trimmed().toStdString();
    }
    QString tag;
    const int institution = institutionEdit->getCurrentManagerId(tag);
    if (plan.institution && plan.waitsForData) {
        QCOMPARE(institution, *plan.institution);
    }
    input.institution = institution == nvservice::NoInstitutionId ? NoInstitution : institution;
    if (plan.beforeTheEnd) {
        plan.beforeTheEnd();
    }
    if (plan.waitsForData) {
        pressButton(dialog, plan.saves ? QStringLiteral("保存") : QStringLiteral("关闭"));
    } else { // the mask covers the buttons
        for (int presses = dialog.hasUnsavedEdits() ? 2 : 1; presses > 0; --presses) {
            QTest::keyClick(&dialog, Qt::Key_Escape);
        }
    }
}

namespace
{

WQ::CCheckBox& check(WQ::CBaseDialog& dialog, const QString& text)
{
    for (WQ::CCheckBox* const box : dialog.findChildren<WQ::CCheckBox*>()) {
        if (box->text() == text) {
            return *box;
        }
    }
    qFatal("no check box %s", qPrintable(text));
}

const QString ReverseOrder = QStringLiteral("账号组反向单交易检查");
const QString WarnOnly = QStringLiteral(" 反向单交易只警告不禁止 ");
const QString NotCountCancelled = QStringLiteral(" 不统计已撤 (无成交) 委托 ");
const QString WashTrade = QStringLiteral("账号组禁止对敲交易");

} // namespace

TradeChecks shownChecks(WQ::CBaseDialog& dialog)
{
    return {check(dialog, ReverseOrder).isChecked(), check(dialog, WarnOnly).isChecked(),
            check(dialog, NotCountCancelled).isChecked(), check(dialog, WashTrade).isChecked()};
}

void setChecks(WQ::CBaseDialog& dialog, const TradeChecks& checks)
{
    check(dialog, ReverseOrder).setChecked(checks.reverseOrderCheck);
    check(dialog, WarnOnly).setChecked(checks.reverseOrderWarnOnly);
    check(dialog, NotCountCancelled).setChecked(checks.notCountCancelledOrders);
    check(dialog, WashTrade).setChecked(checks.washTradeForbidden);
}

bool isUncovered(WQ::CBaseDialog& riskDialog)
{
    for (WQ::CLoadingMaskWidget* const mask : riskDialog.findChildren<WQ::CLoadingMaskWidget*>()) {
        const bool isOwn = mask->text() == "正在加载风控数据" || mask->text() == "正在保存";
        if (isOwn && !mask->isHidden()) {
            return false;
        }
    }
    return true;
}

} // namespace panel_test
