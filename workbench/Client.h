// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace workbench
{

struct Options;

/// Makes the texts of Qt itself, in edit menus, file dialogs and the help, Chinese like those of the client. False if
/// they are not installed; then they are English. Needs a QCoreApplication.
bool installQtTexts();

/// Runs the client from log-in to exit; needs a QApplication. Returns the exit code of the process: 0 if the user left,
/// 1 if the client could not start.
int runClient(const Options& options);

} // namespace workbench
