#pragma once

namespace QAV
{

/// The controls of the risk settings dialog, as they come back in its events.
enum ERiskDialogControlId {
    SaveRiskButtonId = 0,
    /// Belongs to no control of the dialog; events with it end there.
    SwallowedControlId = 1,
};

/// The pages of the dialog whose editors want to know their place.
enum ERiskPageIndex {
    ReverseOrderPageIndex = 2,
    WashTradePageIndex = 3,
};

/// The id under which the client keeps the layout of the asset-portfolio table.
constexpr int AssetsTableId = 1276;

} // namespace QAV
