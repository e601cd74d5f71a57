// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseDialog.h>

#include <QPixmap>

namespace workbench
{

/// Says that no font has Chinese characters. It is a picture, because its text could not be shown. Any key and any
/// click closes it.
class CMissingFontNotice : public WQ::CBaseDialog
{
    Q_OBJECT

public:
    CMissingFontNotice();

    /// True if neither the font of the application nor one that would stand in for it has Chinese characters.
    static bool isNeeded();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QPixmap m_picture;
};

} // namespace workbench
