// SPDX-License-Identifier: Apache-2.0
#include <WQ/CBaseWidget.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QPainter>
#include <QPointer>
#include <QVBoxLayout>

namespace WQ
{

struct CBaseWidget::Private {
    QPointer<QWidget> inner;
    bool ownBackground;
};

CBaseWidget::CBaseWidget(QWidget* parent) : CBaseWidget(QString(), false, parent) {}

CBaseWidget::CBaseWidget(const QString& objectName, bool ownBackground, QWidget* parent)
    : CEventWidgetT<QWidget>(parent), m_d(new Private{{}, ownBackground})
{
    setObjectName(objectName);
}

CBaseWidget::~CBaseWidget() = default;

void CBaseWidget::setInnerStretchWidget(QWidget* widget, int left, int top, int right, int bottom)
{
    auto* box = qobject_cast<QVBoxLayout*>(layout());
    if (!box) {
        box = new QVBoxLayout(this);
    }
    box->setSpacing(0);
    box->setContentsMargins(left, top, right, bottom);
    if (m_d->inner && m_d->inner != widget) {
        box->removeWidget(m_d->inner);
        m_d->inner->hide();
    }
    m_d->inner = widget;
    if (m_d->inner) {
        box->addWidget(m_d->inner, 1);
    }
}

QWidget* CBaseWidget::innerStretchWidget() const
{
    return m_d->inner;
}

void CBaseWidget::onUiResourceChanged()
{
    update();
}

void CBaseWidget::paintEvent(QPaintEvent*)
{
    if (m_d->ownBackground) {
        QPainter(this).fillRect(rect(), CUiResourceManager::instance()->colour(key::PanelBackground));
    }
}

} // namespace WQ
