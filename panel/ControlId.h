#pragma once

namespace QAV
{

/// The ids of the panel's controls, as they come back in its events.
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

/// The ids under which the client keeps the tables' layouts.
constexpr int AccountGroupTableId = 1274;

/// The look of all buttons of the panel.
constexpr int NormalButtonType = 1;

} // namespace QAV
