// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QLineEdit>

#include <memory>

namespace WQ
{

/// A line edit with a hint text. Read it with `getText` or `toString`. It reports no events; see CLineEdit.
class WQ_EXPORT CAutoKeyboardLineEdit : public QLineEdit, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CAutoKeyboardLineEdit(QWidget* parent);
    ~CAutoKeyboardLineEdit() override;

    /// The text, including blanks.
    QString getText() const;
    /// The value that the text stands for. Here it is the text itself; override it if they differ.
    virtual QString toString() const;

    /// Sets the text that is shown while the edit is empty. It is also the accessible name unless another one was set.
    void setEmptyHintText(const QString& text);
    QString emptyHintText() const;
    /// Sets the colour of the hint. An invalid colour (the default) means "clr_lineedit_empty_hint" of the current
    /// theme. A colour equal to that one also follows the theme.
    void setEmptyHintColor(const QColor& colour);
    QColor emptyHintColor() const;

    void onUiResourceChanged() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void applyHintColour();

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
