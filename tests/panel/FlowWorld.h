// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GroupModel.h"
#include "PanelFixture.h"
#include "RealServers.h"
#include "support/wq/ScriptedPresenter.h"

namespace panel_test
{

/// One server of the real data service at the end of a bad line.
struct Line {
    service::DataEnginePtr engine;
    service::SubSystem server;
    boost::shared_ptr<support::CUnsteadyTransport> transport;
    service::SessionPtr colleague; ///< somebody else at another desk
    GroupModel model;

    QString name() const { return QString::fromStdString(server.name); }
};

/// The panel before three real servers with sample data, the lines to them, and what their database has to hold.
class FlowWorld
{
public:
    FlowWorld();
    ~FlowWorld();

    Line& line(std::size_t index) { return *m_lines.at(index); }
    std::size_t lines() const { return m_lines.size(); }
    /// Holds back what `holds` says on every line; empty: nothing from now on.
    void setHold(const std::function<bool(const support::CUnsteadyTransport::Request&)>& holds);
    /// The line of the server that the panel shows.
    Line& current() { return line(m_current); }
    std::size_t currentIndex() const { return m_current; }

    void openPanel(std::size_t server);
    void closePanel();
    void switchTo(std::size_t server);
    bool hasPanel() const { return client.panel != nullptr; }

    /// Notes what the panel's latest query of groups is going to show; to be called before a database changes.
    void noteQueries();
    /// Waits until every answer that is not held has been handled, the answers to what was asked then included.
    void settle();

    /// What the answers to the panel's last query of groups show when they are in.
    const ModelGroups& listed() const { return m_listed; }
    /// For a query whose answer never comes.
    void forgetListed() { m_listed.clear(); }
    /// The rows that the table has to show, and those that it shows: "name, accounts, institution, server".
    QStringList listedRows() const;
    QStringList shownRows() const;

    /// Fails the test when a database differs from its model, or the table from what it has to show.
    void compareDatabases();
    void compareTable();

    /// Fail the test when a panel that was closed has left something behind.
    void checkNoWidgetIsLeft();
    void checkNoRecordIsLeft();

    PanelFixture client;
    support::ScriptedPresenter boxes;

private:
    int groupQueries() const;

    RealServers m_servers;
    std::vector<std::unique_ptr<Line>> m_lines;
    std::size_t m_current = 0;
    int m_groupQueries = 0;
    ModelGroups m_listed;
};

} // namespace panel_test
