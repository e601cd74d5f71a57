#pragma once

#include <WQ/CBaseDialog.h>

class QToolButton;

namespace WQ
{

/// A dialog with the client's own frame: a title bar that moves it, with a close button, and edges that resize it
/// unless its size is fixed. Sizes given to resize() include the title bar.
class WQ_EXPORT CCustomDialog : public CBaseDialog
{
    Q_OBJECT

public:
    /// Height of the title bar in pixels.
    static constexpr int TitleHeight = 32;

    explicit CCustomDialog(QWidget* parent = nullptr);
    ~CCustomDialog() override;

    QString title() const;
    void setTitle(const QString& title);

    /// What is below the title bar and inside the frame, in the dialog's coordinates.
    QRect contentArea() const;
    /// Whether the widget belongs to the title bar.
    bool isTitleControl(const QWidget* widget) const;

    void onUiResourceChanged() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    Qt::Edges edgesAt(const QPoint& position) const;

    QToolButton* m_close;
};

} // namespace WQ
