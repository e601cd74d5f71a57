// SPDX-License-Identifier: Apache-2.0
#include "PanelTables.h"

#include <WQ/CStandardHpfTable.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QApplication>

#include <algorithm>

namespace workbench
{

namespace
{

QList<QAbstractItemView*> tablesOf(const QWidget& panel)
{
    QList<QAbstractItemView*> tables;
    for (QWidget* const widget : panel.findChildren<QWidget*>()) {
        if (widget->window() != panel.window() || !widget->isVisibleTo(&panel)) {
            continue;
        }
        if (const auto* const fast = qobject_cast<WQ::CStandardHpfTable*>(widget)) {
            tables << fast->view();
        } else if (const auto* const simple = qobject_cast<WQ::CStandardSimpleTable*>(widget)) {
            tables << simple->view();
        }
    }
    return tables;
}

/// Whatever its filter shows.
int rowsIn(const QAbstractItemView& table)
{
    if (!table.model()) {
        return 0;
    }
    const auto* const fast = qobject_cast<const WQ::IBaseHpfTableModel*>(table.model());
    return fast ? fast->getDataCount() : table.model()->rowCount();
}

} // namespace

QAbstractItemView* tableInUse(const QWidget& panel, QAbstractItemView* last)
{
    const QList<QAbstractItemView*> tables = tablesOf(panel);
    const QWidget* const focus = QApplication::focusWidget();
    for (QAbstractItemView* const table : tables) {
        if (table == focus || table->isAncestorOf(focus)) {
            return table;
        }
    }
    const bool isOutside = !panel.isAncestorOf(focus);
    return isOutside && tables.contains(last) ? last : tables.value(0);
}

bool hasOnlyEmptyTables(const QWidget& panel)
{
    const QList<QAbstractItemView*> tables = tablesOf(panel);
    return !tables.isEmpty() && std::all_of(tables.begin(), tables.end(),
                                            [](const QAbstractItemView* table) { return rowsIn(*table) == 0; });
}

} // namespace workbench
