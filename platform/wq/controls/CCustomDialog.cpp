// SPDX-License-Identifier: Apache-2.0
#include <WQ/CCustomDialog.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QApplication>
#include <QBasicTimer>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>
#include <QWindow>

namespace WQ
{

namespace
{

constexpr int Frame = 1;
constexpr int TitleMargin = 12;
/// Width of the edge, inside the frame, that resizes.
constexpr int Grip = 5;
/// Comparing the input with what was there before may take a while, so it waits for a pause.
constexpr int InputPauseMs = 200;

} // namespace

struct CCustomDialog::Private {
    QToolButton* close;
    QBasicTimer inputPause = {};
    bool isTitleMarked = false;
    QPoint askedPlace = {};      ///< where the dialog wants to be
    bool isPlaceChecked = false; ///< since it is shown
};

CCustomDialog::CCustomDialog(QWidget* parent) : CBaseDialog(parent), m_d(new Private{new QToolButton(this)})
{
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    setContentsMargins(Frame, TitleHeight, Frame, Frame);
    setMouseTracking(true);
    m_d->close->setObjectName(QStringLiteral("title_close"));
    m_d->close->setAutoRaise(true);
    m_d->close->setFocusPolicy(Qt::NoFocus);
    m_d->close->setCursor(Qt::ArrowCursor);
    m_d->close->setAccessibleName(QCoreApplication::translate("WQ", "关闭"));
    m_d->close->setToolTip(QCoreApplication::translate("WQ", "关闭"));
    m_d->close->setIcon(CUiResourceManager::instance()->icon(QStringLiteral("img_close")));
    connect(m_d->close, &QToolButton::clicked, this, &QDialog::reject);
}

CCustomDialog::~CCustomDialog() = default;

QString CCustomDialog::title() const
{
    return windowTitle();
}

void CCustomDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
    update();
}

QRect CCustomDialog::contentArea() const
{
    return contentsRect();
}

bool CCustomDialog::isTitleControl(const QWidget* widget) const
{
    return widget == m_d->close;
}

void CCustomDialog::onUiResourceChanged()
{
    CBaseDialog::onUiResourceChanged();
    m_d->close->setIcon(CUiResourceManager::instance()->icon(QStringLiteral("img_close")));
}

void CCustomDialog::paintEvent(QPaintEvent*)
{
    const CUiResourceManager& theme = *CUiResourceManager::instance();
    QPainter painter(this);
    painter.fillRect(rect(), theme.colour(key::PanelBackground));
    const QRect bar(0, 0, width(), TitleHeight);
    painter.fillRect(bar, theme.colour(key::TitleBackground));
    painter.fillRect(QRect(0, TitleHeight - 1, width(), 1), theme.colour(key::Border));
    painter.setPen(theme.colour(key::TitleText));
    const QRect room = bar.adjusted(TitleMargin, 0, -TitleHeight - TitleMargin, -1);
    const QString mark = m_d->isTitleMarked ? QStringLiteral(" *") : QString();
    const int width = room.width() - fontMetrics().horizontalAdvance(mark);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(windowTitle(), Qt::ElideRight, width) + mark);
    painter.setPen(theme.colour(key::BorderStrong));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CCustomDialog::resizeEvent(QResizeEvent* event)
{
    CBaseDialog::resizeEvent(event);
    m_d->close->setGeometry(width() - TitleHeight, Frame, TitleHeight - Frame, TitleHeight - 2 * Frame);
}

void CCustomDialog::showEvent(QShowEvent* event)
{
    CBaseDialog::showEvent(event);
    m_d->askedPlace = pos();
    m_d->isPlaceChecked = false;
    m_d->close->raise();
    markTitle(hasUnsavedEdits());
    qApp->installEventFilter(this);
}

void CCustomDialog::hideEvent(QHideEvent* event)
{
    qApp->removeEventFilter(this);
    m_d->inputPause.stop();
    CBaseDialog::hideEvent(event);
}

bool CCustomDialog::isTitleMarked() const
{
    return m_d->isTitleMarked;
}

void CCustomDialog::markTitle(bool isMarked)
{
    if (isMarked != m_d->isTitleMarked) {
        m_d->isTitleMarked = isMarked;
        setAccessibleDescription(isMarked ? QCoreApplication::translate("WQ", "有未保存的修改") : QString());
        update(0, 0, width(), TitleHeight);
    }
}

bool CCustomDialog::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::WindowActivate:
        if (watched == this && !m_d->isPlaceChecked) {
            m_d->isPlaceChecked = true;
            // Some window managers (Openbox) tell the place of a window without a frame while they put it into one at
            // the origin, and not again. Without the true place, lists and further dialogs open far from this one.
            if (pos().isNull()) {
                move(m_d->askedPlace);
            }
        }
        break;
    case QEvent::KeyRelease:
    case QEvent::MouseButtonRelease:
    case QEvent::InputMethod:
    case QEvent::Drop:
        m_d->inputPause.start(InputPauseMs, this);
        break;
    default:
        break;
    }
    return CBaseDialog::eventFilter(watched, event);
}

void CCustomDialog::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_d->inputPause.timerId()) {
        CBaseDialog::timerEvent(event);
        return;
    }
    m_d->inputPause.stop();
    markTitle(hasUnsavedEdits());
}

Qt::Edges CCustomDialog::edgesAt(const QPoint& position) const
{
    Qt::Edges edges;
    if (minimumWidth() < maximumWidth()) {
        edges.setFlag(Qt::LeftEdge, position.x() < Grip);
        edges.setFlag(Qt::RightEdge, position.x() >= width() - Grip);
    }
    if (minimumHeight() < maximumHeight()) {
        edges.setFlag(Qt::TopEdge, position.y() < Grip);
        edges.setFlag(Qt::BottomEdge, position.y() >= height() - Grip);
    }
    return edges;
}

void CCustomDialog::mousePressEvent(QMouseEvent* event)
{
    QWindow* const window = windowHandle();
    if (event->button() != Qt::LeftButton || !window) {
        CBaseDialog::mousePressEvent(event);
        return;
    }
    event->accept();
    if (const Qt::Edges edges = edgesAt(event->pos())) {
        window->startSystemResize(edges);
    } else if (event->pos().y() < TitleHeight) {
        window->startSystemMove();
    }
}

void CCustomDialog::mouseMoveEvent(QMouseEvent* event)
{
    CBaseDialog::mouseMoveEvent(event);
    const Qt::Edges edges = edgesAt(event->pos());
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge)) {
        setCursor(Qt::SizeFDiagCursor);
    } else if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge)) {
        setCursor(Qt::SizeBDiagCursor);
    } else if (edges & (Qt::LeftEdge | Qt::RightEdge)) {
        setCursor(Qt::SizeHorCursor);
    } else if (edges) {
        setCursor(Qt::SizeVerCursor);
    } else {
        unsetCursor();
    }
}

void CCustomDialog::leaveEvent(QEvent* event)
{
    CBaseDialog::leaveEvent(event);
    unsetCursor();
}

} // namespace WQ
