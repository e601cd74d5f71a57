// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/ButtonData.h>
#include <WQ/ButtonPainter.h>

#include <QFont>
#include <QHash>
#include <QPixmap>
#include <QRect>
#include <QString>
#include <QVector>

namespace WQ
{

/// Cached pictures of whole lists of buttons in their normal state, so that a cell with any number of buttons is
/// painted with one image.
class CButtonFaces
{
public:
    struct Strip {
        QVector<QRect> rects; ///< Of each button, relative to the cell.
        int width = 0;        ///< What the cell needs.
        QPixmap image;
    };

    /// The picture of list number `list`; valid until the next call.
    const Strip& strip(int list, const QVector<ButtonData>& buttons, int cellHeight, const QFont& font);
    void clear();

    static void paint(QPainter& painter, const QRect& rect, const ButtonData& button, unsigned states,
                      const QFont& font);

private:
    QHash<int, Strip> m_strips;
    QString m_theme;
    QFont m_font;
    int m_cellHeight = 0;
    qreal m_pixelRatio = 0;
};

} // namespace WQ
