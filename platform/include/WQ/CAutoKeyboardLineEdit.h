#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QLineEdit>

namespace WQ
{

/// A line edit with hint text, whose reading side is `getText` and `toString`. Reports nothing; see CLineEdit.
class WQ_EXPORT CAutoKeyboardLineEdit : public QLineEdit, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CAutoKeyboardLineEdit(QWidget* parent);
    ~CAutoKeyboardLineEdit() override;

    /// The text as it stands, blanks included.
    QString getText() const;
    /// The value of the text: `getText` here; edits that show something else than they mean override it.
    virtual QString toString() const;

    /// Shown while the edit is empty; also the accessible name unless another one was set.
    void setEmptyHintText(const QString& text);
    QString emptyHintText() const;
    /// Colour of the hint. An invalid colour (the default) means "clr_lineedit_empty_hint" of the current theme; a
    /// colour that equals that key's keeps following the theme.
    void setEmptyHintColor(const QColor& colour);
    QColor emptyHintColor() const;

    void onUiResourceChanged() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void applyHintColour();

    QColor m_hintColour;
};

} // namespace WQ
