// SPDX-License-Identifier: Apache-2.0
#include "service/admin/Commands.h"

namespace service
{

std::vector<Command> allCommands()
{
    std::vector<Command> all;
    for (const auto& commands :
         {serverCommands(), userCommands(), rightCommands(), institutionCommands(), dataCommands(), auditCommands(),
          pruneCommands(), groupCommands(), backupCommands(), checkCommands()}) {
        all.insert(all.end(), commands.begin(), commands.end());
    }
    return all;
}

} // namespace service
