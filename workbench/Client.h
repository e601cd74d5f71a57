#pragma once

namespace workbench
{

struct Options;

/// The client from log-in to exit; needs a QApplication. Returns the exit code of the process: 0 when the user left, 1
/// when it could not start.
int runClient(const Options& options);

} // namespace workbench
