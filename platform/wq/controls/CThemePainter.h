// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>

class QPainter;
class QRect;
class QRectF;
class QStyleOption;
class QStyleOptionSlider;

namespace WQ
{

/// Draws the parts of Qt's standard controls in the colours of the theme.
class CThemePainter
{
public:
    struct Colours {
        QColor text, weak, disabled, border, strongBorder, accent, focus, edit, editDisabled, panel, header,
            headerHover, headerText, headerMark, grid, thumb, thumbHover, window, selection, selectionText;
    };

    /// Reloads the theme's colours.
    void reload();
    const Colours& colours() const { return m_colours; }

    void drawEdit(const QStyleOption& option, QPainter& painter) const;
    void drawCheck(const QStyleOption& option, QPainter& painter) const;
    void drawRadio(const QStyleOption& option, QPainter& painter) const;
    void drawArrow(QPainter& painter, const QRect& rect, Qt::ArrowType type, const QColor& colour) const;
    void drawHeader(const QStyleOption& option, QPainter& painter) const;
    void drawTab(const QStyleOption& option, QPainter& painter) const;
    void drawCombo(const QStyleOption& option, const QRect& arrow, QPainter& painter) const;
    void drawScrollBar(const QStyleOptionSlider& option, const QRectF& thumb, QPainter& painter) const;

private:
    Colours m_colours;
};

} // namespace WQ
