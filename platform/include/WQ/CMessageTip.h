#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

namespace WQ
{

/// How serious a message is; decides colour and sign of a tip.
enum EMessageLevel : int {
    MessageInformation = 0,
    MessageWarning = 1,
    MessageError = 2,
};

/// A short message that floats at a widget and fades away by itself. It takes neither focus nor mouse, follows the
/// widget and the theme, is announced to assistive technology as an alert, and goes at once when its widget is hidden
/// or destroyed. There is at most one per widget: a new one replaces it. UI thread only.
class WQ_EXPORT CMessageTip : public QWidget, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    /// Shows `text` at `at`. A widget that can't be seen stands for its nearest ancestor that can, so that the message
    /// is not lost; when there is none, or `at` is null, nothing is shown.
    /// @param alignment     Qt::Alignment, where the tip stands: below (AlignBottom) or above (AlignTop) the widget,
    ///                      else over its middle; at its left (AlignLeft) or right edge (AlignRight), else centred.
    ///                      It is always moved into the window, to the other side of the widget if need be.
    /// @param seconds       how long it is shown; 0 or less: until the widget is hidden or hideTip is called
    /// @param maximumWidth  pixels; a longer text is wrapped; 0 or less: as wide as the window
    /// @return the tip, owned by the window; null when nothing is shown
    static CMessageTip* showTip(QWidget* at, int alignment, const QString& text, int seconds, EMessageLevel level,
                                int maximumWidth);
    static CMessageTip* showTip(QWidget* at, int alignment, const QString& text, int seconds, int level,
                                int maximumWidth)
    {
        return showTip(at, alignment, text, seconds, EMessageLevel(level), maximumWidth);
    }
    /// Takes the tip of the widget away at once; without one does nothing.
    static void hideTip(const QWidget* at);
    /// The tip that `at` was given and that has not faded yet, else null.
    static CMessageTip* tipOf(const QWidget* at);

    ~CMessageTip() override;

    const QString& text() const { return m_text; }
    EMessageLevel level() const { return m_level; }
    QWidget* target() const { return m_target; }
    /// 0 while it is not seen yet, 1 between fading in and fading out.
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
