// SPDX-License-Identifier: Apache-2.0
#include "lookup/OfferList.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFontMetrics>
#include <QStyle>

#include <algorithm>

namespace QAV
{

namespace
{

/// Further down a list nobody looks before typing more.
constexpr int MeasuredLines = 100;
/// Between a line and the frame of the list, both sides together.
constexpr int LineMargin = 16;

} // namespace

void openOfferList(QCompleter& completer, const QWidget& edit, const QStringList& lines)
{
    const QAbstractItemView& list = *completer.popup();
    const int beside = LineMargin + list.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    int width = edit.width();
    for (int i = 0; i < std::min(lines.size(), MeasuredLines); ++i) {
        width = std::max(width, list.fontMetrics().horizontalAdvance(lines[i]) + beside);
    }
    completer.complete(QRect(0, 0, width, edit.height() - 1));
}

} // namespace QAV
