#pragma once

namespace WQ
{

/// Which way a CWidgetList runs.
enum EWidgetDirection : int {
    HorizontalList = 1,
    VerticalList = 2,
};

/// Where a widget stands across the direction of its list, when it does not fill the list's whole extent there.
enum EWidgetAnchor : int {
    /// At the leading edge: top of a horizontal list, left of a vertical one.
    AnchorLeading = 0,
    /// In the middle.
    AnchorMiddle = 1,
    /// At the trailing edge: bottom of a horizontal list, right of a vertical one.
    AnchorTrailing = 2,
    /// As the lines of a form stand: in the middle of a horizontal list's height, so that label, edit and button share
    /// one line; at the left of a vertical list, so that the lines begin below one another.
    AnchorLine = 3,
};

} // namespace WQ
