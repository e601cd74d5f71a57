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

/// Paints the face of a button without text. Faces are kept as images and are cheap to paint again: table rows use
/// them. Saves and restores nothing: only the painter's pixmap drawing is used. UI thread only.
WQ_EXPORT void paintButtonFace(QPainter& painter, const QRect& rect, int buttonType, unsigned states);

/// Face and text, centred, elided when it finds no room, in the painter's font. Leaves the painter with another pen.
WQ_EXPORT void paintButton(QPainter& painter, const QRect& rect, const QString& text, int buttonType, unsigned states);

/// Colour of a button's text.
WQ_EXPORT class QColor buttonTextColour(int buttonType, unsigned states);

} // namespace WQ
