// SPDX-License-Identifier: Apache-2.0
#include <WQ/CJiuGongBackgroundPainter.h>
#include <WQ/CUiResourceManager.h>

#include <QPainter>
#include <qdrawutil.h>

namespace WQ
{

CJiuGongBackgroundPainter::~CJiuGongBackgroundPainter() = default;

void CJiuGongBackgroundPainter::setBackgroundImage(const QString& imageKey, const QMargins& patches)
{
    m_imageKey = imageKey;
    m_patches = patches;
}

void CJiuGongBackgroundPainter::paintBackground(QPainter& painter, const QRect& rect) const
{
    if (m_imageKey.isEmpty() || rect.isEmpty()) {
        return;
    }
    const QPixmap image = CUiResourceManager::instance()->image(m_imageKey, 0);
    qDrawBorderPixmap(&painter, rect, m_patches, image);
}

} // namespace WQ
