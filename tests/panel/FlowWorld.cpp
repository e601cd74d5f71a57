// SPDX-License-Identifier: Apache-2.0
#include "FlowWorld.h"

#include "support/qav/Client.h"
#include "support/qav/ServiceThread.h"

#include <QApplication>
#include <QThreadPool>
#include <QtTest>

#include <utility>

namespace panel_test
{

namespace
{

using support::CUnsteadyTransport;

constexpr CUnsteadyTransport::Request GroupQuery{false, nvservice::DataType::AccountGroup};

service::SampleOptions sample()
{
    service::SampleOptions options;
    options.groups = 36;
    options.accounts = 240;
    options.categories = 30;
    options.securities = 100;
    return options;
}

} // namespace

FlowWorld::FlowWorld() : m_servers(sample())
{
    support::switchModules(moduleSwitches());
    // A held answer is to stay on its way for as long as the test likes.
    support::centre().setDeadline(std::chrono::hours(1));
    for (const RealServers::Server& server : m_servers.servers()) {
        m_lines.push_back(std::make_unique<Line>(Line{server.engine, server.subSystem, server.line,
                                                      server.engine->logIn("admin", "admin123").session,
                                                      GroupModel(m_servers.store(), server.subSystem)}));
    }
}

FlowWorld::~FlowWorld()
{
    closePanel();
    support::centre().setDeadline(std::chrono::seconds(30));
}

void FlowWorld::openPanel(std::size_t server)
{
    client.createPanel();
    switchTo(server);
}

void FlowWorld::closePanel()
{
    client.destroyPanel();
    m_listed.clear();
}

void FlowWorld::switchTo(std::size_t server)
{
    m_current = server;
    support::centre().setCurrentServer(current().server.name);
    client.panel->switchSystem(int(server), current().name());
    noteQueries();
}

void FlowWorld::setHold(const std::function<bool(const support::CUnsteadyTransport::Request&)>& holds)
{
    for (const auto& line : m_lines) {
        line->transport->setHold(holds);
    }
}

int FlowWorld::groupQueries() const
{
    int count = 0;
    for (const auto& line : m_lines) {
        count += line->transport->count(GroupQuery);
    }
    return count;
}

void FlowWorld::noteQueries()
{
    // The databases do not change before the servers have answered what they were asked.
    for (const auto& line : m_lines) {
        line->transport->waitForServer();
    }
    if (std::exchange(m_groupQueries, groupQueries()) != groupQueries()) {
        m_listed = current().model.groups();
    }
}

void FlowWorld::settle()
{
    const auto requests = [this] {
        int count = 0;
        for (const auto& line : m_lines) {
            count += line->transport->requests();
        }
        return count;
    };
    int seen = -1;
    while (std::exchange(seen, requests()) != requests()) {
        noteQueries();
        support::settleCallbacks();
    }
}

QStringList FlowWorld::listedRows() const
{
    const Line& line = *m_lines[m_current];
    QStringList rows;
    for (const auto& [id, group] : m_listed) {
        const auto institution = line.model.institutions().find(group.input.institution);
        rows << QStringLiteral("%1, %2, %3, %4")
                    .arg(QString::fromStdString(group.input.name))
                    .arg(group.input.accounts.size())
                    .arg(institution == line.model.institutions().end() ? QStringLiteral("主经纪商")
                                                                        : QString::fromStdString(institution->second),
                         line.name());
    }
    return rows;
}

QStringList FlowWorld::shownRows() const
{
    QStringList rows;
    for (int row = 0; row < client.model()->rowCount(); ++row) {
        const auto data = client.model()->getDataByRow(row);
        rows << QStringLiteral("%1, %2, %3, %4")
                    .arg(data->getDisplayQString(0), data->getDisplayQString(1), data->getDisplayQString(2),
                         data->getDisplayQString(3));
    }
    return rows;
}

void FlowWorld::compareDatabases()
{
    for (const auto& line : m_lines) {
        QCOMPARE(GroupModel::linesOf(m_servers.store(), line->server), line->model.lines());
    }
}

void FlowWorld::compareTable()
{
    QCOMPARE(shownRows(), listedRows());
    QVERIFY(client.mask()->isHidden());
}

void FlowWorld::checkNoWidgetIsLeft()
{
    QCOMPARE(QApplication::allWidgets().size(), 0);
}

void FlowWorld::checkNoRecordIsLeft()
{
    QThreadPool::globalInstance()->waitForDone(); // the panel has its records destroyed there
    for (const auto& line : m_lines) {
        QCOMPARE(line->transport->liveRecords(), std::size_t(0));
    }
}

} // namespace panel_test
