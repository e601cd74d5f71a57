#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QCheckBox>

namespace WQ
{

/// A check box. A click (mouse or Space) is reported as ButtonClicked with the control id, `param` = 1 when the box is
/// checked by it, else 0. setChecked() reports nothing. Blanks at both ends of the text are kept. Where there is too
/// little room, the letters move closer together, and beyond that the text ends with an ellipsis. UI thread only.
class WQ_EXPORT CCheckBox : public QCheckBox, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    CCheckBox(int id, const QString& text, QWidget* parent);
    ~CCheckBox() override;

    int id() const { return m_id; }
    /// Also the accessible name, without the blanks at its ends.
    void setText(const QString& text);

    void onUiResourceChanged() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_id;
};

} // namespace WQ
