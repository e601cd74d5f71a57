#include <WQ/CCustomDialog.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QTimerEvent>

#include <cmath>

namespace WQ
{

namespace
{

constexpr int Spokes = 12;
constexpr int StepMilliseconds = 80;
constexpr int WheelSide = 28;
constexpr int BoxPadding = 20;
constexpr int WheelToText = 12;

} // namespace

CLoadingMaskWidget::CLoadingMaskWidget(const QString& text, QWidget* parent)
    : CBaseWidget(QStringLiteral("loading_mask"), false, parent), m_owner(parent), m_text(text)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::BusyCursor);
    setAccessibleName(text);
    hide();
}

CLoadingMaskWidget::~CLoadingMaskWidget()
{
    qApp->removeEventFilter(this);
}

QString CLoadingMaskWidget::text() const
{
    return m_text;
}

void CLoadingMaskWidget::setText(const QString& text)
{
    m_text = text;
    setAccessibleName(text);
    update();
}

QWidget* CLoadingMaskWidget::target() const
{
    return m_target;
}

bool CLoadingMaskWidget::isAnimating() const
{
    return m_timer.isActive();
}

void CLoadingMaskWidget::attach(QWidget* target)
{
    if (!target)
        return;
    if (m_target != target) {
        hide();
        release();
        m_target = target;
        setParent(target);
        connect(target, &QObject::destroyed, this, [this] {
            m_target = nullptr;
            if (m_owner)
                setParent(m_owner);
        });
    }
    cover();
    raise();
    show();
}

void CLoadingMaskWidget::release()
{
    if (m_target)
        disconnect(m_target, nullptr, this, nullptr);
    m_target = nullptr;
}

void CLoadingMaskWidget::cover()
{
    const auto* const dialog = qobject_cast<CCustomDialog*>(m_target.data());
    setGeometry(dialog ? dialog->contentArea() : m_target->rect());
}

bool CLoadingMaskWidget::covers(const QObject* object) const
{
    if (!m_target || !object || !object->isWidgetType() || object == this)
        return false;
    const auto* const widget = static_cast<const QWidget*>(object);
    // A window that was opened from the covered widget is not under the mask.
    return m_target == widget || (m_target->isAncestorOf(widget) && m_target->window() == widget->window());
}

void CLoadingMaskWidget::takeFocus(QWidget* from)
{
    if (from && from != this)
        m_focusBefore = from;
    setFocus(Qt::OtherFocusReason);
}

bool CLoadingMaskWidget::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Resize:
        if (watched == m_target)
            cover();
        break;
    case QEvent::ChildAdded:
        if (watched == m_target)
            raise();
        break;
    case QEvent::FocusIn:
        if (covers(watched) && !isHidden()) {
            takeFocus(static_cast<QWidget*>(watched));
            return false;
        }
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::Wheel:
    case QEvent::Drop:
    case QEvent::DragEnter:
        if (covers(watched) && !isHidden()) {
            const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
            if (key && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
                return false;
            event->accept();
            return true;
        }
        break;
    default:
        break;
    }
    return CBaseWidget::eventFilter(watched, event);
}

void CLoadingMaskWidget::showEvent(QShowEvent* event)
{
    CBaseWidget::showEvent(event);
    if (m_target)
        cover();
    qApp->installEventFilter(this);
    m_timer.start(StepMilliseconds, this);
    QWidget* const focus = m_target ? m_target->window()->focusWidget() : nullptr;
    if (!focus || covers(focus))
        takeFocus(focus);
}

void CLoadingMaskWidget::hideEvent(QHideEvent* event)
{
    CBaseWidget::hideEvent(event);
    qApp->removeEventFilter(this);
    m_timer.stop();
    const bool gone = isHidden();
    if (gone && m_focusBefore && m_focusBefore->isVisible() &&
        (!window()->focusWidget() || window()->focusWidget() == this || hasFocus()))
        m_focusBefore->setFocus(Qt::OtherFocusReason);
    if (gone)
        m_focusBefore = nullptr;
}

void CLoadingMaskWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        CBaseWidget::timerEvent(event);
        return;
    }
    m_step = (m_step + 1) % Spokes;
    update(wheelRect());
}

bool CLoadingMaskWidget::focusNextPrevChild(bool next)
{
    // Tab leaves the covered widget for the next control of the window that is free.
    for (QWidget* widget = next ? nextInFocusChain() : previousInFocusChain(); widget && widget != this;
         widget = next ? widget->nextInFocusChain() : widget->previousInFocusChain()) {
        const bool takes = (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && widget->isVisible();
        if (takes && widget != m_target && !covers(widget)) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return true;
}

void CLoadingMaskWidget::keyPressEvent(QKeyEvent* event)
{
    event->setAccepted(event->key() != Qt::Key_Escape);
}

void CLoadingMaskWidget::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void CLoadingMaskWidget::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void CLoadingMaskWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
}

void CLoadingMaskWidget::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
}

void CLoadingMaskWidget::wheelEvent(QWheelEvent* event)
{
    event->accept();
}

void CLoadingMaskWidget::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
}

QRect CLoadingMaskWidget::wheelRect() const
{
    QRect wheel(0, 0, WheelSide, WheelSide);
    wheel.moveCenter(rect().center());
    wheel.translate(0, -(WheelToText + fontMetrics().height()) / 2);
    return wheel;
}

void CLoadingMaskWidget::paintEvent(QPaintEvent*)
{
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    QPainter painter(this);
    painter.fillRect(rect(), theme.colour(key::MaskVeil));
    painter.setRenderHint(QPainter::Antialiasing);

    const QRect wheel = wheelRect();
    const int textWidth = qMin(fontMetrics().horizontalAdvance(m_text), width() - 2 * BoxPadding);
    QRect box(0, 0, qMax(textWidth, WheelSide) + 2 * BoxPadding,
              WheelSide + WheelToText + fontMetrics().height() + 2 * BoxPadding - 4);
    box.moveCenter(rect().center());
    painter.setPen(theme.colour(key::Border));
    painter.setBrush(theme.colour(key::MaskBackground));
    painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);

    painter.save();
    painter.translate(QRectF(wheel).center());
    QColor spoke = theme.colour(key::FocusRing);
    for (int i = 0; i < Spokes; ++i) {
        const int age = (m_step - i + Spokes) % Spokes;
        spoke.setAlphaF(qMax(0.12, 1.0 - qreal(age) / Spokes));
        painter.setPen(QPen(spoke, 2.4, Qt::SolidLine, Qt::RoundCap));
        const qreal angle = 2 * M_PI * i / Spokes;
        const QPointF direction(std::sin(angle), -std::cos(angle));
        painter.drawLine(direction * 7.0, direction * 12.0);
    }
    painter.restore();

    painter.setPen(theme.colour(key::MaskText));
    const QRect line(box.left(), wheel.bottom() + 1 + WheelToText, box.width(), fontMetrics().height());
    painter.drawText(line, Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_text, Qt::ElideRight, qMax(textWidth, WheelSide)));
}

} // namespace WQ
