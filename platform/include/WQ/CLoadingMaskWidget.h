#pragma once

#include <WQ/CBaseWidget.h>

#include <QBasicTimer>
#include <QPointer>
#include <QVector>

class QAbstractButton;

namespace WQ
{

/// Covers a widget while its data loads: a veil, a turning wheel and a text. It follows the size of what it covers.
///
/// No input reaches the covered widget, neither by mouse, keyboard, shortcut or drag and drop nor by assistive
/// technology: its child widgets are disabled, also while it is not on screen, and what it has popped up is closed.
/// When the mask is hidden, what was enabled is enabled again and the keyboard focus comes back; what is to have it is
/// given the focus before the mask is attached. Windows opened from the covered widget stay free, and so do the title
/// bar and Esc of a dialog, so that a load that hangs can be left. Until the mask is hidden, setEnabled() is not for
/// the direct children of what it covers.
///
/// The mask belongs to `parent`. While attached it is a child of the covered widget; when that one is destroyed first,
/// the mask returns to `parent`, hidden.
class WQ_EXPORT CLoadingMaskWidget : public CBaseWidget
{
    Q_OBJECT

public:
    /// Hidden at first.
    CLoadingMaskWidget(const QString& text, QWidget* parent);
    ~CLoadingMaskWidget() override;

    QString text() const;
    void setText(const QString& text);

    /// Covers `target` and shows (with the target, if that is hidden). A second call moves it; null does nothing.
    /// QWidget::hide() uncovers.
    void attach(QWidget* target);
    QWidget* target() const;
    /// True while the wheel turns, which it does only while it can be seen.
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
    /// Lets a click run out without an effect.
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

    QPointer<QWidget> m_owner;
    QPointer<QWidget> m_target;
    QPointer<QWidget> m_focusBefore;
    /// The children of the target that are disabled because of the mask.
    QVector<QPointer<QWidget>> m_disabled;
    QString m_text;
    QBasicTimer m_timer;
    int m_step = 0;
};

} // namespace WQ
