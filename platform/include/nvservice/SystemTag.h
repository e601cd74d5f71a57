#pragma once

#include <nvservice/Export.h>

#include <string>

namespace nvservice
{

class IData;

/// Gives the tag to a record and to all records inside it. For the server that keeps them.
NVSERVICE_EXPORT void setSystemTagOfAll(IData& record, const std::string& systemTag);

/// Gives the tag to a record and to the records inside it as far as they have none. For what a server has sent: the
/// accounts of a group, say, may belong to another server than the group.
NVSERVICE_EXPORT void addMissingSystemTags(IData& record, const std::string& systemTag);

} // namespace nvservice
