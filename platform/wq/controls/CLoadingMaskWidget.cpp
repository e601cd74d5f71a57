// SPDX-License-Identifier: Apache-2.0
#include <WQ/CCustomDialog.h>
#include <WQ/CLoadingMaskWidget.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QBasicTimer>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTimerEvent>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

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

struct CLoadingMaskWidget::Private {
    QPointer<QWidget> owner;
    QPointer<QWidget> target = {};
    QPointer<QWidget> focusBefore = {};
    /// The children of the target that are disabled because of the mask.
    QVector<QPointer<QWidget>> disabled = {};
    QString text;
    QBasicTimer timer = {};
    int step = 0;
};

CLoadingMaskWidget::CLoadingMaskWidget(const QString& text, QWidget* parent)
    : CBaseWidget(QStringLiteral("loading_mask"), false, parent), m_d(new Private{parent, {}, {}, {}, text})
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::BusyCursor);
    setAccessibleName(text);
    hide();
}

CLoadingMaskWidget::~CLoadingMaskWidget()
{
    qApp->removeEventFilter(this);
    enableTarget();
}

QString CLoadingMaskWidget::text() const
{
    return m_d->text;
}

void CLoadingMaskWidget::setText(const QString& text)
{
    m_d->text = text;
    setAccessibleName(text);
    update();
}

QWidget* CLoadingMaskWidget::target() const
{
    return m_d->target;
}

bool CLoadingMaskWidget::isAnimating() const
{
    return m_d->timer.isActive();
}

void CLoadingMaskWidget::attach(QWidget* target)
{
    if (!target) {
        return;
    }
    if (m_d->target != target) {
        hide();
        release();
        m_d->target = target;
        setParent(target);
        connect(target, &QObject::destroyed, this, [this] {
            m_d->target = nullptr;
            m_d->disabled.clear();
            if (m_d->owner) {
                setParent(m_d->owner);
            }
        });
    }
    cover();
    raise();
    show();
}

void CLoadingMaskWidget::release()
{
    if (m_d->target) {
        disconnect(m_d->target, nullptr, this, nullptr);
    }
    m_d->target = nullptr;
}

void CLoadingMaskWidget::cover()
{
    const auto* const dialog = qobject_cast<CCustomDialog*>(m_d->target.data());
    setGeometry(dialog ? dialog->contentArea() : m_d->target->rect());
}

bool CLoadingMaskWidget::covers(const QObject* object) const
{
    if (!m_d->target || !object || !object->isWidgetType() || object == this) {
        return false;
    }
    const auto* const widget = static_cast<const QWidget*>(object);
    // A window that was opened from the covered widget is not under the mask.
    return m_d->target == widget || (m_d->target->isAncestorOf(widget) && m_d->target->window() == widget->window());
}

bool CLoadingMaskWidget::isShortcutCovered(const QObject* owner) const
{
    if (const auto* const shortcut = qobject_cast<const QShortcut*>(owner)) {
        return covers(shortcut->parentWidget());
    }
    const auto* const action = qobject_cast<const QAction*>(owner);
    if (!action) {
        return covers(owner);
    }
    const QList<QWidget*> places = action->associatedWidgets();
    return !places.isEmpty() && std::all_of(places.begin(), places.end(), [this](QWidget* at) { return covers(at); });
}

void CLoadingMaskWidget::takeFocus()
{
    QWidget* const focus = m_d->target->window()->focusWidget();
    if (focus != this && !(m_d->focusBefore && focus == m_d->target)) {
        m_d->focusBefore = focus;
    }
    setFocus(Qt::OtherFocusReason);
}

void CLoadingMaskWidget::giveFocusBack()
{
    QWidget* next = m_d->focusBefore;
    const auto takes = [this](const QWidget* widget) { return widget->isEnabled() && widget->isVisibleTo(window()); };
    if (!next || !takes(next)) {
        next = m_d->target->nextInFocusChain();
        while (next != m_d->target && !(covers(next) && (next->focusPolicy() & Qt::TabFocus) && takes(next))) {
            next = next->nextInFocusChain();
        }
    }
    next->setFocus(Qt::OtherFocusReason);
}

void CLoadingMaskWidget::closePopups() const
{
    while (QWidget* const popup = QApplication::activePopupWidget()) {
        const QWidget* opener = popup->focusProxy() ? popup->focusProxy() : popup->parentWidget();
        while (opener && !covers(opener)) {
            opener = opener->windowType() == Qt::Popup || !opener->isWindow() ? opener->parentWidget() : nullptr;
        }
        if (!opener || !popup->close()) {
            return;
        }
    }
}

void CLoadingMaskWidget::disable(QWidget* child)
{
    const auto* const dialog = qobject_cast<CCustomDialog*>(m_d->target.data());
    if (child == this || child->isWindow() || child->testAttribute(Qt::WA_ForceDisabled) ||
        (dialog && dialog->isTitleControl(child))) {
        return;
    }
    m_d->disabled.append(child);
    QVector<QWidget*> free;
    const QList<QWidget*> below = child->findChildren<QWidget*>();
    std::copy_if(below.begin(), below.end(), std::back_inserter(free), [](const QWidget* widget) {
        return widget->isWindow() && widget->windowType() != Qt::Popup && widget->isEnabled();
    });
    child->setEnabled(false);
    // That has disabled the windows, too.
    for (QWidget* const window : qAsConst(free)) {
        window->setEnabled(true);
    }
}

void CLoadingMaskWidget::disableTarget()
{
    closePopups();
    // A child that has the focus would pass it on when it is disabled.
    const QWidget* const focus = m_d->target->window()->focusWidget();
    if (!focus || covers(focus)) {
        takeFocus();
    }
    const QList<QWidget*> children = m_d->target->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* const child : children) {
        disable(child);
    }
}

void CLoadingMaskWidget::enableTarget()
{
    const QVector<QPointer<QWidget>> disabled = std::exchange(m_d->disabled, {});
    for (const QPointer<QWidget>& child : disabled) {
        if (child) {
            child->setEnabled(true);
        }
    }
}

void CLoadingMaskWidget::setVisible(bool visible)
{
    if (!m_d->target) {
        CBaseWidget::setVisible(visible);
        return;
    }
    if (visible) {
        CBaseWidget::setVisible(true);
        disableTarget();
        return;
    }
    const bool hadFocus = m_d->target->window()->focusWidget() == this;
    enableTarget();
    CBaseWidget::setVisible(false);
    if (hadFocus) {
        giveFocusBack();
    }
    m_d->focusBefore = nullptr;
}

void CLoadingMaskWidget::endAnimatedClick(QAbstractButton& button, QEvent* event)
{
    const QSignalBlocker blocker(button);
    const bool wasChecked = button.isChecked();
    static_cast<QObject&>(button).event(event);
    button.setChecked(wasChecked);
}

bool CLoadingMaskWidget::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Resize:
        if (watched == m_d->target) {
            cover();
        }
        break;
    case QEvent::ChildAdded:
        if (watched == m_d->target) {
            raise();
        }
        break;
    case QEvent::ChildPolished:
        if (watched == m_d->target && !isHidden()) {
            disable(static_cast<QWidget*>(static_cast<QChildEvent*>(event)->child()));
        }
        break;
    case QEvent::FocusIn:
        // Its children are disabled, the covered widget itself is not.
        if (watched == m_d->target && !isHidden()) {
            takeFocus();
        }
        break;
    case QEvent::Timer:
        // A click by assistive technology is carried out later, even on a disabled button.
        if (auto* const button = qobject_cast<QAbstractButton*>(watched); covers(button) && !isHidden()) {
            endAnimatedClick(*button, event);
            return true;
        }
        break;
    case QEvent::Shortcut:
        if (isShortcutCovered(watched) && !isHidden()) {
            return true;
        }
        break;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        if (covers(watched) && !isHidden()) {
            event->ignore();
            return true;
        }
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::InputMethod:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        if (covers(watched) && !isHidden()) {
            const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
            if (key && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
                return false;
            }
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
    if (m_d->target) {
        cover();
        disableTarget();
    }
    qApp->installEventFilter(this);
    m_d->timer.start(StepMilliseconds, this);
}

void CLoadingMaskWidget::hideEvent(QHideEvent* event)
{
    CBaseWidget::hideEvent(event);
    qApp->removeEventFilter(this);
    m_d->timer.stop();
}

void CLoadingMaskWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_d->timer.timerId()) {
        CBaseWidget::timerEvent(event);
        return;
    }
    m_d->step = (m_d->step + 1) % Spokes;
    update(wheelRect());
}

bool CLoadingMaskWidget::focusNextPrevChild(bool next)
{
    if (isHidden()) { // the focus is given back
        return true;
    }
    // Tab leaves the covered widget for the next control of the window that is free.
    for (QWidget* widget = next ? nextInFocusChain() : previousInFocusChain(); widget && widget != this;
         widget = next ? widget->nextInFocusChain() : widget->previousInFocusChain()) {
        const bool takes = (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && widget->isVisible();
        if (takes && widget != m_d->target && !covers(widget)) {
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

bool CLoadingMaskWidget::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
        event->accept();
        return true;
    default:
        return CBaseWidget::event(event);
    }
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
    const int textWidth = qMin(fontMetrics().horizontalAdvance(m_d->text), width() - 2 * BoxPadding);
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
        const int age = (m_d->step - i + Spokes) % Spokes;
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
                     fontMetrics().elidedText(m_d->text, Qt::ElideRight, qMax(textWidth, WheelSide)));
}

} // namespace WQ
