// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseWidget.h>

#include <memory>

class QAbstractButton;

namespace WQ
{

/// Covers a widget while its data load: a veil, a spinning wheel and a text. It follows the size of the covered widget.
///
/// While the mask is visible, no input reaches the covered widget, whether by mouse, keyboard, shortcut, drag and drop
/// or assistive technology. Its child widgets are disabled, even while it is not on screen, and its pop-ups are closed.
/// Do not call setEnabled() of its direct children meanwhile. When the mask is hidden, the children that were enabled
/// are enabled again and the keyboard focus returns. To choose the widget that gets the focus, focus it before you
/// attach the mask. Windows opened from the covered widget are not blocked, and neither are the title bar and Esc of a
/// dialog, so that the user can leave a load that hangs.
///
/// The mask belongs to `parent`. While attached, it is a child of the covered widget. If that widget is destroyed
/// first, the mask returns to `parent`, hidden.
class WQ_EXPORT CLoadingMaskWidget : public CBaseWidget
{
    Q_OBJECT

public:
    /// Creates a hidden mask.
    CLoadingMaskWidget(const QString& text, QWidget* parent);
    ~CLoadingMaskWidget() override;

    QString text() const;
    void setText(const QString& text);

    /// Covers `target` and becomes visible, together with the target if that is hidden. A second call moves the mask;
    /// null does nothing. QWidget::hide() removes the cover.
    void attach(QWidget* target);
    QWidget* target() const;
    /// True while the wheel spins, which it does only while it is visible.
    bool isAnimating() const;

    bool eventFilter(QObject* watched, QEvent* event) override;
    void setVisible(bool visible) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    bool covers(const QObject* object) const;
    bool isShortcutCovered(const QObject* owner) const;
    /// Ends a running click animation without clicking the button.
    static void endAnimatedClick(QAbstractButton& button, QEvent* event);
    void cover();
    void takeFocus();
    void giveFocusBack();
    void closePopups() const;
    void disable(QWidget* child);
    void disableTarget();
    void enableTarget();
    void release();
    QRect wheelRect() const;

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
