#pragma once

#include <WQ/IMessagePresenter.h>

namespace WQ
{

/// Message boxes with Chinese buttons. Each call returns when the user has answered, with the button pressed; see
/// IMessagePresenter::showMessage. `parent` may be null: the active window is taken. UI thread only.
class WQ_EXPORT CMessageBox
{
public:
    using StandardButton = QMessageBox::StandardButton;
    using StandardButtons = QMessageBox::StandardButtons;

    CMessageBox() = delete;

    static StandardButton information(QWidget* parent, const QString& title, const QString& text,
                                      StandardButtons buttons = QMessageBox::Ok,
                                      StandardButton defaultButton = QMessageBox::NoButton);
    static StandardButton question(QWidget* parent, const QString& title, const QString& text,
                                   StandardButtons buttons = QMessageBox::Yes | QMessageBox::No,
                                   StandardButton defaultButton = QMessageBox::NoButton);
    static StandardButton warning(QWidget* parent, const QString& title, const QString& text,
                                  StandardButtons buttons = QMessageBox::Ok,
                                  StandardButton defaultButton = QMessageBox::NoButton);
    static StandardButton critical(QWidget* parent, const QString& title, const QString& text,
                                   StandardButtons buttons = QMessageBox::Ok,
                                   StandardButton defaultButton = QMessageBox::NoButton);

    /// The text on a standard button: 确定, 是, 否, 取消, ...
    static QString buttonText(StandardButton button);

    /// Replaces the presenter and returns the one before; null stands for the built-in one. The caller keeps owning
    /// what it passes and puts the former one back before it dies.
    static IMessagePresenter* setPresenter(IMessagePresenter* presenter);
    /// Never null.
    static IMessagePresenter* presenter();
};

} // namespace WQ
