#pragma once

#include <WQ/CNormalButton.h>

namespace WQ
{

/// The button of dialogs, 30 pixels high unless fixed otherwise.
class WQ_EXPORT CMediumNormalButton : public CNormalButton
{
    Q_OBJECT

public:
    /// @param style  EButtonType
    CMediumNormalButton(int id, int style, QWidget* parent);
};

} // namespace WQ
