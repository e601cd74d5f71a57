// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QWidget;

namespace support
{

/// The rows of a test function that runs once per theme: its name is the column "theme".
void addThemes();
/// Makes this theme the one of all windows; fails the running test when it is not there.
void useTheme(const QString& theme);

/// Paints a window with the lists and menus above it, and `above`, such as a message box; fails the running test when
/// next to nothing is to be seen or a colour or image of the theme is missing. With QAV_PICTURE_DIR set, the picture is
/// kept there as
/// "<theme>-<name>.png".
void takePicture(QWidget& window, const QString& name, QWidget* above = nullptr);

} // namespace support
