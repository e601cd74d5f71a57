// SPDX-License-Identifier: Apache-2.0
#include <WQ/CJiuGongBackgroundPainter.h>
#include <WQ/CUiResourceManager.h>

#include <QPainter>
#include <qdrawutil.h>

namespace WQ
{

struct CJiuGongBackgroundPainter::Private {
    QString imageKey;
    QMargins patches;
};

CJiuGongBackgroundPainter::CJiuGongBackgroundPainter() : m_d(new Private) {}

CJiuGongBackgroundPainter::~CJiuGongBackgroundPainter() = default;

void CJiuGongBackgroundPainter::setBackgroundImage(const QString& imageKey, const QMargins& patches)
{
    m_d->imageKey = imageKey;
    m_d->patches = patches;
}

const QString& CJiuGongBackgroundPainter::backgroundImage() const
{
    return m_d->imageKey;
}

void CJiuGongBackgroundPainter::paintBackground(QPainter& painter, const QRect& rect) const
{
    if (m_d->imageKey.isEmpty() || rect.isEmpty()) {
        return;
    }
    const QPixmap image = CUiResourceManager::instance()->image(m_d->imageKey, 0);
    qDrawBorderPixmap(&painter, rect, m_d->patches, image);
}

} // namespace WQ
