// SPDX-License-Identifier: Apache-2.0
#include "support/wq/ScriptedPresenter.h"

#include <WQ/CBaseDialog.h>
#include <WQ/CMessageBox.h>

#include <QPointer>
#include <QtTest>

namespace support
{

namespace
{

QString kindName(QMessageBox::Icon kind)
{
    switch (kind) {
    case QMessageBox::Information:
        return QStringLiteral("information");
    case QMessageBox::Question:
        return QStringLiteral("question");
    case QMessageBox::Warning:
        return QStringLiteral("warning");
    case QMessageBox::Critical:
        return QStringLiteral("critical");
    default:
        return QStringLiteral("box");
    }
}

} // namespace

ScriptedPresenter::ScriptedPresenter() : m_before(WQ::CMessageBox::setPresenter(this)) {}

ScriptedPresenter::~ScriptedPresenter()
{
    verify();
    WQ::CMessageBox::setPresenter(m_before);
}

void ScriptedPresenter::expectMessage(QMessageBox::Icon kind, const QString& title, const QString& text,
                                      Buttons buttons, Button answer, Button defaultButton)
{
    m_steps.push_back({false, {kind, nullptr, title, text, buttons, defaultButton}, answer, {}});
}

void ScriptedPresenter::expectDialog(const Script& script)
{
    m_steps.push_back({true, {}, QMessageBox::NoButton, script});
}

QString ScriptedPresenter::describe(const WQ::MessageRequest& request)
{
    return QStringLiteral("%1 \"%2\": \"%3\" [buttons 0x%4, default 0x%5]")
        .arg(kindName(request.kind), request.title, request.text)
        .arg(int(request.buttons), 0, 16)
        .arg(int(request.defaultButton), 0, 16);
}

QString ScriptedPresenter::describe(const Step& step)
{
    return step.isDialog ? QStringLiteral("a dialog") : describe(step.message);
}

QStringList ScriptedPresenter::failures() const
{
    QStringList all = m_failures;
    for (const Step& step : m_steps) {
        all << QStringLiteral("did not come: %1").arg(describe(step));
    }
    return all;
}

QStringList ScriptedPresenter::takeFailures()
{
    const QStringList all = failures();
    m_failures.clear();
    m_steps.clear();
    return all;
}

bool ScriptedPresenter::verify()
{
    const QStringList all = takeFailures();
    for (const QString& failure : all) {
        QTest::qFail(qPrintable(failure), __FILE__, __LINE__);
    }
    return all.isEmpty();
}

QMessageBox::StandardButton ScriptedPresenter::showMessage(const WQ::MessageRequest& request)
{
    if (m_steps.empty() || m_steps.front().isDialog) {
        m_failures << QStringLiteral("came unexpected: %1").arg(describe(request));
        return QMessageBox::NoButton;
    }
    const Step step = m_steps.front();
    m_steps.pop_front();
    // Descriptions hold everything that is compared.
    const QString wanted = describe(step.message);
    const QString shown = describe(request);
    if (wanted != shown) {
        m_failures << QStringLiteral("expected %1, but %2 came").arg(wanted, shown);
    } else if (!(request.buttons & step.answer)) {
        m_failures << QStringLiteral("no such answer in %1").arg(shown);
    }
    return step.answer;
}

int ScriptedPresenter::execDialog(WQ::CBaseDialog& dialog)
{
    const QString name = QStringLiteral("dialog \"%1\"").arg(dialog.windowTitle());
    if (m_steps.empty() || !m_steps.front().isDialog) {
        m_failures << QStringLiteral("came unexpected: %1").arg(name);
        return 0;
    }
    const Script script = m_steps.front().script;
    m_steps.pop_front();
    dialog.setResult(0);
    dialog.setModal(true);
    dialog.show();
    const QPointer<WQ::CBaseDialog> shown(&dialog);
    script(dialog);
    if (!shown) {
        m_failures << QStringLiteral("%1 was destroyed while it was open").arg(name);
        return 0;
    }
    if (dialog.isVisible()) {
        m_failures << QStringLiteral("%1 was left open").arg(name);
        dialog.done(0);
    }
    return dialog.result();
}

} // namespace support
