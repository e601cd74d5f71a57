// SPDX-License-Identifier: Apache-2.0
#include "CMessageBoxDialog.h"

#include <WQ/CMediumNormalButton.h>
#include <WQ/CMessageBox.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/CWidgetList.h>

#include <QLabel>
#include <QLayout>
#include <QScrollArea>
#include <QTextLayout>

#include <algorithm>
#include <iterator>

namespace WQ
{

namespace
{

constexpr int MaximumTextWidth = 420;
constexpr int MinimumTextWidth = 200;
constexpr int MaximumTextHeight = 320;
constexpr int DialogButtonWidth = 76;
constexpr int DialogButtonHeight = 28;
constexpr int IconSide = 32;

/// Positive answers are left of negative ones.
constexpr QMessageBox::StandardButton Order[] = {
    QMessageBox::Ok,      QMessageBox::Yes,     QMessageBox::YesToAll,        QMessageBox::Save,
    QMessageBox::SaveAll, QMessageBox::Open,    QMessageBox::Apply,           QMessageBox::Retry,
    QMessageBox::Ignore,  QMessageBox::Reset,   QMessageBox::RestoreDefaults, QMessageBox::Discard,
    QMessageBox::No,      QMessageBox::NoToAll, QMessageBox::Abort,           QMessageBox::Cancel,
    QMessageBox::Close,   QMessageBox::Help};

QString imageKey(QMessageBox::Icon kind)
{
    switch (kind) {
    case QMessageBox::Question:
        return QStringLiteral("img_question");
    case QMessageBox::Warning:
        return QStringLiteral("img_warning");
    case QMessageBox::Critical:
        return QStringLiteral("img_critical");
    default:
        return QStringLiteral("img_information");
    }
}

/// What closing the box without a button means.
QMessageBox::StandardButton negative(QMessageBox::StandardButtons buttons)
{
    for (const auto button : {QMessageBox::Cancel, QMessageBox::Close, QMessageBox::No, QMessageBox::Abort}) {
        if (buttons & button) {
            return button;
        }
    }
    for (const auto button : Order) {
        if (buttons == button) {
            return button;
        }
    }
    return QMessageBox::NoButton;
}

/// The default button. If none is named, it is the harmless answer, because users press Enter hastily.
QMessageBox::StandardButton presetOf(QMessageBox::StandardButtons buttons, QMessageBox::StandardButton named)
{
    if (buttons & named) {
        return named;
    }
    const QMessageBox::StandardButton escape = negative(buttons);
    if (escape != QMessageBox::NoButton) {
        return escape;
    }
    const auto* const first =
        std::find_if(std::begin(Order), std::end(Order), [buttons](auto button) { return (buttons & button) != 0; });
    return first == std::end(Order) ? QMessageBox::NoButton : *first;
}

QWidget* textWidget(const QString& text, QWidget* parent)
{
    auto* const label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    const QFontMetrics metrics = label->fontMetrics();
    const QRect natural =
        metrics.boundingRect(QRect(0, 0, MaximumTextWidth, 1 << 20), Qt::TextWordWrap | Qt::TextWrapAnywhere, text);
    const int width = qBound(MinimumTextWidth, natural.width() + 4, MaximumTextWidth);
    const int height = qMax(qMax(natural.height() + 4, label->heightForWidth(width)), IconSide);
    if (height <= MaximumTextHeight) {
        label->setFixedSize(width, height);
        return label;
    }
    label->setFixedWidth(width);
    label->setMinimumHeight(height);
    auto* const area = new QScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(label);
    area->setFixedSize(width + 16, MaximumTextHeight);
    area->setAccessibleName(text.left(80));
    area->viewport()->setAutoFillBackground(false);
    label->setAutoFillBackground(false);
    return area;
}

} // namespace

CMessageBoxDialog::CMessageBoxDialog(const MessageRequest& request, QWidget* parent)
    : CCommonDialog(parent), m_buttons(request.buttons)
{
    if (m_buttons == QMessageBox::NoButton) {
        m_buttons = QMessageBox::Ok;
    }
    setTitle(request.title);
    setAccessibleDescription(request.text);

    auto* const list = new CWidgetList(VerticalList, this);
    list->setMargin(20, 20, 20, 16);
    auto* const message = new CWidgetList(HorizontalList, list);
    auto* const icon = new QLabel(message);
    icon->setPixmap(CUiResourceManager::instance()->image(imageKey(request.kind), IconSide));
    message->addFixedWidget(icon, AnchorLeading, false);
    message->addFixedSpace(14);
    message->addFixedWidget(textWidget(request.text, message), AnchorMiddle, false);
    message->addStretchSpace(1);
    list->addFixedWidget(message, AnchorLine, true);
    list->addFixedSpace(20);
    list->addStretchSpace(1);

    auto* const row = new CWidgetList(HorizontalList, list);
    row->setSpacing(8);
    row->addStretchSpace(1);
    const QMessageBox::StandardButton preset = presetOf(m_buttons, request.defaultButton);
    CMediumNormalButton* presetButton = nullptr;
    for (const QMessageBox::StandardButton button : Order) {
        if (!(m_buttons & button)) {
            continue;
        }
        auto* const widget = new CMediumNormalButton(button, button == preset ? PrimaryButton : NormalButton, row);
        widget->setText(CMessageBox::buttonText(button));
        widget->setFixedSize(qMax(DialogButtonWidth, widget->sizeHint().width()),
                             qMax(DialogButtonHeight, widget->fontMetrics().height()));
        row->addFixedWidget(widget, AnchorLine, false);
        if (button == preset) {
            presetButton = widget;
        }
    }
    list->addFixedWidget(row, AnchorLine, true);
    setInnerWidget(list);
    if (presetButton) {
        presetButton->setFocus();
    }
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

bool CMessageBoxDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type != ButtonClicked) {
        return CCommonDialog::handleEvent(type, id, param, text, data);
    }
    m_answer = QMessageBox::StandardButton(id);
    done(1);
    return true;
}

void CMessageBoxDialog::done(int result)
{
    if (result == 0) {
        m_answer = negative(m_buttons);
    }
    CCommonDialog::done(result);
}

} // namespace WQ
