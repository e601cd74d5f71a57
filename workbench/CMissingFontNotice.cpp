// SPDX-License-Identifier: Apache-2.0
#include "CMissingFontNotice.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>

namespace workbench
{

namespace
{

/// The picture is sharp up to this scale.
constexpr qreal PictureScale = 2;

} // namespace

CMissingFontNotice::CMissingFontNotice() : m_picture(QStringLiteral(":/no-chinese-font.png"))
{
    m_picture.setDevicePixelRatio(PictureScale);
    setWindowTitle(QStringLiteral("No Chinese font"));
    setAccessibleName(QCoreApplication::translate("workbench", "缺少中文字体，请安装后重新启动"));
    setFixedSize(m_picture.size() / PictureScale);
}

bool CMissingFontNotice::isNeeded()
{
    return !QFontMetrics(QApplication::font()).inFontUcs4(U'中');
}

void CMissingFontNotice::paintEvent(QPaintEvent*)
{
    QPainter(this).drawPixmap(0, 0, m_picture);
}

void CMissingFontNotice::keyPressEvent(QKeyEvent*)
{
    done(0);
}

void CMissingFontNotice::mousePressEvent(QMouseEvent*)
{
    done(0);
}

} // namespace workbench
