// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CTableKit.h"

#include "tablekit/CTableFindBar.h"
#include "tablekit/CTableHeader.h"

#include <WQ/CMessageBox.h>
#include <WQ/EBaseTableMenuFlag.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QHeaderView>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

namespace WQ
{

namespace
{

/// This many rows are searched one by one; further away whole columns are.
constexpr int NearRows = 5000;

} // namespace

IBaseTable::~IBaseTable() = default;

CTableKit::CTableKit(QWidget& table, CTableView& view, int tableId, int menuFlags)
    : m_table(table), m_view(view), m_tableId(tableId), m_menuFlags(menuFlags), m_columns(*view.horizontalHeader())
{
    auto* const layout = new QVBoxLayout(&table);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(&view, 1);
    table.setFocusProxy(&view);
    createActions();

    QHeaderView* const header = view.horizontalHeader();
    QObject::connect(header, &QHeaderView::sectionClicked, &view, [this](int column) { sortByHeader(column); });
    if (auto* const keys = qobject_cast<CTableHeader*>(header)) {
        QObject::connect(keys, &CTableHeader::sigSortRequested, &view, [this](int column) {
            if (canSortBy(column)) {
                sortByHeader(column);
            }
        });
        QObject::connect(keys, &CTableHeader::sigFilterRequested, &view, [this](int column) { openFilter(column); });
    }
    view.columnActions = [this](int column) { return columnActions(column); };
    view.columnState = [this](int column) { return columnState(column); };
    QObject::connect(header, &QHeaderView::sectionHandleDoubleClicked, &view, [this](int column) {
        m_columns.forgetWidth(column);
        requestFit();
    });
    QObject::connect(&m_columns, &CTableColumns::sigVisibilityChanged, &view, [this] {
        m_view.columnsChanged();
        requestFit();
    });
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(header, &QWidget::customContextMenuRequested, &view, [this, header](const QPoint& position) {
        showMenu(header->viewport()->mapToGlobal(position), {}, header->logicalIndexAt(position));
    });
    view.setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(&view, &QWidget::customContextMenuRequested, &view, [this](const QPoint& position) {
        const QModelIndex hit = m_view.indexAt(position);
        const QModelIndex index = hit.isValid() ? hit : m_view.currentIndex();
        showMenu(m_view.viewport()->mapToGlobal(position), index, index.column());
    });
}

void CTableKit::setFlags(int flags)
{
    m_view.setFlags(flags);
    updateActions();
    nameView();
}

void CTableKit::createActions()
{
    const auto add = [this](const char* name, const QString& text, const QKeySequence& shortcut, int flag, auto run) {
        auto* const action = new QAction(text, &m_view);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        action->setData(flag);
        m_view.addAction(action);
        QObject::connect(action, &QAction::triggered, &m_view, run);
    };
    add("tableCopy", QCoreApplication::translate("WQ", "复制"), QKeySequence::Copy, MenuCopy, [this] { copy(false); });
    add("tableCopyWithHeader", QCoreApplication::translate("WQ", "复制（含表头）"), Qt::CTRL + Qt::SHIFT + Qt::Key_C,
        MenuCopyWithHeader, [this] { copy(true); });
    add("tableSelectAll", QCoreApplication::translate("WQ", "全选"), QKeySequence::SelectAll, MenuSelectAll, [this] {
        m_view.sync();
        m_view.selectAll();
    });
    add("tableExport", QCoreApplication::translate("WQ", "导出CSV…"), {}, MenuExport, [this] { exportByDialog(); });
    add("tableFind", QCoreApplication::translate("WQ", "查找…"), QKeySequence::Find, MenuFind,
        [this] { findBar().open(); });
    add("tableFindNextAction", QCoreApplication::translate("WQ", "查找下一个"), Qt::Key_F3, MenuFind,
        [this] { findBar().findNext(true); });
    add("tableFindPreviousAction", QCoreApplication::translate("WQ", "查找上一个"), Qt::SHIFT + Qt::Key_F3, MenuFind,
        [this] { findBar().findNext(false); });
    add("tableFitColumns", QCoreApplication::translate("WQ", "自动列宽"), {}, MenuFitColumns, [this] {
        m_columns.forgetWidths();
        requestFit();
    });
    add("tableClearSort", QCoreApplication::translate("WQ", "清除排序"), {}, MenuClear,
        [this] { sort(-1, Qt::AscendingOrder); });
    add("tableClearFilter", QCoreApplication::translate("WQ", "清除筛选"), {}, MenuClear, [this] { clearFilter(); });
}

QAction* CTableKit::action(const char* name) const
{
    return m_view.findChild<QAction*>(QLatin1String(name), Qt::FindDirectChildrenOnly);
}

void CTableKit::updateActions()
{
    const bool isOn = (m_view.flags() & TableContextMenu) != 0 && isReady();
    for (QAction* const entry : m_view.actions()) {
        const bool isOffered = (m_menuFlags & entry->data().toInt()) != 0;
        entry->setVisible(isOffered);
        entry->setEnabled(isOn && isOffered);
    }
    action("tableClearSort")->setEnabled(isOn && sortColumn() >= 0);
    action("tableClearFilter")->setVisible(hasFilters() && (m_menuFlags & MenuClear) != 0);
    action("tableClearFilter")->setEnabled(isOn && isFiltered());
}

bool CTableKit::canSortBy(int column) const
{
    return isReady() && (m_view.flags() & TableHeaderSort) != 0 && isSortable(column);
}

TableActions CTableKit::columnActions(int column)
{
    TableActions actions;
    if (canSortBy(column)) {
        actions.push_back({QCoreApplication::translate("WQ", "排序"), [this, column] { sortByHeader(column); }});
    }
    if (isFilterable(column)) {
        actions.push_back({QCoreApplication::translate("WQ", "筛选"), [this, column] { openFilter(column); }});
    }
    return actions;
}

QString CTableKit::columnState(int column) const
{
    QStringList states;
    if (sortColumn() == column) {
        states << (sortOrder() == Qt::AscendingOrder ? QCoreApplication::translate("WQ", "升序")
                                                     : QCoreApplication::translate("WQ", "降序"));
    }
    if (isFilteredBy(column)) {
        states << QCoreApplication::translate("WQ", "已筛选");
    }
    return states.join(QCoreApplication::translate("WQ", "，"));
}

void CTableKit::showMenu(const QPoint& globalPosition, const QModelIndex& index, int column)
{
    if (!(m_view.flags() & TableContextMenu) || m_menuFlags == 0 || !isReady()) {
        return;
    }
    updateActions();
    QMenu menu(&m_table);
    menu.setObjectName(QStringLiteral("tableMenu"));
    const TableActions ofRow = index.isValid() ? m_view.rowActions(index.row()) : TableActions();
    std::map<const QAction*, std::function<void()>> runs;
    for (const TableAction& one : ofRow) {
        runs[menu.addAction(one.text)] = one.run;
    }
    menu.addSeparator();
    menu.addActions({action("tableCopy"), action("tableCopyWithHeader"), action("tableSelectAll")});
    menu.addSeparator();
    menu.addActions({action("tableFind"), action("tableExport")});
    menu.addSeparator();
    const QAction* filter = nullptr;
    if (isFilterable(column)) {
        const QString header = m_view.model()->headerData(column, Qt::Horizontal).toString();
        filter = menu.addAction(QCoreApplication::translate("WQ", "筛选“%1”…").arg(header));
    }
    menu.addActions({action("tableClearFilter"), action("tableClearSort")});
    menu.addSeparator();
    menu.addAction(action("tableFitColumns"));
    if (m_menuFlags & MenuColumnChooser) {
        m_columns.addChooser(menu, [this](int c) { return isInChooser(c); });
    }
    const QPointer<QWidget> alive(&m_table);
    const QAction* const chosen = menu.exec(globalPosition);
    if (alive && filter && chosen == filter) {
        openFilter(column);
    } else if (alive && runs.count(chosen) > 0) {
        runs[chosen]();
    }
}

void CTableKit::sortByHeader(int column)
{
    if (!isSortable(column)) {
        return;
    }
    if (sortColumn() != column) {
        sort(column, Qt::AscendingOrder);
    } else if (sortOrder() == Qt::AscendingOrder) {
        sort(column, Qt::DescendingOrder);
    } else {
        sort(-1, Qt::AscendingOrder);
    }
}

void CTableKit::nameView()
{
    QString name = m_table.accessibleName();
    if (name.isEmpty()) {
        QStringList texts;
        for (const int column : m_columns.visible()) {
            texts << m_view.model()->headerData(column, Qt::Horizontal).toString();
        }
        texts.removeAll(QString());
        name = QCoreApplication::translate("WQ", "表格 %1").arg(texts.join(QCoreApplication::translate("WQ", "、")));
    }
    m_view.setAccessibleName(name.trimmed());
}

QString CTableKit::saveConfig() const
{
    TableLayout layout;
    layout.tableId = m_tableId;
    m_columns.save(layout);
    layout.sortColumn = sortColumn();
    layout.sortOrder = sortOrder();
    return layout.toString();
}

bool CTableKit::loadConfig(const QString& config)
{
    TableLayout layout;
    if (!isReady() || !TableLayout::fromString(config, layout) || layout.tableId != m_tableId ||
        !m_columns.load(layout)) {
        return false;
    }
    sort(layout.sortColumn, layout.sortOrder);
    requestFit();
    return true;
}

std::vector<int> CTableKit::listedColumns() const
{
    std::vector<int> listed = m_columns.visible();
    listed.erase(std::remove_if(listed.begin(), listed.end(), [this](int column) { return !isListed(column); }),
                 listed.end());
    return listed;
}

TableTexts CTableKit::texts() const
{
    m_view.sync();
    return {*m_view.model(), listedColumns(),
            [this](int column, const QString& text) { return isNumber(column, text); }};
}

QString CTableKit::selectedText(bool withHeader) const
{
    return isReady() ? tabSeparated(texts(), m_view.selectionModel()->selection(), withHeader) : QString();
}

void CTableKit::copy(bool withHeader) const
{
    const QString text = selectedText(withHeader);
    if (!text.isEmpty()) {
        QApplication::clipboard()->setText(text);
    }
}

bool CTableKit::exportCsv(const QString& fileName, QString* error) const
{
    return isReady() && WQ::exportCsv(texts(), fileName, error);
}

void CTableKit::exportByDialog()
{
    QString fileName = QFileDialog::getSaveFileName(&m_table, QCoreApplication::translate("WQ", "导出CSV"),
                                                    QCoreApplication::translate("WQ", "导出.csv"),
                                                    QCoreApplication::translate("WQ", "CSV文件 (*.csv)"));
    if (fileName.isEmpty()) {
        return;
    }
    if (!fileName.contains(QLatin1Char('.'))) {
        fileName += QStringLiteral(".csv");
    }
    QString error;
    if (!exportCsv(fileName, &error)) {
        CMessageBox::warning(&m_table, QCoreApplication::translate("WQ", "导出CSV"), error, QMessageBox::Ok,
                             QMessageBox::NoButton);
    }
}

CTableFindBar& CTableKit::findBar()
{
    if (!m_findBar) {
        m_findBar = new CTableFindBar(
            m_view, {[this](const QString& text) { m_view.setFindText(text); },
                     [this](const QString& text, bool forward, bool stay) { return find(text, forward, stay); }});
        m_table.layout()->addWidget(m_findBar);
    }
    return *m_findBar;
}

bool CTableKit::find(const QString& text, bool forward, bool stay)
{
    if (!isReady()) {
        return false;
    }
    m_view.sync();
    const QAbstractItemModel& model = *m_view.model();
    const std::vector<int> listed = listedColumns();
    const auto width = static_cast<std::int64_t>(listed.size());
    const std::int64_t cells = model.rowCount() * width;
    const QModelIndex current = m_view.currentIndex();
    std::int64_t at = forward ? 0 : cells - 1;
    if (current.isValid()) {
        const auto place = std::find(listed.begin(), listed.end(), current.column());
        at = current.row() * width + (place == listed.end() ? 0 : place - listed.begin());
        at += stay || place == listed.end() ? 0 : forward ? 1 : -1;
    }
    const CContainsMatcher matcher(text);
    std::map<int, std::vector<char>> whole;
    for (std::int64_t looked = 0; looked < cells; ++looked, at += forward ? 1 : -1) {
        at = (at + cells) % cells;
        const int row = static_cast<int>(at / width);
        const int column = listed[static_cast<std::size_t>(at % width)];
        bool isMatch = false;
        if (looked < NearRows * width) {
            isMatch = matcher.matches(model.index(row, column).data().toString());
        } else {
            std::vector<char>& hits = whole[column];
            if (hits.empty()) {
                hits = matches(column, text);
            }
            isMatch = hits[static_cast<std::size_t>(row)] != 0;
        }
        if (isMatch) {
            m_view.goTo(model.index(row, column));
            return true;
        }
    }
    return false;
}

} // namespace WQ
