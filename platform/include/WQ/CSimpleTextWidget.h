#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QLabel>

namespace WQ
{

/// One line of plain text. Blanks at both ends are kept; those at the beginning are half a Chinese character wide. Text
/// that finds no room ends with an ellipsis and is shown whole in the tool tip.
class WQ_EXPORT CSimpleTextWidget : public QLabel, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    /// A maximum width that no text reaches.
    static constexpr int UnlimitedWidth = 100000;

    /// @param clickable  true: reports a click, Space or Enter as ButtonClicked with `id`, and takes the keyboard focus
    CSimpleTextWidget(bool clickable, int id, const QString& text, QWidget* parent);
    ~CSimpleTextWidget() override;

    int id() const { return m_id; }
    /// @param maximumTextWidth  pixels that the text may ask for
    void setText(const QString& text, int maximumTextWidth = UnlimitedWidth);
    /// Colour of the text by key of the theme; follows theme switches. Empty: the palette's.
    void setColorKey(const QString& key);
    const QString& colorKey() const { return m_colorKey; }

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

    QString m_colorKey;
    int m_id;
    int m_maximumTextWidth = UnlimitedWidth;
    bool m_clickable;
    bool m_pressed = false;
};

} // namespace WQ
