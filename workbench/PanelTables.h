// SPDX-License-Identifier: Apache-2.0
#pragma once

class QAbstractItemView;
class QWidget;

namespace workbench
{

/// The first table of a panel that can be seen, not one of its dialogs; null if there is none.
QAbstractItemView* firstTable(const QWidget& panel);

/// True if the panel has tables and none of them has a row, whatever a filter shows.
bool hasOnlyEmptyTables(const QWidget& panel);

} // namespace workbench
