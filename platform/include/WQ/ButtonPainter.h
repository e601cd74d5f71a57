#pragma once

#include <WQ/Export.h>

#include <QRect>
#include <QString>

class QPainter;
class QPalette;

namespace WQ
{

/// The looks of a button; the number is the `buttonType` of buttons and of table row buttons. Other numbers look plain.
enum EButtonType : int {
    PlainButton = 0,
    NormalButton = 1,
    PrimaryButton = 2,
    DangerButton = 3,
};

/// Bits of what a button looks like at the moment.
enum EButtonState : unsigned {
    ButtonRests = 0,
    ButtonHovered = 1,
    ButtonPressed = 2,
    ButtonFocused = 4,
    ButtonDisabled = 8,
};

/// Paints a button: face and text, centred, elided when it finds no room, in the painter's font. The image is kept and
/// cheap to paint again, which table rows count on. The painter's state is unchanged. UI thread only.
WQ_EXPORT void paintButton(QPainter& painter, const QRect& rect, const QString& text, int buttonType, unsigned states);

/// The same without a text.
WQ_EXPORT void paintButtonFace(QPainter& painter, const QRect& rect, int buttonType, unsigned states);

/// Colour of a button's text.
WQ_EXPORT class QColor buttonTextColour(int buttonType, unsigned states);

} // namespace WQ
