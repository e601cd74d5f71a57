// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "editor/AccountList.h"

#include <boost/optional.hpp>

#include <utility>
#include <vector>

namespace QAV
{

/// Finds the first pair (i, j), i < j, in the order of i and then of j, of an account and one of its own sub-account
/// units, which may not be in the same group. Two units of one account may be in the same group, and so may two records
/// of one account without a unit. Takes linear time.
boost::optional<std::pair<std::size_t, std::size_t>> firstAccountWithOwnUnit(const AccountList& accounts);

} // namespace QAV
