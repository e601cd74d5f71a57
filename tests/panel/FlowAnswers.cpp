// SPDX-License-Identifier: Apache-2.0
#include "FlowAnswers.h"

#include "support/qav/Client.h"

#include <QtTest>

namespace panel_test
{

using support::CUnsteadyTransport;
using utils::EErrorCode;

namespace
{

constexpr std::chrono::milliseconds ShortDeadline(20);

} // namespace

EWeather FlowAnswers::forecast()
{
    const int at = m_run.below(100);
    return at < 60 ? Prompt : at < 85 ? Late : at < 93 ? AnswerLost : RequestLost;
}

void FlowAnswers::begin(Line& line, EWeather weather, int operations)
{
    line.transport->setHold([](const CUnsteadyTransport::Request& request) { return request.isOperation; });
    if (weather == AnswerLost || weather == RequestLost) {
        shortenDeadline(line);
    }
    if (weather == RequestLost) {
        line.transport->loseOperations(operations);
    }
}

void FlowAnswers::shortenDeadline(Line& line)
{
    support::centre().setDeadline(line.server.name, ShortDeadline);
}

void FlowAnswers::end(Line& line)
{
    support::centre().setDeadline(line.server.name, std::chrono::hours(1));
    line.transport->setHold({});
    line.transport->waitForServer();
}

void FlowAnswers::take(Line& line, EWeather weather, EErrorCode expected, const QString& what, int riskGroup)
{
    PendingAnswer answer;
    answer.line = &line;
    answer.riskGroup = riskGroup;
    const bool isRisk = riskGroup != 0;
    const int dataType = isRisk ? nvservice::DataType::GroupRiskConfig : nvservice::DataType::AccountGroup;
    QString error;
    if (weather == AnswerLost || weather == RequestLost) {
        error = QStringLiteral("分系统“%1”未应答：超过 %2 毫秒，未知是否已执行")
                    .arg(line.name())
                    .arg(ShortDeadline.count());
    }
    // The answers of earlier operations may still be held: this one's is the last of its kind.
    for (const auto& held : line.transport->heldReplies()) {
        if (held.request.dataType == nvservice::DataType::EmailRule) {
            line.transport->release(held.number); // nobody listens to it
        } else if (held.request.dataType == dataType) {
            answer.number = held.number;
        }
    }
    if (weather != RequestLost) {
        const auto all = line.transport->heldReplies();
        const auto held =
            std::find_if(all.begin(), all.end(), [&](const auto& reply) { return reply.number == answer.number; });
        QVERIFY2(held != all.end(), "the operation was not sent");
        if (held->error.code() != expected) {
            m_run.note(QStringLiteral("the service says: %1").arg(QString::fromStdString(held->error.errorMsg())));
        }
        QCOMPARE(int(held->error.code()), int(expected));
        if (weather != AnswerLost) {
            error = QString::fromStdString(held->error.errorMsg());
        }
    }
    if (!isRisk) {
        answer.text = what + (error.isEmpty() ? QStringLiteral("成功!") : QStringLiteral("失败!(%1)").arg(error));
    } else {
        answer.text = error.isEmpty() ? QStringLiteral("保存成功") : error;
    }
    if (isRisk && !error.isEmpty()) {
        answer.kind = QMessageBox::Critical;
    }
    m_run.note(QStringLiteral("  -> %1%2").arg(answer.text, weather == Late ? " (later)" : ""));
    ++m_run.counts[error.isEmpty() ? "operations done" : "operations refused or lost"];

    switch (weather) {
    case Prompt:
        tell(answer);
        break;
    case Late:
        m_pending.push_back(answer);
        break;
    case AnswerLost:
    case RequestLost:
        if (weather == AnswerLost) {
            line.transport->drop(answer.number);
        }
        m_run.world.boxes.expectMessage(answer.kind, "提示", answer.text);
        QVERIFY(waitUntil([this] { return m_run.world.boxes.failures().isEmpty(); }));
        break;
    }
}

void FlowAnswers::tell(const PendingAnswer& answer)
{
    const bool isTold = answer.isHeard && (answer.riskGroup == 0 || answer.riskGroup == m_openRiskGroup);
    if (isTold) {
        m_run.world.boxes.expectMessage(answer.kind, "提示", answer.text);
    }
    answer.line->transport->release(answer.number);
    m_run.world.settle();
}

void FlowAnswers::releaseSome(std::size_t atMost)
{
    for (std::size_t i = 0; i < atMost && !m_pending.empty(); ++i) {
        const auto chosen = m_pending.begin() + m_run.below(int(m_pending.size()));
        const PendingAnswer answer = *chosen;
        m_pending.erase(chosen);
        m_run.note(QStringLiteral("the answer comes: %1").arg(answer.text));
        tell(answer);
    }
}

void FlowAnswers::releaseQueries()
{
    for (;;) {
        m_run.world.settle();
        std::vector<std::pair<CUnsteadyTransport*, int>> held;
        for (std::size_t i = 0; i < m_run.world.lines(); ++i) {
            CUnsteadyTransport* const transport = m_run.world.line(i).transport.get();
            for (const auto& reply : transport->heldReplies()) {
                if (!reply.request.isOperation) {
                    held.emplace_back(transport, reply.number);
                }
            }
        }
        if (held.empty()) {
            return;
        }
        const auto& [transport, number] = held[std::size_t(m_run.below(int(held.size())))];
        transport->release(number);
    }
}

void FlowAnswers::forgetPanel()
{
    for (PendingAnswer& answer : m_pending) {
        answer.isHeard = false;
    }
    m_openRiskGroup = 0;
}

} // namespace panel_test
