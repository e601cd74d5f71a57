// SPDX-License-Identifier: Apache-2.0
#include "hpf/CButtonFaces.h"

#include <WQ/CUiResourceManager.h>

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int leftMargin = 6;
constexpr int spacing = 6;
constexpr int textMargin = 8;
constexpr int smallest = 44;
constexpr int verticalMargin = 4;
constexpr int mostStrips = 512;

} // namespace

const CButtonFaces::Strip& CButtonFaces::strip(int list, const QVector<ButtonData>& buttons, int cellHeight,
                                               const QFont& font)
{
    const QString theme = CUiResourceManager::instance()->theme();
    const qreal pixelRatio = qGuiApp->devicePixelRatio();
    if (theme != m_theme || cellHeight != m_cellHeight || pixelRatio != m_pixelRatio || font != m_font ||
        m_strips.size() > mostStrips) {
        m_strips.clear();
        m_theme = theme;
        m_font = font;
        m_cellHeight = cellHeight;
        m_pixelRatio = pixelRatio;
    }
    const auto known = m_strips.constFind(list);
    if (known != m_strips.constEnd()) {
        return *known;
    }

    Strip strip;
    const QFontMetrics metrics(font);
    int x = leftMargin;
    for (const ButtonData& button : buttons) {
        const int width = std::max(smallest, metrics.horizontalAdvance(button.text) + 2 * textMargin);
        strip.rects.append(QRect(x, verticalMargin, width, std::max(1, cellHeight - 2 * verticalMargin - 1)));
        x += width + spacing;
    }
    strip.width = x;
    strip.image = QPixmap(QSize(x, std::max(1, cellHeight)) * pixelRatio);
    strip.image.setDevicePixelRatio(pixelRatio);
    strip.image.fill(Qt::transparent);
    QPainter painter(&strip.image);
    for (int i = 0; i < buttons.size(); ++i) {
        paint(painter, strip.rects.at(i), buttons.at(i), ButtonRests, font);
    }
    painter.end();
    return *m_strips.insert(list, strip);
}

void CButtonFaces::clear()
{
    m_strips.clear();
}

void CButtonFaces::paint(QPainter& painter, const QRect& rect, const ButtonData& button, unsigned states,
                         const QFont& font)
{
    const QPen pen = painter.pen();
    painter.setFont(font);
    paintButton(painter, rect, button.text, button.buttonType, states);
    painter.setPen(pen);
}

} // namespace WQ
