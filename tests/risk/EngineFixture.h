// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RiskFixture.h"

#include "support/service/RealService.h"
#include "support/service/TestDatabase.h"
#include "workbench/CEmbeddedTransport.h"

#include <array>
#include <set>

namespace risk_test
{

using GroupPtr = boost::shared_ptr<nvservice::CAccountGroup>;
using ConfigPtr = boost::shared_ptr<nvservice::CAccountGroupRCConfig>;

/// The way to one server from several desks: each has a log-in of its own. Requests are made at the current desk.
class DesksTransport : public QAV::ITransport
{
public:
    static constexpr std::size_t Desks = 2;

    explicit DesksTransport(const service::DataEnginePtr& engine);

    void sitAt(std::size_t desk) { m_current = desk; }
    RequestId logIn(const std::string& user, const std::string& password, LogInHandler handler) override;
    RequestId query(const nvservice::CKolmQueryDataReq& request, ReplyHandler handler) override;
    RequestId operate(const nvservice::COperateDataReq& request, ReplyHandler handler) override;
    void cancel(RequestId request) noexcept override;
    QAV::EConnectionState state() const override;
    void setStateHandler(StateHandler handler) override;

private:
    /// At the desk that is sat at, by `send`. The id tells the desk.
    template <typename Send>
    RequestId ask(const Send& send);

    std::array<std::unique_ptr<workbench::CEmbeddedTransport>, Desks> m_desks;
    std::atomic<std::size_t> m_current{0};
};

/// The client with the real data service on sample data in a file: client centre, transport, engine, database. The
/// groups of the sample data are there after every reopen(); a test takes those that it needs.
class EngineFixture
{
public:
    EngineFixture();
    ~EngineFixture();

    /// Closes the database and opens the file again. Nobody is logged in then, and no dialog may be open.
    void reopen();
    /// Sits down at a desk and logs in on every server. What the user may use holds from now on.
    void logIn(std::size_t desk, const std::string& user);
    /// Sits down at a desk where somebody is logged in.
    void sitAt(std::size_t desk);

    /// The groups of the first server, as its database has them.
    std::vector<GroupPtr> groups();
    /// A group of the first server that was not taken before.
    GroupPtr takeGroup();
    /// The stored configuration, read past the client as the administrator.
    ConfigPtr stored(int groupId);
    /// Writes past the client as the administrator.
    void write(int dataType, nvservice::EZvDataOperation operation, const nvservice::IDataPtr& record);
    void writeEmailRule(int groupId);
    /// What a user is told whose configuration of the group is outdated, given who changed it last.
    QString outdatedText(const nvservice::CAccountGroup& group, const QString& who);
    /// The same for a group that was deleted.
    QString deletedText(const nvservice::CAccountGroup& group, const QString& who);
    /// A security that the trade type trades on the first server: code, blank, name.
    QString someSecurity(nvservice::EZvTraderType type);

    /// Loads a group into a dialog.
    void load(RiskDialogUser& user, const boost::shared_ptr<nvservice::CAccountGroup>& group);
    /// Saves and waits until the outcome has been shown.
    void save(RiskDialogUser& user);
    void expectSaved();
    void expectRefusal(const QString& text);

    support::ScriptedPresenter boxes;

private:
    void open();
    void close();
    service::DataEngine& engine() { return m_service->engine(); }
    std::vector<nvservice::IDataPtr> query(int dataType, const std::string& key);
    /// The time in the first column of the row that is about the group, as messages say it.
    QString timeIn(const QString& sql, int groupId);

    support::UnexpectedLog m_log;
    support::TestDatabase m_database;
    std::unique_ptr<support::RealService> m_service;
    std::vector<boost::shared_ptr<DesksTransport>> m_transports;
    service::SessionPtr m_admin;
    std::set<int> m_taken;
};

/// Types a code into the trade-limit tab with this index and adds it.
void addSecurity(RiskDialogUser& user, int tab, const QString& code);
/// Adds an asset limit with this threshold in percent of the net assets.
void addLimit(RiskDialogUser& user, const QString& threshold, const QString& remark);
/// Opens the picker of an exempt page (2 or 3), takes over the offered rows that `wants` and saves the choice.
void chooseExempt(EngineFixture& client, RiskDialogUser& user, int page, const std::function<bool(int row)>& wants);

bool hasSecurity(const ConfigPtr& config, nvservice::EZvTraderType type, const std::string& code);
bool hasLimit(const ConfigPtr& config, const std::string& remark);

} // namespace risk_test
