// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/Export.h>

class QSize;

namespace QAV
{

/// Computes a window size that fits the screen, in device-independent pixels. It is the preferred size if the screen
/// has room for it with a margin, and smaller otherwise, down to the minimum. It never exceeds the screen area without
/// task bars. The screen is that of the active window, or else the primary one. UI thread only.
QAV_EXPORT void adaptScreenSize(int minimumWidth, int minimumHeight, int preferredWidth, int preferredHeight,
                                int& width, int& height);

/// The same for a given available area. May be called from any thread.
QAV_EXPORT void adaptScreenSize(const QSize& available, int minimumWidth, int minimumHeight, int preferredWidth,
                                int preferredHeight, int& width, int& height);

} // namespace QAV
