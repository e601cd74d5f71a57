#include "CThemeStyle.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QApplication>
#include <QHash>
#include <QPainter>
#include <QPixmap>

namespace WQ
{

namespace
{

constexpr qreal Radius = 3;
/// A face that is bigger is painted each time.
constexpr int MaximumKeptSide = 1024;
constexpr int MaximumKept = 256;

struct FaceKey {
    QSize size;
    int ratio;
    int type;
    unsigned states;
    bool operator==(const FaceKey& other) const
    {
        return size == other.size && ratio == other.ratio && type == other.type && states == other.states;
    }
};

uint qHash(const FaceKey& key, uint seed)
{
    seed = ::qHash(key.size.width() * 4096 + key.size.height(), seed);
    return ::qHash(key.ratio * 1024 + key.type * 64 + int(key.states), seed);
}

QHash<FaceKey, QPixmap>& faces()
{
    static QHash<FaceKey, QPixmap> kept;
    return kept;
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
    if (states & ButtonFocused)
        border = CUiResourceManager::instance()->colour(key::FocusRing);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(QPen(border, 1));
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), Radius, Radius);
}

} // namespace

void clearButtonFaces()
{
    faces().clear();
}

void paintButtonFace(QPainter& painter, const QRect& rect, int buttonType, unsigned states)
{
    if (rect.isEmpty())
        return;
    if (rect.width() > MaximumKeptSide || rect.height() > MaximumKeptSide) {
        painter.save();
        drawFace(painter, rect, buttonType, states);
        painter.restore();
        return;
    }
    const qreal ratio = painter.device()->devicePixelRatioF();
    const FaceKey slot{rect.size(), qRound(ratio * 100), buttonType, states};
    auto found = faces().constFind(slot);
    if (found == faces().constEnd()) {
        if (faces().size() >= MaximumKept)
            faces().clear();
        QPixmap face(rect.size() * ratio);
        face.setDevicePixelRatio(ratio);
        face.fill(Qt::transparent);
        QPainter facePainter(&face);
        drawFace(facePainter, QRectF(QPointF(), rect.size()), buttonType, states);
        facePainter.end();
        found = faces().insert(slot, face);
    }
    painter.drawPixmap(rect.topLeft(), *found);
}

QColor buttonTextColour(int buttonType, unsigned states)
{
    if (states & ButtonDisabled)
        return CUiResourceManager::instance()->colour(key::TextDisabled);
    return typeColour(buttonType, "text");
}

void paintButton(QPainter& painter, const QRect& rect, const QString& text, int buttonType, unsigned states)
{
    paintButtonFace(painter, rect, buttonType, states);
    const QRect room = rect.adjusted(3, 0, -3, 0);
    const QFontMetrics metrics = painter.fontMetrics();
    const QString shown =
        metrics.horizontalAdvance(text) <= room.width() ? text : metrics.elidedText(text, Qt::ElideRight, room.width());
    painter.setPen(buttonTextColour(buttonType, states));
    painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, shown);
}

} // namespace WQ
