// SPDX-License-Identifier: Apache-2.0
#include "simple/ColumnWidths.h"

#include <algorithm>

namespace WQ
{

std::vector<int> sharedWidths(const std::vector<WantedWidth>& columns, int room)
{
    std::vector<int> sorted;
    int rest = room;
    for (const WantedWidth& column : columns) {
        sorted.push_back(column.wanted);
        rest -= column.wanted;
    }
    std::sort(sorted.begin(), sorted.end());
    const int count = static_cast<int>(columns.size());
    int cap = 0;
    for (int i = 0, left = std::max(0, room); i < count; ++i) {
        cap = left / (count - i);
        if (sorted[static_cast<std::size_t>(i)] > cap) {
            break;
        }
        left -= sorted[static_cast<std::size_t>(i)];
    }
    std::vector<int> widths;
    for (int i = 0; i < count; ++i) {
        const WantedWidth& column = columns[static_cast<std::size_t>(i)];
        widths.push_back(rest >= 0 ? column.wanted + rest / count + (i < rest % count ? 1 : 0)
                                   : std::min(column.wanted, std::max(cap, column.least)));
    }
    return widths;
}

} // namespace WQ
