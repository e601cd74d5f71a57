// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/Export.h>

#include <QString>

class QWidget;

namespace WQ
{

/// Says why the tables in `root` have no rows. They show it as long as they have none, in place of “暂无数据”; a text
/// that a table was given by its program stays. Tables in other windows that belong to `root` do not show it. An empty
/// text: the reason is not known. UI thread only.
WQ_EXPORT void setEmptyReason(QWidget& root, const QString& reason);
/// The reason that was set for the nearest of the widgets around `inside`, itself included, in its window.
WQ_EXPORT QString emptyReason(const QWidget& inside);

} // namespace WQ
