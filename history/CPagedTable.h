// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/Requests.h"

#include <WQ/CBaseWidget.h>
#include <WQ/IBaseHpfTableData.h>

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

/// A table whose rows come in pages, and below it how much of it there is. It grows at its end as the user scrolls, or
/// on request while a filter of the table hides rows; a refresh puts new rows before the others and keeps the user's
/// place.
class CPagedTable final : public WQ::CBaseWidget
{
    Q_OBJECT

public:
    using Rows = std::vector<WQ::IBaseHpfTableDataPtr>;
    using RowsOf = std::function<Rows(const QueryAnswer&)>;

    /// @param gate    of the panel
    /// @param rowsOf  the rows that the table has for an answer
    CPagedTable(const CCallbackGate& gate, int tableId, const QStringList& headers, RowsOf rowsOf, QWidget* parent);

    /// Empties the table and asks for the first page.
    void start(const QString& serverName, const QueryPart& query);
    /// Shows no rows, and why; empty: what the client knows of it.
    void clear(const QString& reason);
    /// Asks for what is new.
    void refresh();

    /// True before a start and after `clear`.
    bool isIdle() const { return m_pages.state() == CPagedQuery::Idle; }
    /// True while a page is under way.
    bool isLoading() const { return m_pages.state() == CPagedQuery::Loading; }
    WQ::CStandardHpfTable& table() const { return *m_table; }
    const CTextModel& model() const { return *m_model; }

    bool handleEvent(int type, int id, int param, QString text, void* data) override;

Q_SIGNALS:
    /// There are no rows any more.
    void sigCleared();
    /// What is new is asked for.
    void sigRefreshing();
    /// An answer has come; not for a page while a refresh is under way.
    void sigAnswered();
    /// Another row is the current one, and not because of a refresh.
    void sigCurrentChanged(const QString& key);

private:
    /// What the button below the table does.
    enum EAction { NoAction, LoadMore, Stop, Retry };

    QLayout* createStateBar();
    void restart();
    void stop();
    void takePage(const QueryAnswer& answer);
    void takeNewest(const QueryAnswer& answer);
    Rows rowsOf(const QueryAnswer& answer);
    /// Replaces the rows; the user stays where he is.
    void replaceRows(const Rows& rows);
    bool isAtEnd() const;
    void onScrolled(int position);
    void onFiltered();
    void loadMoreIfNeeded();
    EAction action() const;
    void act();
    void showState();
    void showAction(EAction action);
    QString countText() const;

    const RowsOf m_rowsOf;
    QString m_serverName;
    QueryPart m_query;
    QString m_reason; ///< of an empty table without a query
    CPagedQuery m_pages;
    CPagedQuery m_newest; ///< the first page again, for a refresh
    QString m_problem;    ///< of the last answer that failed
    bool m_isReplacing = false;
    bool m_wantsMore = false; ///< the user, with this filter: pages are loaded until the view is full
    int m_position = 0;       ///< of the scroll bar

    CTextModel* m_model;
    WQ::CStandardHpfTable* m_table;
    WQ::CSimpleTextWidget* m_state;
    WQ::CNormalButton* m_action;
};

} // namespace QAV
