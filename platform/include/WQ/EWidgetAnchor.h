// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace WQ
{

/// The direction of a CWidgetList.
enum EWidgetDirection : int {
    HorizontalList = 1,
    VerticalList = 2,
};

/// The position of a widget across the direction of its list, if it does not fill the list's whole extent.
enum EWidgetAnchor : int {
    /// At the leading edge: top of a horizontal list, left of a vertical one.
    AnchorLeading = 0,
    /// In the middle.
    AnchorMiddle = 1,
    /// At the trailing edge: bottom of a horizontal list, right of a vertical one.
    AnchorTrailing = 2,
    /// As in a form: in a horizontal list vertically centred, so that label, edit and button share one line; in a
    /// vertical list at the left, so that the lines are left-aligned.
    AnchorLine = 3,
};

} // namespace WQ
