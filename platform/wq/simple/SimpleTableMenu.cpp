// SPDX-License-Identifier: Apache-2.0
// The context menu of the simple table, its shortcuts, and what they do.
#include "SimpleTablePrivate.h"
#include "tablekit/CContainsMatcher.h"
#include "tablekit/CTableFindBar.h"

#include <QAction>
#include <QHeaderView>
#include <QLayout>
#include <QMenu>

namespace WQ
{

void CStandardSimpleTable::Private::createActions()
{
    TableCommands commands;
    commands.selectedText = [this](bool withHeader) { return q.selectedText(withHeader); };
    commands.selectAll = [this] {
        view->sync();
        view->selectAll();
    };
    commands.exportCsv = [this](const QString& fileName, QString* error) { return q.exportCsv(fileName, error); };
    commands.find = [this] { wantedFindBar().open(); };
    commands.findNext = [this](bool forward) { wantedFindBar().findNext(forward); };
    commands.fit = [this] {
        columns.forgetWidths();
        q.adjustTableSize();
    };
    commands.clearSort = [this] { q.clearSort(); };
    actions = createTableActions(*view, commands);

    header().setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(&header(), &QWidget::customContextMenuRequested, &q,
                     [this](const QPoint& position) { showMenu(header().viewport()->mapToGlobal(position)); });
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(view, &QWidget::customContextMenuRequested, &q,
                     [this](const QPoint& position) { showMenu(view->viewport()->mapToGlobal(position)); });
}

void CStandardSimpleTable::Private::updateActions()
{
    const bool menu = flags & TableContextMenu;
    for (QAction* const action : {actions.copy, actions.copyWithHeader, actions.selectAll, actions.exportCsv,
                                  actions.find, actions.findNext, actions.findPrevious, actions.fit}) {
        action->setEnabled(menu);
    }
    actions.clearSort->setEnabled(menu && sortColumn >= 0);
}

void CStandardSimpleTable::Private::showMenu(const QPoint& globalPosition)
{
    if (!(flags & TableContextMenu)) {
        return;
    }
    QMenu menu(&q);
    menu.setObjectName(QStringLiteral("tableMenu"));
    menu.addActions({actions.copy, actions.copyWithHeader, actions.selectAll});
    menu.addSeparator();
    menu.addActions({actions.find, actions.exportCsv});
    menu.addSeparator();
    menu.addActions({actions.clearSort, actions.fit});
    columns.addChooser(menu, [](int) { return true; });
    menu.exec(globalPosition);
}

CTableFindBar& CStandardSimpleTable::Private::wantedFindBar()
{
    if (!findBar) {
        const auto mark = [this](const QString& text) {
            delegate->setFindText(text);
            view->viewport()->update();
        };
        const auto next = [this](const QString& text, bool forward, bool stay) { return goTo(text, forward, stay); };
        findBar = new CTableFindBar(*view, {mark, next});
        q.layout()->addWidget(findBar);
    }
    return *findBar;
}

bool CStandardSimpleTable::Private::goTo(const QString& text, bool forward, bool stay)
{
    if (stay) { // what is typed is only marked
        return true;
    }
    view->sync();
    const CSimpleTableModel& rows = view->rows();
    const std::vector<int> listed = listedColumns();
    const int width = int(listed.size());
    const int cells = rows.rowCount() * width;
    const QModelIndex current = view->currentIndex();
    int position = forward ? -1 : cells;
    const auto found = std::find(listed.begin(), listed.end(), current.column());
    if (current.isValid() && found != listed.end()) {
        position = current.row() * width + int(found - listed.begin());
    }
    const CContainsMatcher matcher(text);
    for (int step = 1; step <= cells; ++step) {
        const int at = ((position + (forward ? step : -step)) % cells + cells) % cells;
        const int rowId = rows.idOfRow(at / width);
        const int column = listed[size_t(at % width)];
        if (!matcher.matches(rows.text(rowId, column))) {
            continue;
        }
        view->goTo(rowId, column);
        return true;
    }
    return false;
}

TableTexts CStandardSimpleTable::Private::texts() const
{
    const CSimpleTableModel& rows = view->rows();
    return {rows, listedColumns(), [](int, const QString& text) {
                bool isNumber = false;
                text.toDouble(&isNumber);
                return isNumber;
            }};
}

} // namespace WQ
