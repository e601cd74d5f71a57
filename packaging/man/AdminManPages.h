// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "packaging/man/Roff.h"
#include "service/admin/CommandLine.h"

#include <vector>

namespace packaging
{

/// One page of qav-admin and one for each word that its commands begin with.
std::vector<ManPage> adminManPages(const std::vector<service::Command>& commands);

} // namespace packaging
