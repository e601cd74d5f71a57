// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CNormalButton.h>

namespace WQ
{

/// The button for dialogs, 30 pixels high unless its height is fixed.
class WQ_EXPORT CMediumNormalButton : public CNormalButton
{
    Q_OBJECT

public:
    /// @param style  EButtonType
    CMediumNormalButton(int id, int style, QWidget* parent);
};

} // namespace WQ
