#pragma once

#include "editor/AccountList.h"

#include <boost/optional.hpp>

#include <utility>
#include <vector>

namespace QAV
{

/// An account and one of its own sub-account units may not be in one group: the first such pair (i, j) in the order of
/// i and then of j, i < j, if there is one. Two units of one account may be together, and so may two records of one
/// account without a unit. Takes time in proportion to the number of accounts.
boost::optional<std::pair<std::size_t, std::size_t>> firstAccountWithOwnUnit(const AccountList& accounts);

} // namespace QAV
