// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/ButtonPainter.h>
#include <WQ/CUiResourceChangeHandler.h>

#include <QPushButton>

#include <memory>

namespace WQ
{

/// A push button that reports each click (mouse, Space or Enter) as ButtonClicked with its control id. It is never a
/// dialog's default button, so Enter elsewhere does not press it. A fixed width is kept unless fonts are scaled up and
/// the text needs more.
class WQ_EXPORT CNormalButton : public QPushButton, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    ~CNormalButton() override;

    int id() const;
    int buttonType() const;
    /// Also sets the accessible name.
    void setText(const QString& text);
    /// The keys press the button as a click does, wherever the focus is in its window. The tool tip names them. With
    /// `within`, the focus has to be inside of that widget, which also has the action of the keys: the client lists the
    /// actions of a panel in a menu. Call it once, with the text set.
    void setKeys(const QKeySequence& keys, QWidget* within = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void onUiResourceChanged() override;

protected:
    CNormalButton(int id, bool tabStop, int buttonType, int height, QWidget* parent);
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
