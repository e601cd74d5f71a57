// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

namespace WQ
{

/// How serious a message is; determines colour and icon of a tip.
enum EMessageLevel : int {
    MessageInformation = 0,
    MessageWarning = 1,
    MessageError = 2,
};

/// A short message that floats beside a widget and fades out. It takes neither focus nor mouse input, follows the
/// widget and the theme, and is announced to assistive technology as an alert. It disappears at once when its widget is
/// hidden or destroyed. A widget has at most one tip; a new one replaces it. UI thread only.
class WQ_EXPORT CMessageTip : public QWidget, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    /// Shows `text` at `at`. If `at` is not visible, its nearest visible ancestor is used, so that the message is not
    /// lost. If there is none, or `at` is null, nothing is shown.
    /// @param alignment     Qt::Alignment: below (AlignBottom) or above (AlignTop) the widget, else over its middle;
    ///                      at its left (AlignLeft) or right edge (AlignRight), else centred. The tip is always moved
    ///                      into the window, to the other side of the widget if necessary.
    /// @param seconds       how long it is shown; 0 or less: until the widget is hidden or hideTip is called
    /// @param maximumWidth  pixels; a longer text is wrapped; 0 or less: the width of the window
    /// @return the tip, owned by the window; null if nothing is shown
    static CMessageTip* showTip(QWidget* at, int alignment, const QString& text, int seconds, EMessageLevel level,
                                int maximumWidth);
    static CMessageTip* showTip(QWidget* at, int alignment, const QString& text, int seconds, int level,
                                int maximumWidth)
    {
        return showTip(at, alignment, text, seconds, EMessageLevel(level), maximumWidth);
    }
    /// Removes the tip of the widget at once, if there is one.
    static void hideTip(const QWidget* at);
    /// The tip that was shown at `at` and has not faded out yet, else null.
    static CMessageTip* tipOf(const QWidget* at);

    ~CMessageTip() override;

    const QString& text() const { return m_text; }
    EMessageLevel level() const { return m_level; }
    QWidget* target() const { return m_target; }
    /// 0 before it fades in, 1 between fading in and fading out.
    qreal opacity() const { return m_opacity; }

    QSize sizeHint() const override;
    void onUiResourceChanged() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    CMessageTip(QWidget* target, QWidget* place, int alignment, const QString& text, int seconds, EMessageLevel level,
                int maximumWidth);
    QRect textRoom(const QSize& size) const;
    void settle();
    void go();

    QPointer<QWidget> m_target;
    QPointer<QWidget> m_place;
    QString m_text;
    EMessageLevel m_level;
    int m_alignment;
    int m_maximumWidth;
    qint64 m_shownMs;
    QBasicTimer m_timer;
    QElapsedTimer m_age;
    qreal m_opacity = 0;
};

} // namespace WQ
