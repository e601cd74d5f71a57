// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CThemePainter.h"

#include <QProxyStyle>

namespace WQ
{

/// Clears the cached button faces, which have the colours of the previous theme.
void clearButtonFaces();

/// The client's style of Qt's standard controls: flat, compact, in the colours of the theme.
class CThemeStyle : public QProxyStyle
{
    Q_OBJECT

public:
    CThemeStyle();

    /// Reloads the theme's colours.
    void reload() { m_painter.reload(); }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    void polish(QWidget* widget) override;
    using QProxyStyle::polish;

private:
    CThemePainter m_painter;
};

} // namespace WQ
