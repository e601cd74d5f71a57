// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "service/admin/CommandLine.h"

#include <vector>

namespace service
{

std::vector<Command> serverCommands();
std::vector<Command> userCommands();
std::vector<Command> rightCommands();
std::vector<Command> institutionCommands();
std::vector<Command> dataCommands();
std::vector<Command> auditCommands();
std::vector<Command> pruneCommands();
std::vector<Command> groupCommands();
std::vector<Command> backupCommands();
std::vector<Command> checkCommands();

/// All commands of the tool, in the order of the help.
std::vector<Command> allCommands();

} // namespace service
