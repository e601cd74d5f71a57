// SPDX-License-Identifier: Apache-2.0
#include <WQ/CEventDeliverer.h>
#include <WQ/CLineEdit.h>

namespace WQ
{

CLineEdit::CLineEdit(int id, QWidget* parent) : CAutoKeyboardLineEdit(parent), m_id(id)
{
    connect(this, &QLineEdit::textChanged, this,
            [this](const QString& text) { deliverEvent(this, LineEditTextChanged, m_id, 0, text); });
    connect(this, &QLineEdit::returnPressed, this, [this] { deliverEvent(this, ButtonOrEnter, m_id, 0, text()); });
}

CLineEdit::~CLineEdit() = default;

} // namespace WQ
