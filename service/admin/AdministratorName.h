#pragma once

#include <QString>

#include <string>

namespace service
{

/// With what the names begin under which this tool's changes are on record. No log-in does.
constexpr char ToolPrefix[] = "qav-admin:";

/// Who uses the tool: "qav-admin:li", and "qav-admin:li as wang" when li says that it is done for wang. The person is
/// who called sudo, who logged in, or the effective user of the process, the first of them that is known. The variable
/// that names who called sudo can be set by anybody, the log-in can't be changed; when they differ, both are named:
/// "qav-admin:li(zhang)".
std::string administratorName(const QString& onBehalfOf);

} // namespace service
