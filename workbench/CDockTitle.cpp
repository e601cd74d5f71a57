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

    CTitleButton(ESign sign, const QString& name, const QString& keys, QWidget* parent)
        : QToolButton(parent), m_sign(sign)
    {
        setAutoRaise(true);
        setFixedSize(Height - 4, Height - 6);
        setFocusPolicy(Qt::NoFocus);
        setToolTip(CDockTitle::tr("%1（%2）").arg(name, keys));
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

/// A text with a line under it, as a link.
class CNoticeButton : public QToolButton
{
public:
    explicit CNoticeButton(QWidget* parent) : QToolButton(parent)
    {
        setObjectName("changeNotice");
        setAutoRaise(true);
        setFixedHeight(Height - 6);
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::PointingHandCursor);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        hide();
    }

    QSize sizeHint() const override
    {
        ensurePolished(); // the theme sets the font
        return {fontMetrics().horizontalAdvance(text()) + 2 * Margin + 2, Height - 6};
    }
    QSize minimumSizeHint() const override { return {0, Height - 6}; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        const QRect inner = rect().adjusted(Margin, 0, -Margin, 0);
        QFont font = painter.font();
        font.setUnderline(underMouse());
        painter.setFont(font);
        painter.setPen(colour(WQ::key::Warning));
        painter.drawText(inner, Qt::AlignVCenter | Qt::AlignRight,
                         fontMetrics().elidedText(text(), Qt::ElideRight, inner.width()));
    }

private:
    static constexpr int Margin = 8;
};

} // namespace

CDockTitle::CDockTitle(QDockWidget& dock)
    : QWidget(&dock), m_dock(dock), m_titleSpace(new QSpacerItem(0, 0)), m_notice(new CNoticeButton(this)),
      m_float(new CTitleButton(CTitleButton::ESign::Float, tr("浮动或停靠"), "Ctrl+Shift+F", this)),
      m_close(new CTitleButton(CTitleButton::ESign::Close, tr("关闭"), "Ctrl+W", this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 3, 0);
    layout->setSpacing(2);
    // The title keeps what it needs.
    layout->addSpacerItem(m_titleSpace);
    layout->addStretch(1);
    layout->addWidget(m_notice);
    layout->addWidget(m_float);
    layout->addWidget(m_close);
    connect(m_notice, &QToolButton::clicked, this, &CDockTitle::sigRefresh);
    connect(m_float, &QToolButton::clicked, &dock, [&dock] { dock.setFloating(!dock.isFloating()); });
    connect(m_close, &QToolButton::clicked, &dock, &QDockWidget::close);
}

void CDockTitle::setNotice(const QString& text)
{
    m_titleSpace->changeSize(fontMetrics().horizontalAdvance(m_dock.windowTitle()) + 10, 0);
    m_notice->setText(text);
    m_notice->setToolTip(tr("%1\n点击或按F5刷新").arg(text));
    m_notice->setAccessibleName(tr("%1，刷新").arg(text));
    m_notice->setVisible(!text.isEmpty());
    m_notice->updateGeometry();
    update();
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
    const QWidget* const next = m_notice->isHidden() ? m_float : m_notice;
    const QRect text = rect().adjusted(10, 0, next->x() - width() - 6, 0);
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft,
                     fontMetrics().elidedText(m_dock.windowTitle(), Qt::ElideRight, text.width()));
}

} // namespace workbench
