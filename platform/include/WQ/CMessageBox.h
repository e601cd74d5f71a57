// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IMessagePresenter.h>

namespace WQ
{

/// Message boxes with Chinese buttons. Each call blocks until the user has answered and returns the pressed button; see
/// IMessagePresenter::showMessage. If `parent` is null, the active window is used. UI thread only.
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

    /// The text of a standard button: 确定, 是, 否, 取消, ...
    static QString buttonText(StandardButton button);

    /// Replaces the presenter and returns the previous one; null means the built-in one. The caller keeps ownership and
    /// must restore the previous presenter before it destroys its own.
    static IMessagePresenter* setPresenter(IMessagePresenter* presenter);
    /// Never null.
    static IMessagePresenter* presenter();
};

} // namespace WQ
