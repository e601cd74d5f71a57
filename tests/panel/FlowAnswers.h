// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FlowWorld.h"

#include <random>

namespace panel_test
{

/// One run of random flows: its world, its dice and its story.
struct FlowRun {
    int below(int limit) { return int(random() % unsigned(limit)); }
    bool chance(int percent) { return below(100) < percent; }
    void note(const QString& what) { story << what; }

    FlowWorld world;
    std::mt19937 random;
    QStringList story;
    std::map<QString, int> counts; ///< how often what happened
};

/// What becomes of an operation and its answer.
enum EWeather { Prompt, Late, AnswerLost, RequestLost };

/// The answers to what the panel asks and does: which of them come, when, and what the user is told of them.
class FlowAnswers
{
public:
    explicit FlowAnswers(FlowRun& run) : m_run(run) {}

    EWeather forecast();
    /// Holds the answers to operations until end(); so many operations are going to be sent.
    void begin(Line& line, EWeather weather, int operations);
    void end(Line& line);
    /// Takes up the answer to the operation that was sent last.
    /// @param what  what the operation is called in the message; not used for risk settings
    /// @param riskGroup  the group whose settings were saved; 0: the operation was another one
    void take(Line& line, EWeather weather, utils::EErrorCode expected, const QString& what, int riskGroup);
    /// Until end() the panel waits for a moment only.
    void shortenDeadline(Line& line);

    bool arePending() const { return !m_pending.empty(); }
    void releaseSome(std::size_t atMost);
    void releaseAll() { releaseSome(m_pending.size()); }
    /// Lets held answers to queries come back in any order.
    void releaseQueries();

    void openRiskSettings(int groupId) { m_openRiskGroup = groupId; }
    /// The panel is gone: nobody is told of what still comes.
    void forgetPanel();

private:
    /// An answer that the panel still waits for.
    struct PendingAnswer {
        Line* line = nullptr;
        int number = 0;
        QMessageBox::Icon kind = QMessageBox::Information;
        QString text;
        /// Of the risk settings: the group that has to be open for the answer to be told; 0: told in any case.
        int riskGroup = 0;
        bool isHeard = true; ///< by a panel that is still there
    };

    void tell(const PendingAnswer& answer);

    FlowRun& m_run;
    std::vector<PendingAnswer> m_pending;
    int m_openRiskGroup = 0;
};

} // namespace panel_test
