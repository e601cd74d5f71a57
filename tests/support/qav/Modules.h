// SPDX-License-Identifier: Apache-2.0
#pragma once

class QString;

namespace support
{

/// Makes these the module switches of the process: a Lua chunk that returns them. A test that cannot have them ends.
void switchModules(const QString& configuration);

} // namespace support
