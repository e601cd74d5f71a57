// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "editor/AccountList.h"

#include <QString>

namespace QAV
{

/// The name of the account's product, or the text that says that it has none.
QString productNameOf(const nvservice::CAccountInfo& account, const ProductMap& products);

} // namespace QAV
