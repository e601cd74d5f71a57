// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace support
{

/// A file or folder of the build tree in which the running program lies, by its path there.
QString builtFile(const QString& path);
/// A file or folder of the sources, by its path there. The build tree knows where they are.
QString sourceFile(const QString& path);

} // namespace support
