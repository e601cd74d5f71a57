// SPDX-License-Identifier: Apache-2.0
#include "CSimpleTableView.h"

#include "CSimpleCellDelegate.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

namespace WQ
{

namespace
{

const QEvent::Type SyncEvent = QEvent::Type(QEvent::registerEventType());

bool isUserEvent(QEvent::Type type)
{
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::FocusIn:
    case QEvent::Paint:
        return true;
    default:
        return false;
    }
}

} // namespace

CSimpleTableView::CSimpleTableView(QWidget* owner) : QTableView(owner), m_cells(*this, m_model, owner)
{
    setModel(&m_model);
    setItemDelegate(new CSimpleCellDelegate(*this));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setShowGrid(false);
    setCornerButtonEnabled(false);
    setFrameShape(QFrame::StyledPanel);
    setMouseTracking(true);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(24);
    viewport()->setAttribute(Qt::WA_Hover);
}

CSimpleTableView::~CSimpleTableView() = default;

void CSimpleTableView::setRowHeights(int height)
{
    verticalHeader()->setDefaultSectionSize(height);
}

void CSimpleTableView::setEmptyText(const QString& text)
{
    m_emptyText = text;
    viewport()->update();
}

void CSimpleTableView::setEmptyTextShown(bool on)
{
    m_emptyTextShown = on;
    viewport()->update();
}

void CSimpleTableView::requestSync()
{
    if (m_syncRequested) {
        return;
    }
    m_syncRequested = true;
    QCoreApplication::postEvent(this, new QEvent(SyncEvent), Qt::HighEventPriority);
}

void CSimpleTableView::requestFit()
{
    m_fitRequested = true;
    requestSync();
}

void CSimpleTableView::sync()
{
    if (m_syncing || (!m_model.isStale() && !m_fitRequested)) {
        return;
    }
    m_syncing = true;
    if (m_model.isStale()) {
        syncRows();
        viewport()->update();
    }
    if (m_fitRequested && isVisible()) {
        m_fitRequested = false;
        emit sigFitColumns();
        // Left to itself, the view would take notice of the new widths in the next turn only.
        updateGeometries();
    }
    executeDelayedItemsLayout();
    m_syncing = false;
    m_cells.place();
}

void CSimpleTableView::syncRows()
{
    const int column = currentIndex().column();
    const int row = currentIndex().row();
    // The current row, or when that is gone the next one that stays, else the last before it.
    int currentId = -1;
    for (int next = row; row >= 0 && next < m_model.rowCount() && currentId < 0; ++next) {
        currentId = m_model.order().contains(m_model.idOfRow(next)) ? m_model.idOfRow(next) : -1;
    }
    for (int previous = row - 1; previous >= 0 && currentId < 0; --previous) {
        currentId = m_model.order().contains(m_model.idOfRow(previous)) ? m_model.idOfRow(previous) : -1;
    }

    if (m_model.willReset()) {
        const QVector<SelectedCells> selected = selectedCells();
        const int scroll = verticalScrollBar()->value();
        m_model.sync();
        executeDelayedItemsLayout();
        verticalScrollBar()->setValue(scroll);
        select(selected);
    } else {
        // Left to itself, the view would select the row that takes the place of a removed current one.
        const int kept = currentId < 0 || currentId == m_model.idOfRow(row) ? -1 : currentId;
        for (int i = 0; kept >= 0 && i < m_model.rowCount(); ++i) {
            if (m_model.idOfRow(i) == kept) {
                selectionModel()->setCurrentIndex(m_model.index(i, column), QItemSelectionModel::NoUpdate);
            }
        }
        m_model.sync();
    }
    const int shown = currentId < 0 ? -1 : m_model.rowOfId(currentId);
    if (shown >= 0 && currentIndex().row() != shown) {
        selectionModel()->setCurrentIndex(m_model.index(shown, column), QItemSelectionModel::NoUpdate);
    }
    if (m_hoveredRow >= m_model.rowCount()) {
        m_hoveredRow = -1;
    }
}

QVector<CSimpleTableView::SelectedCells> CSimpleTableView::selectedCells() const
{
    QVector<SelectedCells> cells;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            cells.push_back({m_model.idOfRow(row), range.left(), range.right()});
        }
    }
    return cells;
}

void CSimpleTableView::select(const QVector<SelectedCells>& cells)
{
    QItemSelection selection;
    for (const SelectedCells& cell : cells) {
        const int row = m_model.rowOfId(cell.rowId);
        if (row < 0) {
            continue;
        }
        const QModelIndex left = m_model.index(row, cell.left);
        const QModelIndex right = m_model.index(row, cell.right);
        if (!selection.isEmpty() && selection.last().bottom() == row - 1 && selection.last().left() == cell.left &&
            selection.last().right() == cell.right) {
            selection.last() = QItemSelectionRange(selection.last().topLeft(), right);
        } else {
            selection.append(QItemSelectionRange(left, right));
        }
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void CSimpleTableView::goTo(int rowId, int column)
{
    const int row = m_model.rowOfId(rowId);
    if (row < 0) {
        return;
    }
    selectionModel()->setCurrentIndex(m_model.index(row, qBound(0, column, m_model.columnCount() - 1)),
                                      QItemSelectionModel::NoUpdate);
    scrollTo(currentIndex());
}

void CSimpleTableView::setRowHover(bool on)
{
    m_rowHover = on;
    viewport()->update();
}

void CSimpleTableView::setHoveredRow(int row)
{
    if (row == m_hoveredRow) {
        return;
    }
    for (const int changed : {m_hoveredRow, row}) {
        if (changed >= 0) {
            viewport()->update(0, rowViewportPosition(changed), viewport()->width(), rowHeight(changed));
        }
    }
    m_hoveredRow = row;
}

bool CSimpleTableView::event(QEvent* event)
{
    if (event->type() == SyncEvent) {
        m_syncRequested = false;
        sync();
        return true;
    }
    if (isUserEvent(event->type())) {
        sync();
    }
    return QTableView::event(event);
}

bool CSimpleTableView::viewportEvent(QEvent* event)
{
    if (isUserEvent(event->type())) {
        sync();
    }
    switch (event->type()) {
    case QEvent::HoverMove:
    case QEvent::HoverEnter:
        setHoveredRow(rowAt(static_cast<QHoverEvent*>(event)->pos().y()));
        break;
    case QEvent::HoverLeave:
    case QEvent::Leave:
        setHoveredRow(-1);
        break;
    case QEvent::LayoutRequest:
        m_cells.forgetSizes();
        m_cells.place();
        break;
    case QEvent::ToolTip: {
        const auto* const help = static_cast<QHelpEvent*>(event);
        showElidedText(help->pos(), help->globalPos());
        return true;
    }
    default:
        break;
    }
    return QTableView::viewportEvent(event);
}

void CSimpleTableView::showElidedText(const QPoint& position, const QPoint& globalPosition)
{
    const QModelIndex index = indexAt(position);
    const QString text = index.data().toString();
    if (textWidth(text) + 2 * CSimpleCellDelegate::TextMargin >= columnWidth(index.column())) {
        QToolTip::showText(globalPosition, text.toHtmlEscaped(), viewport(), visualRect(index));
    } else {
        QToolTip::hideText();
    }
}

int CSimpleTableView::textWidth(const QString& text) const
{
    constexpr int MostKept = 4096;
    const auto found = m_textWidths.constFind(text);
    if (found != m_textWidths.constEnd()) {
        return *found;
    }
    if (m_textWidths.size() >= MostKept) {
        m_textWidths.clear();
    }
    const int width = fontMetrics().horizontalAdvance(text);
    m_textWidths.insert(text, width);
    return width;
}

void CSimpleTableView::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        m_textWidths.clear();
        m_cells.forgetSizes();
    }
    QTableView::changeEvent(event);
}

void CSimpleTableView::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    if (m_model.rowCount() > 0 || !m_emptyTextShown) {
        return;
    }
    QPainter painter(viewport());
    painter.setPen(CUiResourceManager::instance()->colour(key::TableEmptyText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

void CSimpleTableView::scrollContentsBy(int dx, int dy)
{
    QTableView::scrollContentsBy(dx, dy);
    m_cells.place();
}

void CSimpleTableView::updateGeometries()
{
    QTableView::updateGeometries();
    // Fitting the columns moves the cells and places their widgets.
    if (!m_syncing && !m_fitRequested) {
        m_cells.place();
    }
}

void CSimpleTableView::resizeEvent(QResizeEvent* event)
{
    if (event->size() != event->oldSize()) {
        requestFit();
    }
    QTableView::resizeEvent(event);
}

void CSimpleTableView::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    requestFit();
    sync();
    m_cells.place();
}

void CSimpleTableView::mouseDoubleClickEvent(QMouseEvent* event)
{
    QTableView::mouseDoubleClickEvent(event);
    const QModelIndex index = indexAt(event->pos());
    if (event->button() == Qt::LeftButton && index.isValid()) {
        emit sigActivated(m_model.idOfRow(index.row()));
    }
}

} // namespace WQ
