// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/EZvTraderType.h>
#include <nvservice/IData.h>

#include <vector>

namespace QAV
{

/// A part of a group or of its risk configuration, as the user knows it.
enum class EArea {
    GroupName,
    Institution,
    Accounts,
    TradeLimits, ///< the black and white list of one trade type
    AssetLimits,
    ReverseOrderCheck,
    ReverseOrderWarnOnly,
    NotCountCancelledOrders,
    ReverseOrderCategories,
    WashTradeForbidden,
    WashTradeCategories,
    EmailRules,
    Other ///< what this version does not know
};

enum class EChange {
    Unchanged,
    Added,
    Removed,
    Changed,
    Moved ///< only the place in the list differs
};

/// One value, or one item of a list, in two states of a record.
struct DiffLine {
    EArea area = EArea::Other;
    EChange change = EChange::Unchanged;
    nvservice::EZvTraderType traderType = nvservice::EZvTraderType::None; ///< of `TradeLimits`
    int beforeRow = -1; ///< the item's place in its list; -1: it was not there, or the area is a single value
    int afterRow = -1;
};

/// Compares two states of a CAccountGroup or of a CAccountGroupRCConfig. Null stands for a record that did not exist or
/// exists no more. The lines are in the order of the areas, those of a list in its order. Two states of different
/// classes, or of other classes, have no lines.
///
/// Items of a list are the same if their identity is: the account, the security, the id of a limit, the category, the
/// key of a rule. Whoever takes the items with a `beforeRow` that changed in any way out of the first list, and puts
/// those with an `afterRow` into their places, has the second list.
std::vector<DiffLine> diffOf(const nvservice::IData* before, const nvservice::IData* after);

} // namespace QAV
