// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QLabel>

#include <memory>

namespace WQ
{

/// One line of plain text. Blanks at both ends are kept; leading ones are half as wide as a Chinese character. A text
/// that is too long is elided and shown in full in the tool tip.
class WQ_EXPORT CSimpleTextWidget : public QLabel, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    /// A maximum width that no text exceeds.
    static constexpr int UnlimitedWidth = 100000;

    /// @param clickable  true: takes the keyboard focus, and reports a click, Space or Enter as ButtonClicked with `id`
    CSimpleTextWidget(bool clickable, int id, const QString& text, QWidget* parent);
    ~CSimpleTextWidget() override;

    int id() const;
    /// @param maximumTextWidth  the maximum width of the text in the size hint, in pixels
    void setText(const QString& text, int maximumTextWidth = UnlimitedWidth);
    /// Sets the colour of the text by a key of the theme; it follows theme changes. Empty: the palette's colour.
    void setColorKey(const QString& key);
    const QString& colorKey() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void onUiResourceChanged() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

private:
    int indentation() const;
    QSize textSize(int maximumWidth) const;

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
