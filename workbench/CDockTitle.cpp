// SPDX-License-Identifier: Apache-2.0
#include "CDockTitle.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QDockWidget>
#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

namespace workbench
{

namespace
{

constexpr int Height = 26;
constexpr int IconSize = 14;

QColor colour(const QString& key)
{
    return WQ::CUiResourceManager::instance()->colour(key);
}

/// Draws its sign in the colour of the title.
class CTitleButton : public QToolButton
{
public:
    enum class ESign { Float, Close };

    CTitleButton(ESign sign, const QString& name, QWidget* parent) : QToolButton(parent), m_sign(sign)
    {
        setAutoRaise(true);
        setFixedSize(Height - 4, Height - 6);
        setFocusPolicy(Qt::NoFocus);
        setToolTip(name);
        setAccessibleName(name);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (underMouse()) {
            painter.fillRect(rect(), colour(m_sign == ESign::Close ? WQ::key::GlobalRise : WQ::key::BorderStrong));
        }
        painter.setPen(QPen(colour(underMouse() ? WQ::key::TitleText : WQ::key::TextWeak), 1.2));
        QRectF box(0, 0, IconSize - 5, IconSize - 5);
        box.moveCenter(QRectF(rect()).center());
        if (m_sign == ESign::Close) {
            painter.drawLine(box.topLeft(), box.bottomRight());
            painter.drawLine(box.topRight(), box.bottomLeft());
        } else {
            painter.drawRect(box.adjusted(0, 2, -2, 0));
            painter.drawPolyline(
                QPolygonF({box.topLeft() + QPointF(2, 0), box.topRight(), box.bottomRight() - QPointF(0, 2)}));
        }
    }

private:
    ESign m_sign;
};

} // namespace

CDockTitle::CDockTitle(QDockWidget& dock)
    : QWidget(&dock), m_dock(dock), m_float(new CTitleButton(CTitleButton::ESign::Float, tr("浮动或停靠"), this)),
      m_close(new CTitleButton(CTitleButton::ESign::Close, tr("关闭"), this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 3, 0);
    layout->setSpacing(2);
    layout->addStretch(1);
    layout->addWidget(m_float);
    layout->addWidget(m_close);
    connect(m_float, &QToolButton::clicked, &dock, [&dock] { dock.setFloating(!dock.isFloating()); });
    connect(m_close, &QToolButton::clicked, &dock, &QDockWidget::close);
}

QSize CDockTitle::sizeHint() const
{
    return {120, Height};
}

QSize CDockTitle::minimumSizeHint() const
{
    return {60, Height};
}

void CDockTitle::onUiResourceChanged()
{
    update();
}

void CDockTitle::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), colour(WQ::key::TitleBackground));
    painter.fillRect(0, height() - 1, width(), 1, colour(WQ::key::Border));
    painter.setPen(colour(WQ::key::TitleText));
    const QRect text = rect().adjusted(10, 0, m_float->x() - width() - 6, 0);
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft,
                     fontMetrics().elidedText(m_dock.windowTitle(), Qt::ElideRight, text.width()));
}

} // namespace workbench
