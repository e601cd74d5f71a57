// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CAutoKeyboardLineEdit.h>

#include <memory>

namespace WQ
{

/// A line edit that reports Enter as ButtonOrEnter and a change of the text as LineEditTextChanged, each exactly once,
/// with the control id and the text. Enter presses no default button.
class WQ_EXPORT CLineEdit : public CAutoKeyboardLineEdit
{
    Q_OBJECT

public:
    CLineEdit(int id, QWidget* parent);
    ~CLineEdit() override;

    int id() const;

private:
    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
