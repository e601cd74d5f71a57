// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/CHistoryPanel.h"
#include "support/qav/CFakeTransport.h"
#include "support/wq/WatchedTest.h"

#include <WQ/CLineEdit.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableModel.h>
#include <nvservice/CAccountGroup.h>
#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CAuditEntry.h>
#include <nvservice/CChangeInfo.h>
#include <nvservice/CQueryKey.h>
#include <nvservice/DataType.h>
#include <nvservice/QueryCondition.h>
#include <nvservice/UserRight.h>

#include <QAbstractItemView>

#include <memory>

namespace history_test
{

const std::string Shanghai = "上海分系统";
const std::string Shenzhen = "深圳分系统";

/// The rights of an administrator, and of a user who may not read the audit.
const std::set<int> AllRights{nvservice::UserRight::EditAccountGroup, nvservice::UserRight::SetAccountGroupRisk,
                              nvservice::UserRight::DeleteAccountGroup, nvservice::UserRight::ReadAudit};
const std::set<int> NoAudit{nvservice::UserRight::EditAccountGroup, nvservice::UserRight::SetAccountGroupRisk};

/// The client around the panel: a user and servers whose answers the test gives. Names of groups, those of `groups`,
/// and of categories are answered at once.
class HistoryFixture
{
public:
    using Query = support::CFakeTransport::Query;

    HistoryFixture();
    ~HistoryFixture();

    /// The panel as the client makes it, on the Shanghai server.
    QAV::CHistoryPanel& open(const std::set<int>& rights = AllRights);
    void addShenzhen();

    static constexpr int Details = -1; ///< in place of a data type: the audit with the states before and after

    /// The oldest query of this type that waits for its answer; waits for one.
    Query take(int dataType);
    int waiting(int dataType) const;
    /// What the last query of changes asks for; it and those before it are taken.
    nvservice::CQueryKey lastAsked();
    static nvservice::CQueryKey conditionsOf(const Query& query);
    /// Answers with records, and with the cursor of the next page unless that is empty.
    static void answer(const Query& query, std::vector<nvservice::IDataPtr> records, const std::string& next = {});
    static void fail(const Query& query, const std::string& text, utils::EErrorCode code = utils::EErrorCode::Failed);
    /// The same for the oldest query of this type.
    void answer(int dataType, std::vector<nvservice::IDataPtr> records, const std::string& next = {});

    WQ::CStandardHpfTable& table(const QString& name) const;
    WQ::CStandardHpfTable& changes() const { return table("修改记录"); }
    WQ::CStandardHpfTable& comparison() const { return table("变更内容"); }
    /// What a table shows in a column, from top to bottom.
    static QStringList shown(const WQ::CStandardHpfTable& table, int column);
    /// The lines that the export of a table writes.
    static QStringList exported(const WQ::CStandardHpfTable& table);
    QWidget& control(const QString& accessibleName) const;
    WQ::CLineEdit& edit(const QString& name) const;
    /// Types into an edit, once what its list offers has come.
    void type(const QString& name, const QString& text) const;
    /// Chooses the item of a box.
    void choose(const QString& name, const QString& text) const;
    QAbstractButton& button(const QString& text) const;
    void click(const QString& text) const;
    /// True if the user sees a button with this text.
    bool isOffered(const QString& text) const;
    /// True if the user reads a text that contains this.
    bool isRead(const QString& text) const;
    /// Why a table has no rows.
    static QString emptyText(const WQ::CStandardHpfTable& table);

    std::vector<nvservice::IDataPtr> groups;
    std::vector<support::CFakeTransport::Operation> operations; ///< that were sent
    boost::shared_ptr<support::CFakeTransport> shanghai;
    boost::shared_ptr<support::CFakeTransport> shenzhen;
    std::unique_ptr<QAV::CHistoryPanel> panel;

private:
    void connect(support::CFakeTransport& server);

    static int typeOf(const Query& query);

    std::vector<Query> m_queries;
};

/// A test of the panel: for each function a client of its own.
class HistoryTest : public support::FixtureTest<HistoryFixture, support::WatchedTest>
{
};

constexpr std::int64_t Noon = 1767585600000; ///< 2026-01-05 12:00 in Shanghai; changes are minutes before

boost::shared_ptr<nvservice::CAccountGroup>
makeGroup(int id, const std::string& name, const std::vector<std::string>& accounts = {}, std::int64_t revision = 1);
boost::shared_ptr<nvservice::CAccountGroupRCConfig> makeConfig(int groupId, const std::vector<std::string>& securities,
                                                               std::int64_t revision = 1);
/// The later an entry, the higher its id; the group has the name "组<id>".
boost::shared_ptr<nvservice::CAuditEntry> makeEntry(int id, int groupId = 7, int dataType = 625);
std::vector<nvservice::IDataPtr> makeEntries(int from, int downTo, int groupId = 7);
boost::shared_ptr<nvservice::CChangeInfo> makeChange(std::int64_t revision, int groupId = 7, int dataType = 625);

} // namespace history_test
