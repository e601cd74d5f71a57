// SPDX-License-Identifier: Apache-2.0
#include <WQ/CEventDeliverer.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CNormalButton.h>
#include <WQ/CSmallNormalButton.h>
#include <WQ/CUiResourceManager.h>

#include <QAction>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>

namespace WQ
{

namespace
{

constexpr int SmallHeight = 24;
constexpr int MediumHeight = 30;
/// Room at both sides of the text that the size hint asks for.
constexpr int ButtonTextMargin = 12;
/// With less the text is drawn shortened.
constexpr int LeastTextMargin = 3;

/// The buttons of a table ask one after another, and most of them have the same text.
int textWidth(const QString& text, const QFont& font, const QFontMetrics& metrics)
{
    struct Measured {
        QString text;
        QFont font;
        int width = 0;
    };
    // Never destroyed: fonts must not outlive the application object.
    static auto* const last = new Measured;
    if (last->text != text || last->font != font) {
        *last = {text, font, metrics.horizontalAdvance(text)};
    }
    return last->width;
}

} // namespace

struct CNormalButton::Private : QObject {
    Private(CNormalButton& itsButton, int itsId, int type, int itsHeight)
        : button(itsButton), id(itsId), buttonType(type), height(itsHeight)
    {
        button.installEventFilter(this); // another virtual function would change what plug-ins were built against
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::FontChange || event->type() == QEvent::Polish) {
            showWholeText();
        }
        return false;
    }
    /// A fixed width is chosen for the usual fonts.
    void showWholeText();

    CNormalButton& button;
    const int id;
    const int buttonType;
    const int height;
    int givenWidth = 0; ///< the fixed width that the program chose
    int shownWidth = 0; ///< what the text makes of it
};

void CNormalButton::Private::showWholeText()
{
    if (button.minimumWidth() != button.maximumWidth()) {
        return; // the layout decides
    }
    if (button.minimumWidth() != shownWidth) {
        givenWidth = button.minimumWidth();
    }
    const bool isLarge = CUiResourceManager::instance()->fontScale() > 1;
    shownWidth = isLarge ? qMax(givenWidth, button.minimumSizeHint().width()) : givenWidth;
    button.setFixedWidth(shownWidth);
}

CNormalButton::CNormalButton(int id, bool tabStop, int buttonType, int height, QWidget* parent)
    : QPushButton(parent), m_d(new Private(*this, id, buttonType, height))
{
    setAutoDefault(false);
    setFocusPolicy(tabStop ? Qt::StrongFocus : Qt::ClickFocus);
    setAttribute(Qt::WA_Hover);
    connect(this, &QPushButton::clicked, this, [this] { deliverEvent(this, ButtonClicked, m_d->id); });
}

CNormalButton::~CNormalButton() = default;

int CNormalButton::buttonType() const
{
    return m_d->buttonType;
}

int CNormalButton::id() const
{
    return m_d->id;
}

void CNormalButton::setText(const QString& text)
{
    setAccessibleName(text);
    QPushButton::setText(text);
    m_d->showWholeText();
}

void CNormalButton::setKeys(const QKeySequence& keys, QWidget* within)
{
    auto* const action = new QAction(text(), this);
    action->setShortcut(keys);
    action->setShortcutContext(within ? Qt::WidgetWithChildrenShortcut : Qt::WindowShortcut);
    (within ? within : this)->addAction(action);
    setToolTip(QCoreApplication::translate("WQ", "%1（%2）").arg(text(), keys.toString(QKeySequence::NativeText)));
    connect(action, &QAction::triggered, this, [this] {
        if (!isEnabled() || !isVisible()) {
            return;
        }
        // An edit takes its input in when it loses the focus.
        const QPointer<QWidget> before(window()->focusWidget());
        const QPointer<CNormalButton> self(this);
        setFocus(Qt::ShortcutFocusReason);
        click();
        if (self && before && window()->focusWidget() == this) {
            before->setFocus(Qt::ShortcutFocusReason);
        }
    });
}

QSize CNormalButton::sizeHint() const
{
    return QSize(textWidth(text(), font(), fontMetrics()) + 2 * ButtonTextMargin,
                 qMax(m_d->height, fontMetrics().height()));
}

QSize CNormalButton::minimumSizeHint() const
{
    return QSize(fontMetrics().horizontalAdvance(text()) + 2 * LeastTextMargin, fontMetrics().height());
}

void CNormalButton::onUiResourceChanged()
{
    update();
}

void CNormalButton::paintEvent(QPaintEvent*)
{
    unsigned states = ButtonRests;
    if (!isEnabled()) {
        states |= ButtonDisabled;
    } else if (isDown()) {
        states |= ButtonPressed;
    } else if (underMouse()) {
        states |= ButtonHovered;
    }
    if (hasFocus()) {
        states |= ButtonFocused;
    }
    QPainter painter(this);
    paintButton(painter, rect(), text(), m_d->buttonType, states);
}

void CNormalButton::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        if (!event->isAutoRepeat()) {
            click();
        }
        return;
    }
    QPushButton::keyPressEvent(event);
}

CSmallNormalButton::CSmallNormalButton(int id, bool tabStop, int buttonType, QWidget* parent)
    : CNormalButton(id, tabStop, buttonType, SmallHeight, parent)
{
}

CMediumNormalButton::CMediumNormalButton(int id, int style, QWidget* parent)
    : CNormalButton(id, true, style, MediumHeight, parent)
{
}

} // namespace WQ
