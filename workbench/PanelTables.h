// SPDX-License-Identifier: Apache-2.0
#pragma once

class QAbstractItemView;
class QWidget;

namespace workbench
{

/// The table of a panel that has the keyboard; as long as that is outside of the panel, `last`; otherwise the first
/// one. Tables that cannot be seen and those of dialogs do not count. Null if there is none.
QAbstractItemView* tableInUse(const QWidget& panel, QAbstractItemView* last);

/// True if the panel has tables and none of them has a row, whatever a filter shows.
bool hasOnlyEmptyTables(const QWidget& panel);

} // namespace workbench
