#pragma once

#include <QAV/Export.h>

class QSize;

namespace QAV
{

/// A window's size, in device-independent pixels, that suits the screen: the preferred size when the screen has room
/// for it and a margin around it, less on a smaller screen, down to the minimum; and never more than the screen has
/// beside its task bars. The screen is the one of the active window, else the primary one. UI thread only.
QAV_EXPORT void adaptScreenSize(int minimumWidth, int minimumHeight, int preferredWidth, int preferredHeight,
                                int& width, int& height);

/// The same for a screen with this much room. Any thread.
QAV_EXPORT void adaptScreenSize(const QSize& available, int minimumWidth, int minimumHeight, int preferredWidth,
                                int preferredHeight, int& width, int& height);

} // namespace QAV
