// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QMessageBox>
#include <QString>

class QWidget;

namespace WQ
{

class CBaseDialog;

/// The contents of a message box.
struct MessageRequest {
    /// QMessageBox::Information, Question, Warning or Critical.
    QMessageBox::Icon kind = QMessageBox::NoIcon;
    /// May be null.
    QWidget* parent = nullptr;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
    /// NoButton: none.
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

/// Shows message boxes and modal dialogs. There is one presenter; CMessageBox::setPresenter replaces it. UI thread
/// only.
class WQ_EXPORT IMessagePresenter
{
public:
    virtual ~IMessagePresenter();

    /// Shows a message box and returns the button that the user pressed. If the user closes the box without a button,
    /// returns its negative button (Cancel, Close or No), else its only button, else NoButton.
    virtual QMessageBox::StandardButton showMessage(const MessageRequest& request) = 0;

    /// Runs `dialog` modally and returns its result. The base class runs the dialog's own event loop.
    virtual int execDialog(CBaseDialog& dialog);
};

} // namespace WQ
