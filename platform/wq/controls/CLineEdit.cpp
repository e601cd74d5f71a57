// SPDX-License-Identifier: Apache-2.0
#include <WQ/CEventDeliverer.h>
#include <WQ/CLineEdit.h>

namespace WQ
{

struct CLineEdit::Private {
    int id;
};

CLineEdit::CLineEdit(int id, QWidget* parent) : CAutoKeyboardLineEdit(parent), m_d(new Private{id})
{
    connect(this, &QLineEdit::textChanged, this,
            [this](const QString& text) { deliverEvent(this, LineEditTextChanged, m_d->id, 0, text); });
    connect(this, &QLineEdit::returnPressed, this, [this] { deliverEvent(this, ButtonOrEnter, m_d->id, 0, text()); });
}

CLineEdit::~CLineEdit() = default;

int CLineEdit::id() const
{
    return m_d->id;
}

} // namespace WQ
