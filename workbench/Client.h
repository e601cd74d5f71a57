// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace workbench
{

struct Options;

/// Runs the client from log-in to exit; needs a QApplication. Returns the exit code of the process: 0 if the user left,
/// 1 if the client could not start.
int runClient(const Options& options);

} // namespace workbench
