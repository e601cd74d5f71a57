// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The ids of the panel's controls in its events.
enum EHistoryControlId {
    NoControl = 0,
    PickEditId,
    PeriodBoxId,
    SinceEditId,
    UntilEditId,
    KindBoxId,
    OutcomeBoxId,
    CompareButtonId,
    AtEditId,
    StateButtonId,
    HistoryRefreshButtonId,
    ListActionButtonId,
    UnchangedCheckId,
    RawCheckId,
    RestoreButtonId,
    ConfirmButtonId,
    AbandonButtonId,
    FindingsButtonId
};

/// The ids under which the client keeps the layouts of the tables.
enum EHistoryTableId { ChangeTableId = 1, ComparisonTableId, FindingTableId, GroupPickTableId, UserPickTableId };

/// The button of a finding's row.
constexpr int ShowGroupRowButton = 0;

} // namespace QAV
