// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The ids of the panel's controls in its events.
enum EPanelControlId {
    SearchEditId = 0,
    AddButtonId = 1,
    RefreshButtonId = 2,
};

/// The buttons of a row.
enum ERowButtonId {
    RiskSettingsRowButton = 0,
    EditRowButton = 1,
    DeleteRowButton = 2,
};

/// The id under which the client keeps the table's layout.
constexpr int AccountGroupTableId = 1274;

} // namespace QAV
