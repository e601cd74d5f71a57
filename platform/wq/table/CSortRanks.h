#pragma once

#include <cstdint>
#include <vector>

namespace WQ
{

class IBaseHpfTableModel;

/// The rank of every record by one column: equal values have equal ranks, ranks are 0 .. `rankCount` - 1. Sorting by a
/// column whose ranks are known is one pass over the rows.
struct CSortRanks {
    int column = -1;
    std::uint32_t rankCount = 0;
    std::vector<std::uint32_t> ranks; ///< By data index.

    /// Ranks of the first `count` records.
    static CSortRanks of(const IBaseHpfTableModel& model, int column, int count);
    /// Data indices in rank order; records of equal rank in order of arrival, whichever way is sorted.
    std::vector<std::uint32_t> order(bool descending) const;
};

} // namespace WQ
