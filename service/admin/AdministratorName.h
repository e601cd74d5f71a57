// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <string>

namespace service
{

/// The prefix of the tool's names in the audit. No log-in name of the service begins with it.
constexpr char ToolPrefix[] = "qav-admin:";

/// The name of the tool's user: "qav-admin:li", or "qav-admin:li as wang" if li acts for wang. The person is the first
/// known of: who called sudo, who logged in, the effective user of the process. Anyone can set the variable that names
/// the caller of sudo, but not change the log-in. So if they differ, both are named: "qav-admin:li(zhang)".
std::string administratorName(const QString& onBehalfOf);

} // namespace service
