#pragma once

namespace WQ
{

/// Lets assistive technologies read high-performance tables as tables of cells. May be called any number of times.
void installTableAccessibility();

} // namespace WQ
