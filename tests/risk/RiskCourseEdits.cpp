// SPDX-License-Identifier: Apache-2.0
// What the user of a random course does in the tabs.
#include "RiskCourse.h"

#include "support/wq/Widgets.h"

#include <WQ/CBaseDialog.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>

#include <QAccessible>
#include <QtTest>

namespace risk_test
{

namespace
{

constexpr int FirstExemptTab = 2;

} // namespace

void RiskCourse::edit()
{
    const int kind = below(10);
    if (kind < 4) {
        toggle();
    } else if (kind < 7) {
        addEntry();
    } else {
        editLimits();
    }
}

void RiskCourse::toggle()
{
    const Check& check = m_checks[std::size_t(below(int(m_checks.size())))];
    note("toggle " + check.button->text());
    m_model.toggle(check.field);
    const int way = below(3);
    if (way == 0) {
        check.button->click();
    } else if (way == 1) {
        QTest::keyClick(check.button, Qt::Key_Space);
    } else {
        QAccessible::queryAccessibleInterface(check.button)->actionInterface()->doAction("Toggle");
    }
}

void RiskCourse::addEntry()
{
    const std::size_t tab = std::size_t(below(2));
    const QString code = QString::number(100000 + ++m_marks);
    note("add security " + code);
    m_model.addEntry(RiskModel::TabTypes[tab], code.toStdString());
    m_securityEdits[tab]->setText(code);
    if (chance(50)) {
        m_addButtons[tab]->click();
    } else {
        QTest::keyClick(m_securityEdits[tab], Qt::Key_Return);
    }
}

void RiskCourse::editLimits()
{
    const bool adds = chance(15);
    note(adds ? "add limit" : "remove limit");
    if (adds) {
        m_model.addLimit();
        m_assets.findChild<QAbstractButton*>("add")->click();
        return;
    }
    m_model.removeFirstLimit();
    m_limitTable->clearSelection();
    if (m_limitTable->rowCount() > 0) {
        m_limitTable->setRowSelected(m_limitTable->rowID(0), true);
    }
    m_assets.findChild<QAbstractButton*>("remove")->click();
    m_limitTable->clearSelection();
}

void RiskCourse::pick()
{
    if (m_hasPicker || m_depth >= MaxOpenBoxes) { // it is modal
        return;
    }
    m_page = below(RiskModel::PageCount);
    const bool wasCovered = m_model.isCovered();
    const int depth = m_depth;
    const qsizetype steps = m_steps.size();
    m_client.tabs().tabWidget(FirstExemptTab + m_page)->findChild<WQ::CMediumNormalButton*>()->click();
    if (depth == m_depth && wasCovered != (steps == m_steps.size())) {
        differ(wasCovered ? "a picker under the mask" : "no picker");
    }
}

int RiskCourse::execDialog(WQ::CBaseDialog& dialog)
{
    note("picker");
    const int page = m_page;
    const int offers = m_model.offers();
    dialog.show();
    m_hasPicker = true;
    ++m_depth;
    for (int steps = chance(40) ? 1 + below(6) : 0; steps > 0 && m_difference.isEmpty(); --steps) {
        step();
    }
    --m_depth;
    m_hasPicker = false;
    compare("picker open", dialog.isVisible(), offers == m_model.offers());
    if (!dialog.isVisible() || chance(20)) {
        note("picker closed");
        dialog.close();
        return 0;
    }
    for (WQ::CStandardSimpleTable* const table : dialog.findChildren<WQ::CStandardSimpleTable*>()) {
        for (int row = 0; table->tableId() == 0 && row < table->rowCount(); ++row) {
            table->setRowSelected(table->rowID(row), true);
        }
    }
    for (const char* const text : {">", "保存"}) {
        support::buttonOf(dialog, text)->click();
    }
    note("picker saved");
    if (!m_model.isCovered()) {
        m_model.chooseAll(RiskModel::EPage(page));
    }
    return dialog.result();
}

void RiskCourse::showOrHide()
{
    note(m_client.dialog().isVisible() ? "close" : "show");
    m_client.dialog().setVisible(!m_client.dialog().isVisible());
}

} // namespace risk_test
