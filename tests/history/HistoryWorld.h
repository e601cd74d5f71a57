// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "HistoryFixture.h"

#include <map>
#include <random>
#include <set>

namespace history_test
{

/// The panel before two servers on which changes are made all the time, and a model of what it has to show: the answers
/// to the latest questions only, without a gap. Each question is answered when and how the test likes; the event that
/// an answer becomes may wait while the user does something else.
class HistoryWorld
{
public:
    explicit HistoryWorld(unsigned seed);

    /// Does something at random: the user, the servers or the event loop. Fails the test when the panel shows anything
    /// else than it has to.
    void takeStep();
    /// Lets everything come to rest.
    void answerAll();
    /// How often each thing happened, to see that a course visits it.
    std::map<QString, int> counts;

private:
    using Handler = QAV::ITransport::ReplyHandler;
    enum EKind { Page, Newest, Detail, KindCount };
    struct Entry {
        int id;
        int group;
        bool isDone;
    };
    struct Server {
        std::string name;
        QString tag;
        std::vector<Entry> entries; ///< by rising id
    };
    struct Question {
        int number = 0;
        EKind kind = Page;
        std::size_t server = 0;
        int group = -1;
        std::string outcome;
        int cursor = 0; ///< entries before this id; 0: from the newest on
        int detail = 0; ///< of this entry
        Handler handler;
    };
    struct Answer {
        Question question;
        std::vector<int> ids;
        int cursor = 0; ///< of the next page; 0: there is none
        QString error;
        QString text; ///< of the detail
    };
    enum EState { Idle, Loading, HasMore, Complete, Failed };

    int below(int limit) { return int(m_random() % unsigned(limit)); }
    void connect(std::size_t server);
    void grow();
    void take(std::size_t server, const nvservice::CKolmQueryDataReq& request, const Handler& handler);
    bool fits(const Question& question, const Entry& entry) const;
    boost::shared_ptr<nvservice::CAuditEntry> record(const Entry& entry) const;

    // What the user does.
    void reopen();
    void switchTo(int server, bool isHidden);
    void chooseGroup();
    void chooseOutcome();
    void refresh(bool isByActivation);
    void retry();
    void scroll();
    void filter();
    void loadMoreOrStop();
    void openRow();

    void answerAny();
    void deliver();
    /// What the event of an answer leads to.
    void expect(const Answer& answer);
    void expectNewest(const Answer& answer);
    /// The panel forgets what it shows, and asks anew if it may.
    void begin();
    bool isAsking() const { return m_server >= 0; }
    /// What the filter leaves, from the oldest on.
    std::vector<int> visible() const;
    /// True if the filter leaves it to the user to load more.
    bool isUpToTheUser() const;
    void check();
    QString expectedState() const;

    std::mt19937 m_random;
    HistoryFixture m_client;
    std::vector<Server> m_servers;
    std::vector<Question> m_open;
    std::vector<Answer> m_waiting; ///< at most one
    int m_lastNumber = 0;

    // What there has to be.
    int m_server = 0; ///< -1: none
    int m_group = -1;
    std::string m_outcome;
    int m_filter = -1;            ///< the group that the header filters by; -1: none
    std::set<int> m_shown;        ///< what has been loaded
    int m_latest[KindCount] = {}; ///< the number of the question whose answer counts; 0: none
    EState m_pages = Idle;
    EState m_newest = Idle;
    int m_cursor = 0;
    QString m_problem;
    int m_current = 0;
    QString m_detail; ///< what the comparison shows; empty: it is loading
};

} // namespace history_test
