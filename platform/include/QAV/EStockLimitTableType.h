// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace QAV
{

/// The kind of owner whose black and white lists a CAccountStockTradeLimit edits. The values are part of the interface.
enum class EStockLimitTableType : int {
    Account = 0,
    Product = 1,
    Institution = 2,
    AccountGroup = 3,
};

} // namespace QAV
