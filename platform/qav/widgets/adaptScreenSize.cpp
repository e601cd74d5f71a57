// SPDX-License-Identifier: Apache-2.0
#include <QAV/adaptScreenSize.h>

#include <QApplication>
#include <QScreen>
#include <QSize>
#include <QWidget>

#include <algorithm>

namespace QAV
{

namespace
{

/// Space on each side of a window, so that the window below stays visible.
constexpr int ScreenMargin = 40;

int adaptLength(int available, int minimum, int preferred)
{
    const int roomy = std::max(minimum, available - 2 * ScreenMargin);
    return std::min({preferred, roomy, available});
}

} // namespace

void adaptScreenSize(const QSize& available, int minimumWidth, int minimumHeight, int preferredWidth,
                     int preferredHeight, int& width, int& height)
{
    width = adaptLength(available.width(), minimumWidth, preferredWidth);
    height = adaptLength(available.height(), minimumHeight, preferredHeight);
}

void adaptScreenSize(int minimumWidth, int minimumHeight, int preferredWidth, int preferredHeight, int& width,
                     int& height)
{
    const QWidget* const window = QApplication::activeWindow();
    const QScreen* const screen = window && window->screen() ? window->screen() : QGuiApplication::primaryScreen();
    const QSize available = screen ? screen->availableSize() : QSize(preferredWidth, preferredHeight);
    adaptScreenSize(available, minimumWidth, minimumHeight, preferredWidth, preferredHeight, width, height);
}

} // namespace QAV
