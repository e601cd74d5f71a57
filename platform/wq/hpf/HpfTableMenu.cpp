// SPDX-License-Identifier: Apache-2.0
// The context menu of a table, its shortcuts, and what they do.
#include "hpf/CHpfFilterPopup.h"
#include "hpf/CHpfHeader.h"
#include "hpf/CHpfTableView.h"
#include "hpf/HpfTablePrivate.h"
#include "tablekit/CTableFindBar.h"

#include <QMenu>

namespace WQ
{

void CStandardHpfTable::Private::createActions()
{
    TableCommands commands;
    commands.selectedText = [this](bool withHeader) { return q.selectedText(withHeader); };
    commands.selectAll = [this] { view->selectAll(); };
    commands.exportCsv = [this](const QString& fileName, QString* error) { return q.exportCsv(fileName, error); };
    commands.find = [this] { findBar->open(); };
    commands.findNext = [this](bool forward) { findBar->findNext(forward); };
    commands.fit = [this] {
        columns->forgetWidths();
        q.adjustColumnWidth();
    };
    commands.clearSort = [this] { q.clearSort(); };
    commands.clearFilter = [this] { q.clearFilter(); };
    actions = createTableActions(*view, commands);
    updateActions();
}

void CStandardHpfTable::Private::updateActions()
{
    const bool menu = (flags & TableContextMenu) != 0 && model;
    const auto offer = [&](QAction* action, int flag, bool useful) {
        action->setVisible((menuFlags & flag) != 0);
        action->setEnabled(menu && (menuFlags & flag) != 0 && useful);
    };
    offer(actions.copy, MenuCopy, true);
    offer(actions.copyWithHeader, MenuCopyWithHeader, true);
    offer(actions.selectAll, MenuSelectAll, true);
    offer(actions.exportCsv, MenuExport, true);
    offer(actions.find, MenuFind, true);
    offer(actions.findNext, MenuFind, true);
    offer(actions.findPrevious, MenuFind, true);
    offer(actions.fit, MenuFitColumns, true);
    offer(actions.clearFilter, MenuClear, model && model->isFiltered());
    offer(actions.clearSort, MenuClear, model && model->sortColumn() >= 0);
}

void CStandardHpfTable::Private::showMenu(const QPoint& globalPosition, int column)
{
    if (!(flags & TableContextMenu) || !model || menuFlags == 0) {
        return;
    }
    updateActions();
    QMenu menu(&q);
    menu.setObjectName(QStringLiteral("tableMenu"));
    menu.addActions({actions.copy, actions.copyWithHeader, actions.selectAll});
    menu.addSeparator();
    menu.addActions({actions.find, actions.exportCsv});
    menu.addSeparator();
    QAction* filter = nullptr;
    if (hasColumn(column) && q.isColumnFilterable(column) && (flags & TableHeaderFilter)) {
        filter = menu.addAction(QStringLiteral("筛选“%1”...").arg(model->getHeaderText(column)));
    }
    menu.addActions({actions.clearFilter, actions.clearSort});
    menu.addSeparator();
    menu.addAction(actions.fit);
    if (menuFlags & MenuColumnChooser) {
        columns->addChooser(menu, [this](int c) { return model->getColumnEntry(c).kind == HpfColumnEntry::Default; });
    }
    const QPointer<CStandardHpfTable> alive(&q);
    const QAction* chosen = menu.exec(globalPosition);
    if (alive && filter && chosen == filter) {
        openFilter(column);
    }
}

void CStandardHpfTable::Private::openFilter(int column)
{
    if (!hasColumn(column) || !q.isColumnFilterable(column) || !(flags & TableHeaderFilter)) {
        return;
    }
    delete popup;
    model->announce();
    popup = new CHpfFilterPopup(*model, column, &q);
    const CHpfHeader* header = view->header();
    const QRect button = header->filterButtonRect(column);
    popup->openBelow({header->viewport()->mapToGlobal(button.topLeft()), button.size()});
}

void CStandardHpfTable::Private::sortByHeader(int column)
{
    if (!(flags & TableHeaderSort) || !hasColumn(column) || (model->getColumnFlags(column) & ColumnNoSort)) {
        return;
    }
    if (model->sortColumn() != column) {
        model->sort(column, Qt::AscendingOrder);
    } else if (model->sortOrder() == Qt::AscendingOrder) {
        model->sort(column, Qt::DescendingOrder);
    } else {
        model->clearSort();
    }
}

} // namespace WQ
