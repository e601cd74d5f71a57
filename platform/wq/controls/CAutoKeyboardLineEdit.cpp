// SPDX-License-Identifier: Apache-2.0
#include <WQ/CAutoKeyboardLineEdit.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QKeyEvent>

namespace WQ
{

namespace
{

/// Pixels between the frame and the text, on top of the style's own two.
constexpr int SideMargin = 3;

} // namespace

struct CAutoKeyboardLineEdit::Private {
    QColor hintColour;
};

CAutoKeyboardLineEdit::CAutoKeyboardLineEdit(QWidget* parent) : QLineEdit(parent), m_d(new Private)
{
    setTextMargins(SideMargin, 0, SideMargin, 0);
    applyHintColour();
}

CAutoKeyboardLineEdit::~CAutoKeyboardLineEdit() = default;

QString CAutoKeyboardLineEdit::getText() const
{
    return text();
}

QString CAutoKeyboardLineEdit::toString() const
{
    return getText();
}

void CAutoKeyboardLineEdit::setEmptyHintText(const QString& text)
{
    if (accessibleName().isEmpty() || accessibleName() == placeholderText()) {
        setAccessibleName(text);
    }
    setPlaceholderText(text);
}

QString CAutoKeyboardLineEdit::emptyHintText() const
{
    return placeholderText();
}

void CAutoKeyboardLineEdit::setEmptyHintColor(const QColor& colour)
{
    const bool themes = colour == CUiResourceManager::instance()->colour(key::EditHint);
    m_d->hintColour = themes ? QColor() : colour;
    applyHintColour();
}

QColor CAutoKeyboardLineEdit::emptyHintColor() const
{
    return palette().color(QPalette::PlaceholderText);
}

void CAutoKeyboardLineEdit::onUiResourceChanged()
{
    applyHintColour();
}

void CAutoKeyboardLineEdit::applyHintColour()
{
    QPalette colours;
    colours.setColor(QPalette::PlaceholderText, m_d->hintColour.isValid()
                                                    ? m_d->hintColour
                                                    : CUiResourceManager::instance()->colour(key::EditHint));
    setPalette(colours);
}

void CAutoKeyboardLineEdit::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    // A key that is held down is one action.
    if (!enter || !event->isAutoRepeat()) {
        QLineEdit::keyPressEvent(event);
    }
    if (enter) {
        event->accept();
    }
}

} // namespace WQ
