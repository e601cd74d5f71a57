// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CBaseDialog.h>

#include <memory>

namespace WQ
{

/// A dialog with the client's own frame: a title bar to move it, a close button, and edges to resize it unless its size
/// is fixed. Sizes passed to resize() include the title bar. A star marks the title as long as there are unsaved edits.
class WQ_EXPORT CCustomDialog : public CBaseDialog
{
    Q_OBJECT

public:
    /// The height of the title bar in pixels.
    static constexpr int TitleHeight = 32;

    explicit CCustomDialog(QWidget* parent = nullptr);
    ~CCustomDialog() override;

    QString title() const;
    void setTitle(const QString& title);

    /// The area below the title bar and inside the frame, in the dialog's coordinates.
    QRect contentArea() const;
    /// True if the widget belongs to the title bar.
    bool isTitleControl(const QWidget* widget) const;
    /// True if the title shows that there are unsaved edits. It follows the user's input after a moment.
    bool isTitleMarked() const;

    void onUiResourceChanged() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    Qt::Edges edgesAt(const QPoint& position) const;

    void markTitle(bool isMarked);

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
