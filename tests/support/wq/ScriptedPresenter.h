// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/IMessagePresenter.h>

#include <QStringList>

#include <deque>
#include <functional>

namespace support
{

/// Answers message boxes and drives modal dialogs as a test has announced, in that order. A box or dialog that nobody
/// announced, one that differs in kind, title, text, buttons or default, one that was announced and does not come, and
/// a dialog that its script leaves open are failures: they fail the test that runs when the presenter is verified or
/// dies.
///
/// It is the process's presenter while it lives.
class ScriptedPresenter : public WQ::IMessagePresenter
{
public:
    using Button = QMessageBox::StandardButton;
    using Buttons = QMessageBox::StandardButtons;
    using Script = std::function<void(WQ::CBaseDialog&)>;

    ScriptedPresenter();
    ~ScriptedPresenter() override;
    ScriptedPresenter(const ScriptedPresenter&) = delete;
    ScriptedPresenter& operator=(const ScriptedPresenter&) = delete;

    /// The next one to come is this box; it is answered with `answer`.
    void expectMessage(QMessageBox::Icon kind, const QString& title, const QString& text,
                       Buttons buttons = QMessageBox::Ok, Button answer = QMessageBox::Ok,
                       Button defaultButton = QMessageBox::NoButton);
    /// The same for a box with Yes and No.
    void expectQuestion(QMessageBox::Icon kind, const QString& title, const QString& text, Button answer)
    {
        expectMessage(kind, title, text, QMessageBox::Yes | QMessageBox::No, answer);
    }
    /// The next one to come is a dialog. It is shown, `script` runs on it (waiting where it must) and has to end it.
    void expectDialog(const Script& script);

    /// What went wrong so far, what was announced and has not come included.
    QStringList failures() const;
    /// The same, and forgets it and whatever is still announced: for tests of the presenter itself.
    QStringList takeFailures();
    /// Fails the running test with each failure; true when there is none. Forgets them.
    bool verify();

    QMessageBox::StandardButton showMessage(const WQ::MessageRequest& request) override;
    int execDialog(WQ::CBaseDialog& dialog) override;

private:
    struct Step {
        bool isDialog = false;
        WQ::MessageRequest message;
        Button answer = QMessageBox::NoButton;
        Script script;
    };
    static QString describe(const WQ::MessageRequest& request);
    static QString describe(const Step& step);

    WQ::IMessagePresenter* m_before;
    std::deque<Step> m_steps;
    QStringList m_failures;
};

} // namespace support
