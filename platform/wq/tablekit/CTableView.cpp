// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CTableView.h"

#include "tablekit/CAccessibleTable.h"
#include "tablekit/CKeptRows.h"
#include "tablekit/CTableColumns.h"
#include "tablekit/CTableHeader.h"
#include "tablekit/CTablePainter.h"

#include <WQ/EmptyReason.h>
#include <WQ/IBaseTable.h>

#include <QCoreApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

namespace WQ
{

namespace
{

/// Events for which what is on screen must be what the model holds.
bool looksAtRows(QEvent::Type type)
{
    switch (type) {
    case QEvent::Paint:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
    case QEvent::FocusIn:
    case QEvent::ToolTip:
    case QEvent::ContextMenu:
        return true;
    default:
        return false;
    }
}

} // namespace

CTableView::CTableView(CTableHeader* header, int textMargin, QWidget* parent)
    : CRowsView(header, parent), m_header(*header), m_textMargin(textMargin), m_flags(TableDefaultFlags)
{
    CAccessibleTable::install();
    header->setAccessibleName(QCoreApplication::translate("WQ", "表头"));
    header->setHighlightSections(false);
    header->setMinimumSectionSize(NarrowestColumn);
    // A click on a header sorts; it selects no column.
    disconnect(header, &QHeaderView::sectionPressed, this, nullptr);
    disconnect(header, &QHeaderView::sectionEntered, this, nullptr);
    setObjectName(QStringLiteral("tableView"));
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
}

CTableView::~CTableView() = default;

void CTableView::setFlags(int flags)
{
    m_flags = flags;
    columnsChanged();
}

void CTableView::columnsChanged()
{
    QHeaderView& header = *horizontalHeader();
    header.setVisible((m_flags & TableShowHeader) != 0);
    header.setSectionsMovable((m_flags & TableMovableColumns) != 0);
    header.setSectionsClickable((m_flags & TableHeaderSort) != 0);
    for (int column = 0; column < header.count(); ++column) {
        const bool fixed = !(m_flags & TableResizableColumns) || isColumnWidthFixed(column);
        header.setSectionResizeMode(column, fixed ? QHeaderView::Fixed : QHeaderView::Interactive);
    }
    setSelectionBehavior(m_flags & TableCellSelection ? SelectItems : SelectRows);
    setSelectionMode(m_flags & TableToggleSelection ? MultiSelection : ExtendedSelection);
    updateGeometries();
    onUiResourceChanged();
}

void CTableView::onUiResourceChanged()
{
    horizontalHeader()->viewport()->update();
    viewport()->update();
}

std::set<int> CTableView::selectedRowNumbers() const
{
    std::set<int> rows;
    const QItemSelection selection = selectionModel() ? selectionModel()->selection() : QItemSelection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.insert(rows.end(), row);
        }
    }
    return rows;
}

TableActions CTableView::rowActions(int row) const
{
    TableActions all;
    for (const int column : visibleColumns(*horizontalHeader())) {
        const TableActions ofCell = cellActions(model()->index(row, column));
        all.insert(all.end(), ofCell.begin(), ofCell.end());
    }
    return all;
}

QString CTableView::emptyText() const
{
    const QString reason = emptyReason(*this);
    return reason.isEmpty() ? QCoreApplication::translate("WQ", "暂无数据") : reason;
}

void CTableView::scrollContentsBy(int dx, int dy)
{
    CRowsView::scrollContentsBy(dx, dy);
    setHover(viewport()->mapFromGlobal(QCursor::pos()), m_hoveredRow >= 0);
}

void CTableView::setFindText(const QString& text)
{
    m_find.reset();
    if (!text.isEmpty()) {
        m_find.emplace(text);
    }
    viewport()->update();
}

void CTableView::goTo(const QModelIndex& index)
{
    if (selectionMode() == MultiSelection) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        scrollTo(index);
    } else {
        setCurrentIndex(index);
    }
}

void CTableView::keepRows()
{
    setHover({}, false);
    m_kept = std::make_unique<CKeptRows>(*this);
    // Otherwise every selected cell would become a persistent index of its own.
    selectionModel()->reset();
}

void CTableView::restoreRows()
{
    const std::unique_ptr<CKeptRows> kept = std::move(m_kept);
    executeDelayedItemsLayout();
    updateGeometries();
    viewport()->update();
    if (!kept) {
        return;
    }
    kept->restore(*this);
    if (kept->isCurrentLost()) {
        emit sigCurrentChanged();
    }
    if (kept->isSelectionLost()) {
        emit sigSelectionChanged();
    }
}

bool CTableView::event(QEvent* event)
{
    if (looksAtRows(event->type())) {
        sync();
    }
    return CRowsView::event(event);
}

bool CTableView::viewportEvent(QEvent* event)
{
    if (looksAtRows(event->type())) {
        sync();
    }
    if (event->type() == QEvent::Leave) {
        setHover({}, false);
    }
    if (event->type() != QEvent::ToolTip) {
        return CRowsView::viewportEvent(event);
    }
    const auto* const help = static_cast<QHelpEvent*>(event);
    const QModelIndex index = indexAt(help->pos());
    const QString tip = index.isValid() ? toolTipAt(index, help->pos()) : QString();
    // Never taken for rich text, whatever a record holds.
    QToolTip::showText(help->globalPos(), tip.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>")),
                       viewport(), visualRect(index));
    return true;
}

QString CTableView::toolTipAt(const QModelIndex& index, const QPoint&) const
{
    const QString text = index.data().toString();
    const int width = textWidth(text.left(CTablePainter::MostCharacters));
    return width + 2 * m_textMargin > columnWidth(index.column()) ? text : QString();
}

void CTableView::setHover(const QPoint& position, bool inside)
{
    setHoveredRow(inside ? indexAt(position).row() : -1);
}

void CTableView::setHoveredRow(int row)
{
    if (row == m_hoveredRow) {
        return;
    }
    for (const int changed : {row, m_hoveredRow}) {
        if (changed >= 0) {
            viewport()->update(0, rowTop(changed), viewport()->width(), rowHeight());
        }
    }
    m_hoveredRow = row;
}

void CTableView::paintEvent(QPaintEvent* event)
{
    CTablePainter(*this, event->rect()).paint();
}

void CTableView::mouseMoveEvent(QMouseEvent* event)
{
    setHover(event->pos(), viewport()->rect().contains(event->pos()));
    CRowsView::mouseMoveEvent(event);
}

void CTableView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPersistentModelIndex index = indexAt(event->pos());
    CRowsView::mouseDoubleClickEvent(event);
    if (index.isValid() && event->button() == Qt::LeftButton) {
        emit sigActivated(index);
    }
}

void CTableView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        event->ignore(); // the table decides whether and what is copied
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentIndex().isValid() &&
               !event->isAutoRepeat()) {
        emit sigActivated(currentIndex());
    } else if (event->key() == Qt::Key_Up && !(event->modifiers() & ~Qt::KeypadModifier) && currentIndex().row() <= 0) {
        m_header.enter(currentIndex().column());
    } else {
        CRowsView::keyPressEvent(event);
    }
}

QItemSelectionModel::SelectionFlags CTableView::selectionCommand(const QModelIndex& index, const QEvent* event) const
{
    const auto* const key = event && event->type() == QEvent::KeyPress ? static_cast<const QKeyEvent*>(event) : nullptr;
    const bool isEnd = key && (key->key() == Qt::Key_Home || key->key() == Qt::Key_End);
    if (isEnd && (key->modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier) {
        // The selection goes along, as with the arrows: the row of the menu is the one that looks selected.
        const QKeyEvent plain(QEvent::KeyPress, key->key(), Qt::NoModifier);
        return CRowsView::selectionCommand(index, &plain);
    }
    return CRowsView::selectionCommand(index, event);
}

void CTableView::keyboardSearch(const QString&)
{
    // The find bar finds; a key stroke does not search through all rows.
}

void CTableView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    CRowsView::currentChanged(current, previous);
    // With whole rows selected the frame of the current cell must follow as well.
    for (const QModelIndex& index : {current, previous}) {
        if (index.isValid()) {
            update(index);
        }
    }
    emit sigCurrentChanged();
}

void CTableView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    CRowsView::selectionChanged(selected, deselected);
    emit sigSelectionChanged();
}

} // namespace WQ
