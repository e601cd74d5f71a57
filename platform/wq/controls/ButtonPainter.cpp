// SPDX-License-Identifier: Apache-2.0
#include "CThemeStyle.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QFont>
#include <QHash>
#include <QPainter>
#include <QPixmap>

namespace WQ
{

namespace
{

constexpr qreal ButtonRadius = 3;
/// Bigger faces and longer texts are painted each time.
constexpr int MaximumKeptSide = 1024;
constexpr int MaximumKept = 512;
constexpr int MaximumKeptText = 32;

/// What a kept image shows; a face alone has no text.
struct FaceKey {
    QSize size;
    int ratio;
    int type;
    unsigned states;
    QString text;
    QFont font;

    bool operator==(const FaceKey& other) const
    {
        return size == other.size && ratio == other.ratio && type == other.type && states == other.states &&
               text == other.text && (text.isEmpty() || font == other.font);
    }
};

uint qHash(const FaceKey& key, uint seed)
{
    seed = ::qHash(key.size.width() * 4096 + key.size.height(), seed);
    seed = ::qHash(key.ratio * 1024 + key.type * 64 + int(key.states), seed);
    return ::qHash(key.text, seed);
}

QHash<FaceKey, QPixmap>& faces()
{
    // Never destroyed: pixmaps must not outlive the application object.
    static auto* const kept = new QHash<FaceKey, QPixmap>;
    return *kept;
}

QString typeName(int buttonType)
{
    switch (buttonType) {
    case NormalButton:
        return QStringLiteral("normal");
    case PrimaryButton:
        return QStringLiteral("primary");
    case DangerButton:
        return QStringLiteral("danger");
    default:
        return QStringLiteral("plain");
    }
}

QColor typeColour(int buttonType, const char* part)
{
    const QString name = QStringLiteral("clr_button_") + typeName(buttonType) + QLatin1Char('_') + QLatin1String(part);
    return CUiResourceManager::instance()->colour(name);
}

void drawFace(QPainter& painter, const QRectF& rect, int buttonType, unsigned states)
{
    QColor fill;
    QColor border;
    if (states & ButtonDisabled) {
        fill = CUiResourceManager::instance()->colour(QStringLiteral("clr_button_disabled_background"));
        border = CUiResourceManager::instance()->colour(QStringLiteral("clr_button_disabled_border"));
    } else {
        fill = typeColour(buttonType, states & ButtonPressed   ? "pressed"
                                      : states & ButtonHovered ? "hover"
                                                               : "background");
        border = typeColour(buttonType, "border");
    }
    if (states & ButtonFocused) {
        border = CUiResourceManager::instance()->colour(key::FocusRing);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    // A frame of one pixel differs too little from the border that is there without the focus.
    const qreal width = states & ButtonFocused ? 2 : 1;
    painter.setPen(QPen(border, width));
    painter.drawRoundedRect(rect.adjusted(width / 2, width / 2, -width / 2, -width / 2), ButtonRadius, ButtonRadius);
    if ((states & ButtonFocused) && buttonType == PrimaryButton) {
        // Its face is too much like the colour of the ring.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(typeColour(buttonType, "text"), 1));
        painter.drawRoundedRect(rect.adjusted(2.5, 2.5, -2.5, -2.5), ButtonRadius, ButtonRadius);
    }
}

void drawText(QPainter& painter, const QRect& rect, const QString& text, int buttonType, unsigned states)
{
    if (text.isEmpty()) {
        return;
    }
    const QRect room = rect.adjusted(3, 0, -3, 0);
    const QFontMetrics metrics = painter.fontMetrics();
    const QString shown =
        metrics.horizontalAdvance(text) <= room.width() ? text : metrics.elidedText(text, Qt::ElideRight, room.width());
    painter.setPen(buttonTextColour(buttonType, states));
    painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, shown);
}

} // namespace

void clearButtonFaces()
{
    faces().clear();
}

QColor buttonTextColour(int buttonType, unsigned states)
{
    if (states & ButtonDisabled) {
        return CUiResourceManager::instance()->colour(key::TextDisabled);
    }
    return typeColour(buttonType, "text");
}

void paintButtonFace(QPainter& painter, const QRect& rect, int buttonType, unsigned states)
{
    paintButton(painter, rect, QString(), buttonType, states);
}

void paintButton(QPainter& painter, const QRect& rect, const QString& text, int buttonType, unsigned states)
{
    if (rect.isEmpty()) {
        return;
    }
    const bool kept =
        rect.width() <= MaximumKeptSide && rect.height() <= MaximumKeptSide && text.size() <= MaximumKeptText;
    if (!kept) {
        painter.save();
        drawFace(painter, rect, buttonType, states);
        drawText(painter, rect, text, buttonType, states);
        painter.restore();
        return;
    }
    const qreal ratio = painter.device()->devicePixelRatioF();
    const FaceKey slot{rect.size(), qRound(ratio * 100), buttonType, states, text, painter.font()};
    auto found = faces().constFind(slot);
    if (found == faces().constEnd()) {
        if (faces().size() >= MaximumKept) {
            faces().clear();
        }
        QPixmap face(rect.size() * ratio);
        face.setDevicePixelRatio(ratio);
        face.fill(Qt::transparent);
        QPainter facePainter(&face);
        const QRect whole(QPoint(), rect.size());
        drawFace(facePainter, whole, buttonType, states);
        facePainter.setFont(painter.font());
        drawText(facePainter, whole, text, buttonType, states);
        facePainter.end();
        found = faces().insert(slot, face);
    }
    painter.drawPixmap(rect.topLeft(), *found);
}

} // namespace WQ
