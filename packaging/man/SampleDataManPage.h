// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "packaging/man/Roff.h"

namespace packaging
{

/// The page of qav-sample-data.
ManPage sampleDataManPage();

} // namespace packaging
