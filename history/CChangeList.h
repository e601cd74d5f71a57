// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/CPagedTable.h"
#include "history/Changes.h"

#include <nvservice/CChangeInfo.h>

namespace QAV
{

/// The changes that a search finds, newest first.
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
    void refresh() { m_pages->refresh(); }
    /// Opens the first change that is wanted, once the answer that is under way has come.
    void openNext(const Wanted& wanted) { m_wanted = wanted; }
    /// Tells the user of changes that the table does not show yet.
    void note(const std::vector<nvservice::CChangeInfoPtr>& changes, bool isComplete);

    bool isLoading() const { return m_pages->isLoading(); }
    /// Empty without a current row.
    std::optional<HistoryChange> current() const;
    WQ::CStandardHpfTable& table() const { return m_pages->table(); }

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
    CPagedTable::Rows rowsOf(const QueryAnswer& answer);
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
    HistorySearch m_search;
    nvservice::CChangeInfoPtr m_noted; ///< the latest change that the notice is of
    Wanted m_wanted;                   ///< empty: none

    CPagedTable* m_pages;
    WQ::CNormalButton* m_compare;
    WQ::CSimpleTextWidget* m_notice;
};

} // namespace QAV
