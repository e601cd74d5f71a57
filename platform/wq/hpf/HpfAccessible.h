// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace WQ
{

/// Makes high-performance tables accessible as tables of cells. May be called any number of times.
void installTableAccessibility();

} // namespace WQ
