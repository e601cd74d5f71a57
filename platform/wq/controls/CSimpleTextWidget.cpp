// SPDX-License-Identifier: Apache-2.0
#include <WQ/CEventDeliverer.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CUiResourceManager.h>

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <QToolTip>

#include <cmath>

namespace WQ
{

namespace
{

/// Leading blanks are as wide as half a Chinese character, because labels are aligned with them.
qreal halfWidth(const QFontMetricsF& metrics)
{
    return metrics.horizontalAdvance(QChar(0x4E2D)) / 2;
}

} // namespace

struct CSimpleTextWidget::Private {
    QString colorKey;
    int id;
    int maximumTextWidth;
    bool isClickable;
    bool isPressed = false;
};

CSimpleTextWidget::CSimpleTextWidget(bool clickable, int id, const QString& text, QWidget* parent)
    : QLabel(parent), m_d(new Private{{}, id, UnlimitedWidth, clickable})
{
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    if (m_d->isClickable) {
        setFocusPolicy(Qt::StrongFocus);
        setCursor(Qt::PointingHandCursor);
    }
    setText(text);
}

CSimpleTextWidget::~CSimpleTextWidget() = default;

const QString& CSimpleTextWidget::colorKey() const
{
    return m_d->colorKey;
}

int CSimpleTextWidget::id() const
{
    return m_d->id;
}

void CSimpleTextWidget::setText(const QString& text, int maximumTextWidth)
{
    m_d->maximumTextWidth = maximumTextWidth;
    QLabel::setText(text);
    if (m_d->isClickable) {
        setAccessibleName(text.trimmed());
    }
    updateGeometry();
}

void CSimpleTextWidget::setColorKey(const QString& key)
{
    m_d->colorKey = key;
    onUiResourceChanged();
}

void CSimpleTextWidget::onUiResourceChanged()
{
    if (m_d->colorKey.isEmpty()) {
        setPalette(QPalette());
        return;
    }
    QPalette colours;
    colours.setColor(QPalette::WindowText, CUiResourceManager::instance()->colour(m_d->colorKey));
    setPalette(colours);
}

int CSimpleTextWidget::indentation() const
{
    int blanks = 0;
    while (blanks < text().size() && text().at(blanks) == QLatin1Char(' ')) {
        ++blanks;
    }
    return blanks;
}

QSize CSimpleTextWidget::textSize(int maximumWidth) const
{
    const QFontMetricsF metrics(font());
    const int blanks = indentation();
    const qreal whole = blanks * halfWidth(metrics) + metrics.horizontalAdvance(text().mid(blanks));
    const int width = qMin(int(std::ceil(whole)), maximumWidth);
    const int frame = 2 * margin();
    return QSize(width + frame, int(std::ceil(metrics.height())) + frame);
}

QSize CSimpleTextWidget::sizeHint() const
{
    return textSize(m_d->maximumTextWidth);
}

QSize CSimpleTextWidget::minimumSizeHint() const
{
    return QSize(0, textSize(m_d->maximumTextWidth).height());
}

void CSimpleTextWidget::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    const QFontMetricsF metrics(font());
    const int blanks = indentation();
    const QRect room =
        contentsRect().adjusted(margin() + qRound(blanks * halfWidth(metrics)), margin(), -margin(), -margin());
    QString shown = text().mid(blanks);
    if (metrics.horizontalAdvance(shown) > room.width() + 1) {
        shown = metrics.elidedText(shown, Qt::ElideRight, room.width());
    }
    style()->drawItemText(&painter, room, int(alignment()) | Qt::TextSingleLine, palette(), isEnabled(), shown,
                          QPalette::WindowText);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
    }
}

bool CSimpleTextWidget::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && width() < textSize(UnlimitedWidth).width()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

void CSimpleTextWidget::mousePressEvent(QMouseEvent* event)
{
    m_d->isPressed = m_d->isClickable && event->button() == Qt::LeftButton;
    event->setAccepted(m_d->isPressed);
}

void CSimpleTextWidget::mouseReleaseEvent(QMouseEvent* event)
{
    const bool clicked = m_d->isPressed && event->button() == Qt::LeftButton && rect().contains(event->pos());
    m_d->isPressed = false;
    event->setAccepted(m_d->isClickable);
    if (clicked) {
        deliverEvent(this, ButtonClicked, m_d->id);
    }
}

void CSimpleTextWidget::keyPressEvent(QKeyEvent* event)
{
    const int pressed = event->key();
    if (m_d->isClickable && !event->isAutoRepeat() &&
        (pressed == Qt::Key_Space || pressed == Qt::Key_Return || pressed == Qt::Key_Enter)) {
        event->accept();
        deliverEvent(this, ButtonClicked, m_d->id);
        return;
    }
    QLabel::keyPressEvent(event);
}

} // namespace WQ
