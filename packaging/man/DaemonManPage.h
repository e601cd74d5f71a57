// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "packaging/man/Roff.h"

namespace packaging
{

/// The page of qav-dataserviced. `configuration` is the example that lists every key.
ManPage daemonManPage(const QString& configuration);

} // namespace packaging
