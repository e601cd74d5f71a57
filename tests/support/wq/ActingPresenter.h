// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/CMessageBox.h>
#include <WQ/IMessagePresenter.h>

#include <functional>

namespace support
{

/// Does what the test wants when a box or dialog is open. It is the process's presenter while it lives.
class ActingPresenter : public WQ::IMessagePresenter
{
public:
    ActingPresenter() : m_before(WQ::CMessageBox::setPresenter(this)) {}
    ~ActingPresenter() override { WQ::CMessageBox::setPresenter(m_before); }
    ActingPresenter(const ActingPresenter&) = delete;
    ActingPresenter& operator=(const ActingPresenter&) = delete;

    QMessageBox::StandardButton showMessage(const WQ::MessageRequest& request) override { return onMessage(request); }
    int execDialog(WQ::CBaseDialog& dialog) override { return onDialog(dialog); }

    std::function<QMessageBox::StandardButton(const WQ::MessageRequest&)> onMessage;
    std::function<int(WQ::CBaseDialog&)> onDialog;

private:
    WQ::IMessagePresenter* const m_before;
};

} // namespace support
