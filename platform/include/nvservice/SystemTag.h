// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/Export.h>

#include <string>

namespace nvservice
{

class IData;

/// Sets the tag of a record and of all records inside it. For the server that stores them.
NVSERVICE_EXPORT void setSystemTagOfAll(IData& record, const std::string& systemTag);

/// Sets the tag of a record and of the records inside it where they have none. For records from a server: the accounts
/// of a group, for example, may belong to another server than the group.
NVSERVICE_EXPORT void addMissingSystemTags(IData& record, const std::string& systemTag);

} // namespace nvservice
