// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "history/CComparison.h"
#include "history/CSearchPane.h"
#include "history/Requests.h"

#include <QStringList>

namespace QAV
{

/// The columns of the table of changes.
enum EHistoryColumn {
    TimeColumn,
    UserColumn,
    GroupColumn,
    KindColumn,
    HistoryOperationColumn,
    OutcomeColumn,
    RemarkColumn
};

/// What is known of one row: a change of the history of a group, or an entry of the audit.
struct HistoryChange {
    std::int64_t at = 0;
    std::string userId;
    std::string userName;
    std::int32_t dataType = 0;
    std::int32_t groupId = -1;
    std::string groupName;
    nvservice::EZvDataOperation operation = nvservice::EZvDataOperation::Modify;
    std::int64_t revision = 0; ///< of a change of the history
    std::int64_t entryId = 0;  ///< of an entry of the audit
    bool isDone = true;        ///< false: the attempt was refused
    QString outcome;
    QString remark;

    bool isGroup() const;
    bool isConfig() const;
};

/// Empty for records of other classes.
std::optional<HistoryChange> changeOf(const nvservice::IData& record);
QStringList headersOfChanges();
QStringList textsOf(const HistoryChange& change);
/// "2026-01-05 09:30:15 李岚（lan） 编辑 账号组“稳健一号”"
QString titleOf(const HistoryChange& change);

/// The query of the changes that are searched for.
QueryPart queryOf(const HistorySearch& search, bool isAudit);
/// False for a change that the query could not sort out.
bool fits(const HistorySearch& search, const HistoryChange& change);

/// The state that a revision of a record has.
QueryPart stateQuery(const HistoryChange& change, std::int64_t revision);
QueryPart stateQueryAt(std::int32_t groupId, std::optional<std::int64_t> at);
/// The entry with its states.
QueryPart detailQuery(const HistoryChange& change);

/// The record among the answered ones that is of the same kind as the change; null if there is none.
nvservice::IDataPtr recordOfKind(const HistoryChange& change, const std::vector<nvservice::IDataPtr>& records);

/// What would be restored. Revision 0: that record stays as it is.
struct RestoreTarget {
    std::int32_t groupId = -1;
    std::int64_t groupRevision = 0;
    std::int64_t configRevision = 0;

    bool isEmpty() const { return groupId < 0 || (groupRevision == 0 && configRevision == 0); }
    /// Adds the revision of a group or a configuration.
    void add(const nvservice::IDataPtr& record);
};
QueryPart previewQuery(const RestoreTarget& target);

} // namespace QAV
