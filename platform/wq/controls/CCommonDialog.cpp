// SPDX-License-Identifier: Apache-2.0
#include <WQ/CCommonDialog.h>

#include <QPointer>
#include <QVBoxLayout>

namespace WQ
{

struct CCommonDialog::Private {
    QPointer<QWidget> inner;
};

CCommonDialog::CCommonDialog(QWidget* parent) : CCustomDialog(parent), m_d(new Private)
{
    auto* const box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
}

CCommonDialog::~CCommonDialog() = default;

void CCommonDialog::setInnerWidget(QWidget* widget)
{
    if (m_d->inner && m_d->inner != widget) {
        layout()->removeWidget(m_d->inner);
        m_d->inner->hide();
    }
    m_d->inner = widget;
    if (m_d->inner) {
        layout()->addWidget(m_d->inner);
    }
}

QWidget* CCommonDialog::innerWidget() const
{
    return m_d->inner;
}

} // namespace WQ
