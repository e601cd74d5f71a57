// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The controls of the risk settings dialog in its events.
enum ERiskDialogControlId {
    SaveRiskButtonId = 0,
    /// Belongs to no control; the dialog consumes events with this id.
    SwallowedControlId = 1,
    RecallRiskInputButtonId = 10,
};

/// The pages of the dialog whose editors need their index.
enum ERiskPageIndex {
    ReverseOrderPageIndex = 2,
    WashTradePageIndex = 3,
};

/// The id under which the client keeps the layout of the asset-portfolio table.
constexpr int AssetsTableId = 1276;

} // namespace QAV
