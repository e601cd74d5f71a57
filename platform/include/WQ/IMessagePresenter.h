#pragma once

#include <WQ/Export.h>

#include <QMessageBox>
#include <QString>

class QWidget;

namespace WQ
{

class CBaseDialog;

/// What a message box shows.
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

/// Shows whatever stops the user until it is answered. There is one; CMessageBox::setPresenter replaces it. UI thread
/// only.
class WQ_EXPORT IMessagePresenter
{
public:
    virtual ~IMessagePresenter();

    /// Shows a message box and returns the button that the user pressed. Closing the box without a button gives its
    /// negative one (Cancel, Close or No), else its only one, else NoButton.
    virtual QMessageBox::StandardButton showMessage(const MessageRequest& request) = 0;

    /// Runs `dialog` modally and returns its result. The base runs the dialog's own event loop.
    virtual int execDialog(CBaseDialog& dialog);
};

} // namespace WQ
