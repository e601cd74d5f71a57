// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FlowAnswers.h"
#include "FlowDialogs.h"

namespace panel_test
{

/// What users do with the panel and its dialogs, at random: each flow is one of them, from the click to the answer.
class RandomFlows
{
public:
    explicit RandomFlows(FlowRun& run) : m_run(run) {}

    void playOne();
    /// Lets the answers come that are still on their way.
    void finish() { m_answers.releaseAll(); }

private:
    void addGroup();
    void editGroup();
    void deleteGroup();
    void configureGroup();
    void refresh();
    void refreshInDisorder();
    void loseARefresh();
    void switchServer();
    void search();
    void reopenPanel();
    void letColleagueWork();

    /// @param listed  the group to edit; null for a new one
    void runEditor(const ModelGroup* listed, const std::function<void()>& openEditor);
    EditorPlan makePlan(const GroupInput& input, bool isNew);
    QString anyName();
    std::int64_t anyAccount(int institution);
    /// Why the panel itself refuses to save a group; empty when it doesn't.
    QString panelsRefusal(const GroupInput& input, int ownId);
    void saveRisk(WQ::CBaseDialog& dialog, Line& line, int groupId, std::int64_t loadedRevision);
    /// What the service answers to somebody else.
    void work(Line& line);
    const ModelGroup* anyListed();
    void pressRowButton(int groupId, int button);

    FlowRun& m_run;
    FlowAnswers m_answers{m_run};
    int m_names = 0;
};

} // namespace panel_test
