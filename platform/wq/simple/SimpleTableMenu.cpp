// The context menu of the simple table, its shortcuts, and what they do.
#include "CSimpleFindBar.h"
#include "SimpleTablePrivate.h"
#include "table/TableExport.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QMenu>

namespace WQ
{

void CStandardSimpleTable::Private::createActions()
{
    const auto add = [this](const QString& name, const QString& text, const QKeySequence& shortcut, auto&& run) {
        auto* const action = new QAction(text, view);
        action->setObjectName(name);
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        view->addAction(action);
        QObject::connect(action, &QAction::triggered, &q, run);
        return action;
    };
    actions.copy =
        add(QStringLiteral("tableCopy"), QStringLiteral("复制"), QKeySequence::Copy, [this] { copy(false); });
    actions.copyWithHeader = add(QStringLiteral("tableCopyWithHeader"), QStringLiteral("复制(含表头)"),
                                 QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_C), [this] { copy(true); });
    actions.selectAll = add(QStringLiteral("tableSelectAll"), QStringLiteral("全选"), QKeySequence::SelectAll, [this] {
        view->sync();
        view->selectAll();
    });
    actions.exportCsv =
        add(QStringLiteral("tableExport"), QStringLiteral("导出CSV..."), {}, [this] { exportToFile(); });
    actions.find =
        add(QStringLiteral("tableFind"), QStringLiteral("查找..."), QKeySequence::Find, [this] { findBar->open(); });
    actions.findNext = add(QStringLiteral("tableFindNext"), QStringLiteral("查找下一个"), QKeySequence(Qt::Key_F3),
                           [this] { findBar->findNext(true); });
    actions.findPrevious = add(QStringLiteral("tableFindPrevious"), QStringLiteral("查找上一个"),
                               QKeySequence(Qt::SHIFT + Qt::Key_F3), [this] { findBar->findNext(false); });
    actions.fit = add(QStringLiteral("tableFitColumns"), QStringLiteral("自动列宽"), {}, [this] {
        widths.clear();
        q.adjustTableSize();
    });
    actions.clearSort =
        add(QStringLiteral("tableClearSort"), QStringLiteral("清除排序"), {}, [this] { q.clearSort(); });

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
    QMenu* const chooser = menu.addMenu(QStringLiteral("显示列"));
    chooser->setObjectName(QStringLiteral("tableColumns"));
    const int visible = visibleColumns().size();
    for (int visual = 0; visual < header().count(); ++visual) {
        const int column = header().logicalIndex(visual);
        if (invisible.count(column) != 0)
            continue;
        QAction* const action = chooser->addAction(q.headerText(column));
        action->setCheckable(true);
        action->setChecked(q.isColumnVisible(column));
        // One column always stays.
        action->setEnabled(!action->isChecked() || visible > 1);
        QObject::connect(action, &QAction::toggled, &q, [this, column](bool on) {
            if (on)
                userHidden.erase(column);
            else
                userHidden.insert(column);
            applyVisibility(column);
        });
    }
}

void CStandardSimpleTable::Private::copy(bool withHeader)
{
    const QString text = q.selectedText(withHeader);
    if (!text.isEmpty())
        QApplication::clipboard()->setText(text);
}

void CStandardSimpleTable::Private::exportToFile()
{
    exportByDialog(&q, [this](const QString& fileName, QString* error) { return q.exportCsv(fileName, error); });
}

} // namespace WQ
