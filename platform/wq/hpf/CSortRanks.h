// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <vector>

namespace WQ
{

class IBaseHpfTableModel;

/// The ranks of all records by one column. Equal values have equal ranks; ranks are 0 .. `rankCount` - 1. With known
/// ranks, sorting is one pass over the rows.
struct CSortRanks {
    int column = -1;
    std::uint32_t rankCount = 0;
    std::vector<std::uint32_t> ranks; ///< By data index.

    /// The ranks of the first `count` records.
    static CSortRanks of(const IBaseHpfTableModel& model, int column, int count);
    /// The data indices in rank order. Records of equal rank are in order of arrival, in both sort directions.
    std::vector<std::uint32_t> order(bool descending) const;
};

} // namespace WQ
