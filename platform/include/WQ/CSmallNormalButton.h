#pragma once

#include <WQ/CNormalButton.h>

namespace WQ
{

/// The button of bars and table rows, 24 pixels high unless fixed otherwise (down to 16).
class WQ_EXPORT CSmallNormalButton : public CNormalButton
{
    Q_OBJECT

public:
    /// @param tabStop     true: the Tab key stops at the button; false: only mouse and shortcuts reach it
    /// @param buttonType  EButtonType
    CSmallNormalButton(int id, bool tabStop, int buttonType, QWidget* parent);
};

} // namespace WQ
