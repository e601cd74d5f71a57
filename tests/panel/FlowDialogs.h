// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FlowWorld.h"

namespace panel_test
{

/// What the user does in the group dialog before he saves or closes it.
struct EditorPlan {
    std::optional<QString> name;
    std::optional<int> institution;
    std::vector<std::int64_t> accountsToAdd;
    bool deletesFirstAccount = false;
    bool waitsForData = true;
    bool saves = true;
    /// Called when everything is put in, before the last button.
    std::function<void()> beforeTheEnd;
};

/// Presses a button of an open dialog; fails the test when there is none.
void pressButton(QWidget& dialog, const QString& text);

/// Carries out a plan in the open group dialog. `input` is what the dialog holds; it becomes what the user has made of
/// it.
void followPlan(WQ::CBaseDialog& dialog, FlowWorld& world, const EditorPlan& plan, GroupInput& input);

/// What the checks of the open risk settings dialog show.
TradeChecks shownChecks(WQ::CBaseDialog& dialog);
void setChecks(WQ::CBaseDialog& dialog, const TradeChecks& checks);
/// True when neither the loading nor the saving of the risk settings is under way.
bool isUncovered(WQ::CBaseDialog& riskDialog);

} // namespace panel_test
