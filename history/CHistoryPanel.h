// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/Changes.h"

#include <QAV/IChangeListener.h>
#include <QAV/IkolmDockableWidget.h>
#include <WQ/IBaseHpfTableData.h>

#include <QSet>

#include <memory>

class QLayout;

namespace QAV
{

/// Shows who changed what and when, restores earlier states, and lists the findings of the consistency check.
///
/// With the right to read the audit it shows all attempts, otherwise the history of one group. The table grows at its
/// end as the user scrolls; a refresh puts new changes before the others and keeps the user's place.
///
/// The only class that the plug-in exports; the client creates it by name. Lives on the UI thread, as do its callbacks.
class Q_DECL_EXPORT CHistoryPanel final : public IkolmDockableWidget, public IChangeListener
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit CHistoryPanel(QWidget* parent);
    ~CHistoryPanel() override;

    void setParam(const QString& param) override;
    QString param() const override;
    void switchSystem(int index, QString serverName) override;
    void onActive() override;
    bool handleEvent(int type, int id, int param, QString text, void* data) override;
    void onChanged(const QString& serverName, const std::vector<nvservice::CChangeInfoPtr>& changes,
                   bool isComplete) override;

private:
    struct Parts;

    void createUi();
    QWidget* createChanges();
    QLayout* createToolBar(QWidget* parent);
    void addStateSearch();

    bool hasServer() const;
    bool canSearch() const;
    /// Asks for all that is shown.
    void load();
    /// Has the data checked if the findings are in front and not up to date.
    void checkIfShown();
    /// Asks for the names that the search offers and the comparison shows.
    void loadNames();
    /// Empties the table and asks for the first page.
    void search();
    /// Asks for the first page and puts what is new before what is shown.
    void refresh();
    void takePage(const QueryAnswer& answer);
    void takeNewest(const QueryAnswer& answer);
    /// Puts rows before the others; those that are among them go. The user stays where he is.
    void joinRows(std::vector<WQ::IBaseHpfTableDataPtr> rows, const QSet<QString>& keys);
    void offerUsers(const QueryAnswer& answer);
    void retry();
    void loadMoreIfNeeded();
    void showState(const QString& problem = {});
    void showNotice(const QString& text);

    std::optional<HistoryChange> changeOfRow(const QString& key) const;
    /// The revision of the same record before the one of this row, if it is in the table.
    std::optional<std::int64_t> revisionBefore(const QString& key) const;
    void openRow(const QString& key);
    void compareSelected();
    void showStateAtTime();
    void showGroup(int groupId, const QString& groupName);
    /// Opens the last change of the group, which a restore has made; -1: of a group that was there no more.
    void showRestored(std::int32_t groupId);
    void openExpected();

    std::unique_ptr<Parts> m_parts;
};

} // namespace QAV
