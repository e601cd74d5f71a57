// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QMargins>
#include <QRect>
#include <QString>

#include <memory>

class QPainter;

namespace WQ
{

/// Paints an image of the theme as a nine-patch background: corners keep their size, edges and centre are stretched.
class WQ_EXPORT CJiuGongBackgroundPainter
{
public:
    CJiuGongBackgroundPainter();
    virtual ~CJiuGongBackgroundPainter();

    /// @param imageKey  image key of the theme; empty: paints nothing
    /// @param patches   widths of the edges in pixels of the image
    void setBackgroundImage(const QString& imageKey, const QMargins& patches);
    const QString& backgroundImage() const;

protected:
    void paintBackground(QPainter& painter, const QRect& rect) const;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
