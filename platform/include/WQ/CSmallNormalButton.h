// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CNormalButton.h>

namespace WQ
{

/// The button for tool bars and table rows, 24 pixels high unless its height is fixed (at least 16).
class WQ_EXPORT CSmallNormalButton : public CNormalButton
{
    Q_OBJECT

public:
    /// @param tabStop     true: the Tab key stops at the button; false: only mouse and shortcuts reach it
    /// @param buttonType  EButtonType
    CSmallNormalButton(int id, bool tabStop, int buttonType, QWidget* parent);
};

} // namespace WQ
