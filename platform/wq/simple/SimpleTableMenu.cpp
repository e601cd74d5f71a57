// The context menu of the simple table, its shortcuts, and what they do.
#include "SimpleTablePrivate.h"
#include "table/CContainsMatcher.h"
#include "table/CTableFindBar.h"

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
        widths.clear();
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
                                  actions.find, actions.findNext, actions.findPrevious, actions.fit})
        action->setEnabled(menu);
    actions.clearSort->setEnabled(menu && sortColumn >= 0);
}

void CStandardSimpleTable::Private::showMenu(const QPoint& globalPosition)
{
    if (!(flags & TableContextMenu))
        return;
    QMenu menu(&q);
    menu.setObjectName(QStringLiteral("tableMenu"));
    menu.addActions({actions.copy, actions.copyWithHeader, actions.selectAll});
    menu.addSeparator();
    menu.addActions({actions.find, actions.exportCsv});
    menu.addSeparator();
    menu.addActions({actions.clearSort, actions.fit});
    addColumnChooser(menu);
    menu.exec(globalPosition);
}

void CStandardSimpleTable::Private::addColumnChooser(QMenu& menu)
{
    std::vector<TableColumnChoice> choices;
    for (int visual = 0; visual < header().count(); ++visual) {
        const int column = header().logicalIndex(visual);
        if (invisible.count(column) == 0)
            choices.push_back({column, q.headerText(column), q.isColumnVisible(column)});
    }
    WQ::addColumnChooser(menu, choices, [this](int column, bool shown) {
        if (shown)
            userHidden.erase(column);
        else
            userHidden.insert(column);
        applyVisibility(column);
    });
}

CTableFindBar& CStandardSimpleTable::Private::wantedFindBar()
{
    if (!findBar) {
        const auto mark = [this](const QString& text) {
            delegate->setFindText(text);
            view->viewport()->update();
        };
        const auto next = [this](const QString& text, bool forward, bool stay) { return goTo(text, forward, stay); };
        findBar = new CTableFindBar(*view, {QStringLiteral("查找"), mark, next});
        q.layout()->addWidget(findBar);
    }
    return *findBar;
}

bool CStandardSimpleTable::Private::goTo(const QString& text, bool forward, bool stay)
{
    if (stay) // what is typed is only marked
        return true;
    view->sync();
    const CSimpleTableModel& rows = view->rows();
    const QVector<int> columns = listedColumns();
    const int cells = rows.rowCount() * columns.size();
    const QModelIndex current = view->currentIndex();
    int position = forward ? -1 : cells;
    if (current.isValid() && columns.contains(current.column()))
        position = current.row() * columns.size() + columns.indexOf(current.column());
    const CContainsMatcher matcher(text);
    for (int step = 1; step <= cells; ++step) {
        const int at = ((position + (forward ? step : -step)) % cells + cells) % cells;
        const int rowId = rows.idOfRow(at / columns.size());
        const int column = columns[at % columns.size()];
        if (!matcher.matches(rows.text(rowId, column)))
            continue;
        view->goTo(rowId, column);
        return true;
    }
    return false;
}

TableTexts CStandardSimpleTable::Private::texts() const
{
    const CSimpleTableModel& rows = view->rows();
    const QVector<int> columns = listedColumns();
    return {rows, {columns.begin(), columns.end()}, [](int, const QString& text) {
                bool isNumber = false;
                text.toDouble(&isNumber);
                return isNumber;
            }};
}

} // namespace WQ
