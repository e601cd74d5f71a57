// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroupRCConfig.h>

#include <QString>

namespace service
{

/// A configuration as readable text of several lines.
QString configText(const nvservice::CAccountGroupRCConfig& config);

} // namespace service
