// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Switches.h"

#include <utils/NVError.h>

#include <string>

namespace luawrapper
{

/// Runs the configuration file in a sandbox and copies the table that it returns. `root` is complete only on success.
utils::NVError readSwitches(const std::string& file, Switch& root);

} // namespace luawrapper
