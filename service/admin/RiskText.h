#pragma once

#include <nvservice/CAccountGroupRCConfig.h>

#include <QString>

namespace service
{

/// A configuration as a person reads it, in lines.
QString configText(const nvservice::CAccountGroupRCConfig& config);

} // namespace service
