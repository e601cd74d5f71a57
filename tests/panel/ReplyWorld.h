// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PanelFixture.h"

#include "support/wq/ScriptedPresenter.h"

#include <WQ/CBaseDialog.h>

#include <array>
#include <map>
#include <random>

namespace panel_test
{

/// What the panel and its group dialog ask of two servers, and what they have to show of the answers: those to the
/// latest question only. The test answers each question when and how it likes, and lets the events that the answers
/// become be handled when it likes. The servers' groups and accounts have equal ids.
class ReplyWorld
{
public:
    /// How a server answers.
    enum EAnswer { Complete, Twice, FailedWithRecords, Failed, AnswerCount };

    explicit ReplyWorld(unsigned seed);

    void openPanel();
    /// The panel asks for its groups: all servers with an empty name.
    void switchTo(const std::string& serverName);
    void activate();
    void refresh();
    /// Has the user delete a listed group.
    void deleteGroup();
    /// Opens the group dialog for a listed group and runs `script` while it is open.
    void editGroup(const std::function<void()>& script);

    /// Answers any question that is open; the answer becomes an event that waits.
    void answerAny();
    /// Handles the events that wait.
    void deliver();
    void answerAll();
    /// Fails the test when panel or group dialog show anything else than they have to.
    void check();

    bool hasGroups() const { return !m_groups.empty(); }
    bool hasOpenQuestions() const { return !m_open.empty(); }
    int below(int limit) { return int(m_random() % unsigned(limit)); }

    PanelFixture client;
    support::ScriptedPresenter boxes;

private:
    using Handler = QAV::ITransport::ReplyHandler;
    static constexpr std::size_t Servers = 2;

    /// A question that the panel or the dialog has put to one server or to both.
    struct Question {
        int dataType = 0;
        int round = 0; ///< of the panel's queries, of the dialog's showings or of the panels, as the data type is
        std::size_t unput = 0;
        std::size_t unanswered = 0;
        std::array<std::vector<nvservice::IDataPtr>, Servers> records;
        std::array<QString, Servers> errors;
    };
    using QuestionPtr = std::shared_ptr<Question>;
    /// The part of a question that one server has to answer.
    struct Part {
        QuestionPtr question;
        std::size_t server = 0;
        Handler handler;
    };
    static constexpr int Deletion = -1; ///< in place of a data type

    void connectServer(std::size_t server);
    void take(std::size_t server, int dataType, Handler handler);
    int roundOf(int dataType) const;
    void answer(const Part& part);
    std::vector<nvservice::IDataPtr> recordsOf(std::size_t server, int dataType);
    void beginRound();
    /// What the event of an answered question leads to.
    void expect(const Question& question);
    void expectGroups(const Question& question);
    void expectProducts(const Question& question);
    void expectAccounts(const Question& question);
    void expectOutcome(const Question& question);
    void checkDialog(WQ::CBaseDialog& dialog, const std::string& product);

    std::mt19937 m_random;
    int m_serial = 0; ///< counts the answers, whose records differ
    std::array<boost::shared_ptr<support::CFakeTransport>, Servers> m_servers;
    std::vector<Part> m_open;
    std::vector<QuestionPtr> m_waiting; ///< have become events
    QuestionPtr m_latest;
    int m_panel = 0;
    int m_askedRound = 0;

    // What there has to be.
    std::string m_current;
    int m_round = 0;
    int m_showing = 0;
    bool m_isCovered = false;
    std::map<int, boost::shared_ptr<nvservice::CAccountGroup>> m_groups; ///< that are listed, by id
    std::map<std::string, std::string> m_products;                       ///< by account key
    WQ::CBaseDialog* m_dialog = nullptr;                                 ///< while it is open
    bool m_hasInstitutions = false;
    bool m_hasAccounts = false;
    std::size_t m_dialogServer = 0; ///< of its group
    int m_candidates = 0;
    /// The questions that an event has to lead to, and those that were put.
    std::vector<int> m_expectedQuestions;
    std::vector<int> m_askedQuestions;
};

} // namespace panel_test
