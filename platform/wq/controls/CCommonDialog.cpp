// SPDX-License-Identifier: Apache-2.0
#include <WQ/CCommonDialog.h>

#include <QVBoxLayout>

namespace WQ
{

CCommonDialog::CCommonDialog(QWidget* parent) : CCustomDialog(parent)
{
    auto* const box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
}

CCommonDialog::~CCommonDialog() = default;

void CCommonDialog::setInnerWidget(QWidget* widget)
{
    if (m_inner && m_inner != widget) {
        layout()->removeWidget(m_inner);
        m_inner->hide();
    }
    m_inner = widget;
    if (m_inner) {
        layout()->addWidget(m_inner);
    }
}

QWidget* CCommonDialog::innerWidget() const
{
    return m_inner;
}

} // namespace WQ
