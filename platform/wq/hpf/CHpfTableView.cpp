// SPDX-License-Identifier: Apache-2.0
// The geometry of the view: which rows and columns are where.
#include "hpf/CHpfTableView.h"

#include "hpf/CHpfHeader.h"
#include "hpf/HpfAccessible.h"
#include "hpf/HpfModelPrivate.h"

#include <WQ/CBaseTableColumnDelegate.h>
#include <WQ/CStandardHpfTable.h>

#include <QAccessible>
#include <QScrollBar>

#include <algorithm>
#include <limits>
#include <tuple>

namespace WQ
{

struct CHpfTableView::Remembered {
    struct Run {
        int dataIndex;
        int left;
        int right;
    };
    std::vector<Run> selected;
    int currentData = -1;
    int currentColumn = 0;
    bool currentOnScreen = false;
};

CHpfTableView::CHpfTableView(CStandardHpfTable& table) : QAbstractItemView(&table), m_table(table)
{
    // A child's arrival is an event that this object handles: only now are all members there.
    m_header = new CHpfHeader(table, this);
    installTableAccessibility();
    setObjectName(QStringLiteral("tableView"));
    setAccessibleName(QStringLiteral("数据表"));
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    updateRowHeight();
    connect(m_header, &QHeaderView::sectionResized, this, [this] {
        updateGeometries();
        viewport()->update();
    });
    connect(m_header, &QHeaderView::sectionMoved, viewport(), qOverload<>(&QWidget::update));
    connect(m_header, &CHpfHeader::sigFilterRequested, this, &CHpfTableView::sigFilterRequested);
}

CHpfTableView::~CHpfTableView() = default;

void CHpfTableView::setHpfModel(IBaseHpfTableModel* model)
{
    if (m_model) {
        m_model->disconnect(this);
    }
    const std::unique_ptr<QItemSelectionModel> oldSelection(selectionModel());
    m_model = model;
    m_remembered.reset();
    setModel(model);
    m_header->setModel(model);
    if (!model) {
        return;
    }
    connect(model, &IBaseHpfTableModel::sigAboutToRearrange, this, &CHpfTableView::keepRows);
    connect(model, &IBaseHpfTableModel::sigRearranged, this, &CHpfTableView::restoreRows);
    connect(model, &IBaseHpfTableModel::sigFilterChanged, this, [this] {
        m_header->viewport()->update();
        viewport()->update();
    });
    connect(model, &IBaseHpfTableModel::sigSortChanged, m_header->viewport(), qOverload<>(&QWidget::update));
    columnsChanged();
}

void CHpfTableView::columnsChanged()
{
    const int flags = m_table.flags();
    m_header->setVisible((flags & TableShowHeader) != 0);
    m_header->setSectionsMovable((flags & TableMovableColumns) != 0);
    for (int column = 0; column < m_header->count(); ++column) {
        const bool fixed = !(flags & TableResizableColumns) || (m_model && m_model->isColumnWidthFixed(column));
        m_header->setSectionResizeMode(column, fixed ? QHeaderView::Fixed : QHeaderView::Interactive);
    }
    setSelectionBehavior(flags & TableCellSelection ? SelectItems : SelectRows);
    setSelectionMode(flags & TableToggleSelection ? MultiSelection : ExtendedSelection);
    updateGeometries();
    m_header->viewport()->update();
    viewport()->update();
}

int CHpfTableView::rowCount() const
{
    return m_model ? m_model->rowCount() : 0;
}

int CHpfTableView::fullRows() const
{
    return std::max(1, viewport()->height() / m_rowHeight);
}

int CHpfTableView::topRow() const
{
    return verticalScrollBar()->value();
}

int CHpfTableView::firstVisibleRow() const
{
    return rowCount() == 0 ? -1 : topRow();
}

int CHpfTableView::lastVisibleRow() const
{
    if (rowCount() == 0) {
        return -2;
    }
    return std::min(rowCount() - 1, topRow() + (viewport()->height() - 1) / m_rowHeight);
}

int CHpfTableView::rowAt(int y) const
{
    // Positions above the viewport, as while dragging, lie in rows above.
    const int steps = y >= 0 ? y / m_rowHeight : -((-y + m_rowHeight - 1) / m_rowHeight);
    return topRow() + steps;
}

QRect CHpfTableView::cellRect(int row, int column) const
{
    const std::int64_t y = (static_cast<std::int64_t>(row) - topRow()) * m_rowHeight;
    constexpr std::int64_t far = std::numeric_limits<int>::max() / 4;
    return {m_header->sectionViewportPosition(column), static_cast<int>(std::clamp(y, -far, far)),
            m_header->sectionSize(column), m_rowHeight};
}

QRect CHpfTableView::visualRect(const QModelIndex& index) const
{
    if (!index.isValid() || m_header->isSectionHidden(index.column())) {
        return {};
    }
    return cellRect(index.row(), index.column());
}

QModelIndex CHpfTableView::indexAt(const QPoint& point) const
{
    const int row = rowAt(point.y());
    const int column = m_header->logicalIndexAt(point.x());
    return m_model && row >= 0 && row < rowCount() && column >= 0 ? m_model->index(row, column) : QModelIndex();
}

void CHpfTableView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    if (!index.isValid()) {
        return;
    }
    const int row = index.row();
    const int top = topRow();
    if (hint == PositionAtTop || (hint == EnsureVisible && row < top)) {
        verticalScrollBar()->setValue(row);
    } else if (hint == PositionAtBottom || (hint == EnsureVisible && row >= top + fullRows())) {
        verticalScrollBar()->setValue(row - fullRows() + 1);
    } else if (hint == PositionAtCenter) {
        verticalScrollBar()->setValue(row - fullRows() / 2);
    }
    if (m_header->isSectionHidden(index.column())) {
        return;
    }
    const int left = m_header->sectionPosition(index.column());
    const int right = left + m_header->sectionSize(index.column());
    const int offset = horizontalOffset();
    if (left < offset || right - left > viewport()->width()) {
        horizontalScrollBar()->setValue(left);
    } else if (right > offset + viewport()->width()) {
        horizontalScrollBar()->setValue(right - viewport()->width());
    }
}

int CHpfTableView::horizontalOffset() const
{
    return m_header->offset();
}

int CHpfTableView::verticalOffset() const
{
    const std::int64_t offset = static_cast<std::int64_t>(topRow()) * m_rowHeight;
    return static_cast<int>(std::min<std::int64_t>(offset, std::numeric_limits<int>::max() / 2));
}

bool CHpfTableView::isIndexHidden(const QModelIndex& index) const
{
    return m_header->isSectionHidden(index.column());
}

void CHpfTableView::updateRowHeight()
{
    m_rowHeight = std::max(28, fontMetrics().height() + 10);
}

void CHpfTableView::updateGeometries()
{
    const int headerHeight = m_header->isHidden() ? 0 : m_header->sizeHint().height();
    setViewportMargins(0, headerHeight, 0, 0);
    const QRect area = viewport()->geometry();
    m_header->setGeometry(area.left(), area.top() - headerHeight, area.width(), headerHeight);

    verticalScrollBar()->setRange(0, std::max(0, rowCount() - fullRows()));
    verticalScrollBar()->setPageStep(fullRows());
    verticalScrollBar()->setSingleStep(1);
    horizontalScrollBar()->setRange(0, std::max(0, m_header->length() - area.width()));
    horizontalScrollBar()->setPageStep(area.width());
    horizontalScrollBar()->setSingleStep(20);
    m_header->setOffset(horizontalScrollBar()->value());
    QAbstractItemView::updateGeometries();
}

void CHpfTableView::scrollContentsBy(int dx, int dy)
{
    if (dx != 0) {
        m_header->setOffset(horizontalScrollBar()->value());
    }
    const int page = viewport()->height() / m_rowHeight + 1;
    if (std::abs(dy) >= page) {
        viewport()->update();
    } else {
        viewport()->scroll(dx, dy * m_rowHeight);
    }
    setHover(viewport()->mapFromGlobal(QCursor::pos()), m_hoverRow >= 0);
}

void CHpfTableView::doItemsLayout()
{
    QAbstractItemView::doItemsLayout();
    viewport()->update();
}

void CHpfTableView::rowsInserted(const QModelIndex&, int first, int last)
{
    if (QAccessible::isActive()) {
        QAccessibleTableModelChangeEvent change(this, QAccessibleTableModelChangeEvent::RowsInserted);
        change.setFirstRow(first);
        change.setLastRow(last);
        QAccessible::updateAccessibility(&change);
    }
    const int lastShown = lastVisibleRow();
    updateGeometries();
    if (first <= std::max(lastShown, 0) + fullRows()) {
        viewport()->update();
    }
}

void CHpfTableView::resizeEvent(QResizeEvent* event)
{
    QAbstractItemView::resizeEvent(event);
    updateGeometries();
}

void CHpfTableView::changeEvent(QEvent* event)
{
    QAbstractItemView::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) {
        return;
    }
    updateRowHeight();
    updateGeometries();
    viewport()->update();
}

void CHpfTableView::onUiResourceChanged()
{
    m_header->viewport()->update();
    viewport()->update();
}

void CHpfTableView::setFindText(const QString& text)
{
    m_find = text.isEmpty() ? nullptr : std::make_unique<CContainsMatcher>(text);
    viewport()->update();
}

void CHpfTableView::keepRows()
{
    m_remembered = std::make_unique<Remembered>();
    setHover({}, false);
    const QModelIndex current = currentIndex();
    m_remembered->currentData = m_model->getDataIndexByRow(current.row());
    m_remembered->currentColumn = current.column();
    m_remembered->currentOnScreen =
        current.isValid() && current.row() >= firstVisibleRow() && current.row() <= lastVisibleRow();
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            m_remembered->selected.push_back({m_model->getDataIndexByRow(row), range.left(), range.right()});
        }
    }
    // Otherwise every selected cell would become a persistent index of its own.
    selectionModel()->reset();
}

void CHpfTableView::restoreRows()
{
    const std::unique_ptr<Remembered> kept = std::move(m_remembered);
    executeDelayedItemsLayout();
    updateGeometries();
    viewport()->update();
    if (!kept) {
        return;
    }
    const bool hadSelection = !kept->selected.empty();
    for (Remembered::Run& run : kept->selected) {
        run.dataIndex = m_model->getRowByDataIndex(run.dataIndex); // from here on its row, -1 if it is hidden now
    }
    kept->selected.erase(std::remove_if(kept->selected.begin(), kept->selected.end(),
                                        [](const Remembered::Run& run) { return run.dataIndex < 0; }),
                         kept->selected.end());
    std::sort(kept->selected.begin(), kept->selected.end(), [](const auto& a, const auto& b) {
        return std::tie(a.left, a.right, a.dataIndex) < std::tie(b.left, b.right, b.dataIndex);
    });
    QItemSelection selection;
    for (std::size_t i = 0; i < kept->selected.size();) {
        const Remembered::Run& first = kept->selected[i];
        std::size_t next = i + 1;
        while (next < kept->selected.size() && kept->selected[next].left == first.left &&
               kept->selected[next].right == first.right &&
               kept->selected[next].dataIndex == kept->selected[next - 1].dataIndex + 1) {
            ++next;
        }
        selection.append({m_model->index(first.dataIndex, first.left),
                          m_model->index(kept->selected[next - 1].dataIndex, first.right)});
        i = next;
    }
    if (!selection.isEmpty()) {
        selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    }
    const int row = m_model->getRowByDataIndex(kept->currentData);
    if (row >= 0) {
        const QModelIndex current = m_model->index(row, kept->currentColumn);
        selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        if (kept->currentOnScreen) {
            scrollTo(current);
        }
    } else if (kept->currentData >= 0) {
        emit sigCurrentChanged();
    }
    if (hadSelection && selection.isEmpty()) {
        emit sigSelectionChanged();
    }
}

} // namespace WQ
