// SPDX-License-Identifier: Apache-2.0
#include <WQ/CMessageHistory.h>
#include <WQ/CMessageTip.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QAccessibleWidget>
#include <QEvent>
#include <QPainter>
#include <QTimerEvent>

namespace WQ
{

namespace
{

constexpr int FrameMs = 16;
constexpr qint64 FadeInMs = 120;
constexpr qint64 FadeOutMs = 240;
constexpr int Gap = 4;
constexpr int Padding = 8;
constexpr int SignSide = 14;
constexpr int WindowMargin = 4;

QColor levelColour(EMessageLevel level)
{
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    switch (level) {
    case MessageError:
        return theme.colour(key::GlobalRise);
    case MessageWarning:
        return theme.colour(key::Warning);
    case MessageInformation:
        break;
    }
    return theme.colour(key::Accent);
}

QHash<const QWidget*, CMessageTip*>& tips()
{
    static QHash<const QWidget*, CMessageTip*> shown;
    return shown;
}

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* const tip = qobject_cast<CMessageTip*>(object);
    return tip ? new QAccessibleWidget(tip, QAccessible::AlertMessage, tip->text()) : nullptr;
}

} // namespace

CMessageTip* CMessageTip::showTip(QWidget* at, int alignment, const QString& text, int seconds, EMessageLevel level,
                                  int maximumWidth)
{
    static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    Q_UNUSED(installed)
    hideTip(at);
    QWidget* place = at;
    while (place && !place->isVisible()) {
        place = place->isWindow() ? nullptr : place->parentWidget();
    }
    if (!place) {
        return nullptr;
    }
    CMessageHistory::instance().add({}, text);
    auto* const tip = new CMessageTip(at, place, alignment, text, seconds, level, maximumWidth);
    tips().insert(at, tip);
    tip->settle();
    tip->show();
    tip->raise();
    QAccessibleEvent alert(tip, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    return tip;
}

void CMessageTip::hideTip(const QWidget* at)
{
    if (CMessageTip* const tip = tipOf(at)) {
        tip->go();
    }
}

CMessageTip* CMessageTip::tipOf(const QWidget* at)
{
    return tips().value(at);
}

CMessageTip::CMessageTip(QWidget* target, QWidget* place, int alignment, const QString& text, int seconds,
                         EMessageLevel level, int maximumWidth)
    : QWidget(place->window()), m_target(target), m_place(place), m_text(text), m_level(level), m_alignment(alignment),
      m_maximumWidth(maximumWidth), m_shownMs(seconds > 0 ? seconds * qint64(1000) : -1)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(text);
    setObjectName(QStringLiteral("message_tip"));
    connect(target, &QObject::destroyed, this, [this] { go(); });
    // The tip is a child of the window. It follows its widget, which moves with every widget in between.
    for (QWidget* widget = place; widget; widget = widget->isWindow() ? nullptr : widget->parentWidget()) {
        widget->installEventFilter(this);
    }
    if (target != place) {
        target->installEventFilter(this);
    }
    m_age.start();
    m_timer.start(FrameMs, this);
}

CMessageTip::~CMessageTip()
{
    for (auto it = tips().begin(); it != tips().end();) {
        it = it.value() == this ? tips().erase(it) : std::next(it);
    }
}

QSize CMessageTip::sizeHint() const
{
    const int side = 3 * Padding + SignSide;
    int limit = parentWidget()->width() - 2 * WindowMargin;
    if (m_maximumWidth > 0) {
        limit = qMin(limit, m_maximumWidth);
    }
    const QRect text = fontMetrics().boundingRect(QRect(0, 0, qMax(1, limit - side), 100000),
                                                  Qt::TextWordWrap | Qt::TextWrapAnywhere, m_text);
    return QSize(text.width() + side + 1, qMax(text.height(), SignSide) + 2 * Padding - 2);
}

QRect CMessageTip::textRoom(const QSize& size) const
{
    return QRect(QPoint(), size).adjusted(2 * Padding + SignSide, 0, -Padding, 0);
}

void CMessageTip::settle()
{
    if (!m_place) {
        return;
    }
    QWidget* const window = parentWidget();
    const QRect anchor(m_place->mapTo(window, QPoint()), m_place->size());
    const QSize size = sizeHint();
    int x = anchor.center().x() - size.width() / 2;
    if (m_alignment & Qt::AlignLeft) {
        x = anchor.left();
    } else if (m_alignment & Qt::AlignRight) {
        x = anchor.right() + 1 - size.width();
    }
    const int below = anchor.bottom() + 1 + Gap;
    const int above = anchor.top() - Gap - size.height();
    const int bottom = window->height() - WindowMargin;
    int y = anchor.center().y() - size.height() / 2;
    if (m_alignment & Qt::AlignBottom) {
        y = below + size.height() > bottom && above >= WindowMargin ? above : below;
    } else if (m_alignment & Qt::AlignTop) {
        y = above < WindowMargin && below + size.height() <= bottom ? below : above;
    }
    x = qMax(WindowMargin, qMin(x, window->width() - WindowMargin - size.width()));
    y = qMax(WindowMargin, qMin(y, bottom - size.height()));
    setGeometry(QRect(QPoint(x, y), size));
}

void CMessageTip::go()
{
    m_timer.stop();
    for (auto it = tips().begin(); it != tips().end();) {
        it = it.value() == this ? tips().erase(it) : std::next(it);
    }
    hide();
    deleteLater();
}

void CMessageTip::onUiResourceChanged()
{
    settle();
    update();
}

bool CMessageTip::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
        settle();
        break;
    case QEvent::Hide:
        if (watched == m_target || watched == m_place) {
            go();
        }
        break;
    case QEvent::HideToParent:
        if (watched == m_target) {
            go();
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void CMessageTip::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    const qint64 age = m_age.elapsed();
    const qint64 end = m_shownMs < 0 ? -1 : FadeInMs + m_shownMs;
    if (age < FadeInMs) {
        m_opacity = qreal(age) / FadeInMs;
    } else if (end < 0) {
        m_opacity = 1;
        m_timer.stop();
    } else if (age < end) {
        // Nothing changes until the fading begins: one long wait instead of many short ones.
        m_opacity = 1;
        m_timer.start(int(qMin<qint64>(end - age + 1, 60000)), this);
    } else if (age < end + FadeOutMs) {
        m_opacity = 1 - qreal(age - end) / FadeOutMs;
        m_timer.start(FrameMs, this);
    } else {
        go();
        return;
    }
    update();
}

void CMessageTip::paintEvent(QPaintEvent*)
{
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    const QColor colour = levelColour(m_level);
    QPainter painter(this);
    painter.setOpacity(m_opacity);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, 1));
    painter.setBrush(theme.colour(key::TipBackground));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);

    const QRectF sign(Padding, (height() - SignSide) / 2.0, SignSide, SignSide);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(sign);
    const bool information = m_level == MessageInformation;
    painter.setBrush(Qt::white);
    const QPointF middle = sign.center();
    painter.drawRoundedRect(QRectF(middle.x() - 1, information ? middle.y() - 1 : middle.y() - 4, 2, 5), 1, 1);
    painter.drawEllipse(QPointF(middle.x(), information ? middle.y() - 3.4 : middle.y() + 3.4), 1.1, 1.1);

    painter.setPen(theme.colour(key::TipText));
    painter.drawText(textRoom(size()), Qt::AlignVCenter | Qt::TextWordWrap | Qt::TextWrapAnywhere, m_text);
}

} // namespace WQ
