// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QColor>
#include <QRect>
#include <QString>

class QPainter;
class QPalette;

namespace WQ
{

/// The style of a button: the `buttonType` of buttons and of table row buttons. Other numbers mean PlainButton.
enum EButtonType : int {
    PlainButton = 0,
    NormalButton = 1,
    PrimaryButton = 2,
    DangerButton = 3,
};

/// The state of a button, a set of bits.
enum EButtonState : unsigned {
    ButtonRests = 0,
    ButtonHovered = 1,
    ButtonPressed = 2,
    ButtonFocused = 4,
    ButtonDisabled = 8,
};

/// Paints a button: its face, and its text in the painter's font, centred and elided if necessary. The image is cached,
/// so that table rows can paint it cheaply. The painter's state is not changed. UI thread only.
WQ_EXPORT void paintButton(QPainter& painter, const QRect& rect, const QString& text, int buttonType, unsigned states);

/// The same without text.
WQ_EXPORT void paintButtonFace(QPainter& painter, const QRect& rect, int buttonType, unsigned states);

/// The colour of a button's text.
WQ_EXPORT QColor buttonTextColour(int buttonType, unsigned states);

} // namespace WQ
