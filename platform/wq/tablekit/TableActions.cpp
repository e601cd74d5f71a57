// SPDX-License-Identifier: Apache-2.0
#include "tablekit/TableActions.h"

#include "tablekit/TableExport.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>

namespace WQ
{

TableActions createTableActions(QAbstractItemView& view, const TableCommands& commands)
{
    const auto add = [&view](const QString& name, const QString& text, const QKeySequence& shortcut, auto&& run) {
        auto* const action = new QAction(text, &view);
        action->setObjectName(name);
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        view.addAction(action);
        QObject::connect(action, &QAction::triggered, &view, run);
        return action;
    };
    const auto copy = [selectedText = commands.selectedText](bool withHeader) {
        const QString text = selectedText(withHeader);
        if (!text.isEmpty()) {
            QApplication::clipboard()->setText(text);
        }
    };
    TableActions actions;
    actions.copy =
        add(QStringLiteral("tableCopy"), QStringLiteral("复制"), QKeySequence::Copy, [copy] { copy(false); });
    actions.copyWithHeader = add(QStringLiteral("tableCopyWithHeader"), QStringLiteral("复制(含表头)"),
                                 Qt::CTRL + Qt::SHIFT + Qt::Key_C, [copy] { copy(true); });
    actions.selectAll =
        add(QStringLiteral("tableSelectAll"), QStringLiteral("全选"), QKeySequence::SelectAll, commands.selectAll);
    actions.exportCsv =
        add(QStringLiteral("tableExport"), QStringLiteral("导出CSV..."), {},
            [table = view.parentWidget(), write = commands.exportCsv] { exportByDialog(table, write); });
    actions.find = add(QStringLiteral("tableFind"), QStringLiteral("查找..."), QKeySequence::Find, commands.find);
    actions.findNext = add(QStringLiteral("tableFindNextAction"), QStringLiteral("查找下一个"), Qt::Key_F3,
                           [findNext = commands.findNext] { findNext(true); });
    actions.findPrevious = add(QStringLiteral("tableFindPreviousAction"), QStringLiteral("查找上一个"),
                               Qt::SHIFT + Qt::Key_F3, [findNext = commands.findNext] { findNext(false); });
    actions.fit = add(QStringLiteral("tableFitColumns"), QStringLiteral("自动列宽"), {}, commands.fit);
    actions.clearSort = add(QStringLiteral("tableClearSort"), QStringLiteral("清除排序"), {}, commands.clearSort);
    if (commands.clearFilter) {
        actions.clearFilter =
            add(QStringLiteral("tableClearFilter"), QStringLiteral("清除筛选"), {}, commands.clearFilter);
    }
    return actions;
}

} // namespace WQ
