// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/Changes.h"

#include <WQ/CBaseWidget.h>
#include <WQ/IBaseHpfTableData.h>
#include <nvservice/CChangeInfo.h>

class QLayout;

namespace WQ
{
class CNormalButton;
class CSimpleTextWidget;
class CStandardHpfTable;
} // namespace WQ

namespace QAV
{

class CTextModel;

/// The changes that a search finds, newest first. The table grows at its end as the user scrolls, or on request while a
/// filter of the table hides rows; a refresh puts new changes before the others and keeps the user's place.
class CChangeList final : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    using Wanted = std::function<bool(const HistoryChange&)>;

    /// @param gate     of the panel
    /// @param isAudit  true: all attempts are searched, false: the history of a group
    CChangeList(const CCallbackGate& gate, bool isAudit, QWidget* parent);

    /// Empties the table and asks for the first page.
    void search(const QString& serverName, const HistorySearch& search);
    /// Shows no changes, and why; empty: what the client knows of it.
    void clear(const QString& reason = {});
    /// Asks for what is new.
    void refresh();
    /// Opens the first change that is wanted, once the answer that is under way has come.
    void openNext(const Wanted& wanted) { m_wanted = wanted; }
    /// Tells the user of changes that the table does not show yet.
    void note(const std::vector<nvservice::CChangeInfoPtr>& changes, bool isComplete);

    bool isLoading() const { return m_pages.state() == CPagedQuery::Loading; }
    /// Empty without a current row.
    std::optional<HistoryChange> current() const;
    WQ::CStandardHpfTable& table() const { return *m_table; }

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

Q_SIGNALS:
    /// Nothing is open any more.
    void sigCleared();
    /// The user looks at a change. `previous` is the revision before it of the same record, if the table has it.
    void sigOpened(const QAV::HistoryChange& change, std::optional<std::int64_t> previous);
    /// The user wants to read the change that is open.
    void sigEntered();
    /// The user wants to compare two changes.
    void sigComparisonWanted(const QAV::HistoryChange& earlier, const QAV::HistoryChange& later);
    /// A user has made one of the changes.
    void sigUserFound(const QString& userId, const QString& text);

private:
    QLayout* createToolBar();
    QLayout* createStateBar();
    void createTable();
    void start();
    void stop();
    void takePage(const QueryAnswer& answer);
    void takeNewest(const QueryAnswer& answer);
    std::vector<WQ::IBaseHpfTableDataPtr> rowsOf(const QueryAnswer& answer);
    /// Replaces the rows; the user stays where he is.
    void replaceRows(const std::vector<WQ::IBaseHpfTableDataPtr>& rows);
    void retry();
    /// What the button below the table does.
    enum EAction { NoAction, LoadMore, Stop, Retry };
    EAction action() const;
    void act();
    bool isAtEnd() const;
    void onScrolled(int position);
    void onFiltered();
    void loadMoreIfNeeded();
    void showState();
    void showAction(EAction action);
    QString countText() const;
    void dropNotice();
    /// The table may have the change that the notice is of, which may come before and after the answer.
    void dropNoticeIfShown();
    bool isShown(const nvservice::CChangeInfo& change) const;
    std::optional<HistoryChange> changeOfKey(const QString& key) const;
    std::optional<std::int64_t> revisionBefore(const QString& key) const;
    void openRow(const QString& key);
    void openWanted();
    void compareSelected();

    const bool m_isAudit;
    QString m_serverName;
    HistorySearch m_search;
    QString m_reason; ///< of an empty table without a search
    CPagedQuery m_pages;
    CPagedQuery m_newest; ///< the first page again, for a refresh
    QString m_problem;    ///< of the last answer that failed
    bool m_isReplacing = false;
    bool m_wantsMore = false;          ///< pages are loaded until the view is full, whatever the filter hides
    int m_position = 0;                ///< of the scroll bar
    nvservice::CChangeInfoPtr m_noted; ///< the latest change that the notice is of
    Wanted m_wanted;                   ///< empty: none

    CTextModel* m_model;
    WQ::CStandardHpfTable* m_table;
    WQ::CNormalButton* m_compare;
    WQ::CSimpleTextWidget* m_notice;
    WQ::CSimpleTextWidget* m_state;
    WQ::CNormalButton* m_action;
};

} // namespace QAV
