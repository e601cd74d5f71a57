// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CUiResourceChangeHandler.h>

#include <QCheckBox>

#include <memory>

namespace WQ
{

/// A check box. A click (mouse or Space) is reported as ButtonClicked with the control id; `param` is 1 if the box is
/// now checked, else 0. setChecked() reports nothing. Blanks at both ends of the text are kept. If the box is too
/// narrow, the letters move closer together; if that is not enough, the text is elided. UI thread only.
class WQ_EXPORT CCheckBox : public QCheckBox, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    CCheckBox(int id, const QString& text, QWidget* parent);
    ~CCheckBox() override;

    int id() const;
    /// Also sets the accessible name, without the blanks at both ends.
    void setText(const QString& text);

    void onUiResourceChanged() override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
