// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

namespace WQ
{

struct WantedWidth {
    int wanted;
    int least; ///< of the header
};

/// The widths of columns that share `room` pixels. Columns with too much room share the rest evenly, the first ones get
/// the odd pixels. With too little, the widest columns shrink first, but none below its least width.
std::vector<int> sharedWidths(const std::vector<WantedWidth>& columns, int room);

} // namespace WQ
