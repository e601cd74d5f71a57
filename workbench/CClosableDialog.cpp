// SPDX-License-Identifier: Apache-2.0
#include "CClosableDialog.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/EventType.h>

#include <QVBoxLayout>

namespace workbench
{

namespace
{

constexpr int LeastButtonWidth = 90;

} // namespace

CClosableDialog::CClosableDialog(QWidget* parent)
    : WQ::CCommonDialog(parent), m_contents(new QVBoxLayout), m_buttons(new QHBoxLayout)
{
    auto* const page = new QWidget(this);
    auto* const layout = new QVBoxLayout(page);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(10);
    layout->addLayout(m_contents, 1);
    layout->addLayout(m_buttons);
    m_buttons->addStretch(1);
    setInnerWidget(page);
    m_close = &addButton(CloseButton, tr("关闭"));
}

WQ::CMediumNormalButton& CClosableDialog::addButton(int id, const QString& text)
{
    auto* const button = new WQ::CMediumNormalButton(id, WQ::NormalButton, innerWidget());
    button->setText(text);
    button->setMinimumWidth(LeastButtonWidth);
    if (m_close) {
        m_buttons->insertWidget(m_buttons->indexOf(m_close), button);
    } else {
        m_buttons->addWidget(button);
    }
    return *button;
}

bool CClosableDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonClicked && id == CloseButton) {
        done(0);
        return true;
    }
    return WQ::CCommonDialog::handleEvent(type, id, param, std::move(text), data);
}

} // namespace workbench
