#pragma once

#include <WQ/CBaseWidget.h>

#include <QBasicTimer>
#include <QPointer>

namespace WQ
{

/// Covers a widget while its data loads: a veil, a turning wheel and a text. It follows the size of what it covers, and
/// neither mouse nor keyboard reach the covered widget; the keyboard focus comes back when the mask is hidden.
/// Over a dialog with a title bar the title bar and Esc stay free, so that a load that hangs can be left.
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

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    bool covers(const QObject* object) const;
    void cover();
    void takeFocus(QWidget* from);
    void release();
    QRect wheelRect() const;

    QPointer<QWidget> m_owner;
    QPointer<QWidget> m_target;
    QPointer<QWidget> m_focusBefore;
    QString m_text;
    QBasicTimer m_timer;
    int m_step = 0;
};

} // namespace WQ
