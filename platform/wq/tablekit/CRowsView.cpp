// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CRowsView.h"

#include "tablekit/CTableColumns.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QPaintEvent>
#include <QScrollBar>

#include <algorithm>
#include <limits>

namespace WQ
{

namespace
{

/// Takes the place of Qt's vertical header, which stores something for every row.
class CNoRowHeader : public QHeaderView
{
public:
    explicit CNoRowHeader(QWidget* parent) : QHeaderView(Qt::Vertical, parent) { hide(); }
    void setModel(QAbstractItemModel*) override {}
    void setSelectionModel(QItemSelectionModel*) override {}
};

} // namespace

CRowsView::CRowsView(QHeaderView* header, QWidget* parent) : QTableView(parent)
{
    setVerticalHeader(new CNoRowHeader(this));
    setHorizontalHeader(header);
    findChild<QAbstractButton*>()->hide(); // the corner between two headers
    setHorizontalScrollMode(ScrollPerPixel);
    connect(header, &QHeaderView::sectionResized, this, [this] {
        updateGeometries();
        viewport()->update();
    });
    connect(header, &QHeaderView::sectionMoved, viewport(), qOverload<>(&QWidget::update));
}

void CRowsView::setRowHeight(int height)
{
    m_rowHeight = height;
    updateGeometries();
    viewport()->update();
}

int CRowsView::fullRows() const
{
    return std::max(1, viewport()->height() / m_rowHeight);
}

std::int64_t CRowsView::top() const
{
    return static_cast<std::int64_t>(verticalScrollBar()->value()) * scrollStep();
}

int CRowsView::firstVisibleRow() const
{
    return rowCount() == 0 ? -1 : rowAt(0);
}

int CRowsView::lastVisibleRow() const
{
    return rowCount() == 0 ? -2 : std::min(rowCount() - 1, rowAt(viewport()->height() - 1));
}

int CRowsView::rowAt(int y) const
{
    // While the user drags, positions lie above the first row, too.
    const std::int64_t place = top() + y;
    return static_cast<int>(place >= 0 ? place / m_rowHeight : -((-place + m_rowHeight - 1) / m_rowHeight));
}

int CRowsView::rowTop(int row) const
{
    constexpr std::int64_t Far = std::numeric_limits<int>::max() / 4;
    return static_cast<int>(std::clamp(static_cast<std::int64_t>(row) * m_rowHeight - top(), -Far, Far));
}

QRect CRowsView::cellRect(int row, int column) const
{
    return {columnViewportPosition(column), rowTop(row), columnWidth(column), m_rowHeight};
}

QRect CRowsView::visualRect(const QModelIndex& index) const
{
    return index.isValid() && !isIndexHidden(index) ? cellRect(index.row(), index.column()) : QRect();
}

QModelIndex CRowsView::indexAt(const QPoint& point) const
{
    const int row = rowAt(point.y());
    const int column = horizontalHeader()->logicalIndexAt(point.x());
    return row >= 0 && row < rowCount() && column >= 0 ? model()->index(row, column) : QModelIndex();
}

void CRowsView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    if (!index.isValid()) {
        return;
    }
    const std::int64_t rowTop = static_cast<std::int64_t>(index.row()) * m_rowHeight;
    const int room = std::max(viewport()->height() - m_rowHeight, 0);
    const auto setTop = [this](std::int64_t pixels) {
        verticalScrollBar()->setValue(static_cast<int>((pixels + scrollStep() - 1) / scrollStep()));
    };
    if (hint == PositionAtTop || (hint == EnsureVisible && rowTop < top())) {
        setTop(rowTop);
    } else if (hint == PositionAtBottom || (hint == EnsureVisible && rowTop > top() + room)) {
        setTop(rowTop - room);
    } else if (hint == PositionAtCenter) {
        setTop(rowTop - room / 2);
    }
    if (isIndexHidden(index)) {
        return;
    }
    const int left = horizontalHeader()->sectionPosition(index.column());
    const int right = left + horizontalHeader()->sectionSize(index.column());
    if (left < horizontalOffset() || right - left > viewport()->width()) {
        horizontalScrollBar()->setValue(left);
    } else if (right > horizontalOffset() + viewport()->width()) {
        horizontalScrollBar()->setValue(right - viewport()->width());
    }
}

int CRowsView::horizontalOffset() const
{
    return horizontalHeader()->offset();
}

int CRowsView::verticalOffset() const
{
    return static_cast<int>(std::min<std::int64_t>(top(), std::numeric_limits<int>::max() / 2));
}

bool CRowsView::isIndexHidden(const QModelIndex& index) const
{
    return horizontalHeader()->isSectionHidden(index.column());
}

void CRowsView::reset()
{
    QTableView::reset();
    updateGeometries(); // which QTableView leaves to the vertical header
}

void CRowsView::updateGeometries()
{
    QHeaderView& header = *horizontalHeader();
    const int headerHeight =
        header.isHidden() ? 0 : qBound(header.minimumHeight(), header.sizeHint().height(), header.maximumHeight());
    setViewportMargins(0, headerHeight, 0, 0);
    const QRect area = viewport()->geometry();
    header.setGeometry(area.left(), area.top() - headerHeight, area.width(), headerHeight);

    const std::int64_t hidden = verticalScrollMode() == ScrollPerItem
                                    ? rowCount() - fullRows()
                                    : static_cast<std::int64_t>(rowCount()) * m_rowHeight - area.height();
    verticalScrollBar()->setRange(0, static_cast<int>(std::max<std::int64_t>(0, hidden)));
    verticalScrollBar()->setPageStep(verticalScrollMode() == ScrollPerItem ? fullRows() : area.height());
    verticalScrollBar()->setSingleStep(m_rowHeight / scrollStep());
    horizontalScrollBar()->setRange(0, std::max(0, header.length() - area.width()));
    horizontalScrollBar()->setPageStep(area.width());
    horizontalScrollBar()->setSingleStep(20);
    header.setOffset(horizontalScrollBar()->value());
    // QTableView would set the ranges of its own scroll bars again.
    QAbstractItemView::updateGeometries(); // NOLINT(bugprone-parent-virtual-call)
}

void CRowsView::scrollContentsBy(int dx, int dy)
{
    if (dx != 0) {
        horizontalHeader()->setOffset(horizontalScrollBar()->value());
    }
    const std::int64_t pixels = static_cast<std::int64_t>(dy) * scrollStep();
    if (std::abs(pixels) >= viewport()->height()) {
        viewport()->update();
    } else {
        viewport()->scroll(dx, static_cast<int>(pixels));
    }
}

void CRowsView::rowsInserted(const QModelIndex&, int first, int)
{
    const int lastShown = lastVisibleRow();
    updateGeometries();
    if (first <= std::max(lastShown, 0) + fullRows()) {
        viewport()->update();
    }
}

QModelIndex CRowsView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const std::vector<int> columns = visibleColumns(*horizontalHeader());
    if (rowCount() == 0 || columns.empty()) {
        return {};
    }
    const QModelIndex current = currentIndex();
    if (!current.isValid()) {
        return model()->index(0, columns.front());
    }
    int row = current.row();
    auto column = std::find(columns.begin(), columns.end(), current.column());
    const bool wholeTable = modifiers.testFlag(Qt::ControlModifier) || selectionBehavior() == SelectRows;
    switch (action) {
    case MoveUp:
        --row;
        break;
    case MoveDown:
        ++row;
        break;
    case MovePageUp:
        row -= fullRows();
        break;
    case MovePageDown:
        row += fullRows();
        break;
    case MoveLeft:
    case MovePrevious:
        column -= column == columns.begin() ? 0 : 1;
        break;
    case MoveRight:
    case MoveNext:
        column += std::distance(column, columns.end()) <= 1 ? 0 : 1;
        break;
    case MoveHome:
        row = wholeTable ? 0 : row;
        column = columns.begin();
        break;
    case MoveEnd:
        row = wholeTable ? rowCount() - 1 : row;
        column = std::prev(columns.end());
        break;
    }
    return model()->index(std::clamp(row, 0, rowCount() - 1), column == columns.end() ? current.column() : *column);
}

void CRowsView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command)
{
    if (rowCount() == 0) {
        return;
    }
    const int first = std::max(rowAt(rect.top()), 0);
    const int last = std::min(rowAt(rect.bottom()), rowCount() - 1);
    QItemSelection selection;
    for (const int column : visibleColumns(*horizontalHeader())) {
        const int left = columnViewportPosition(column);
        if (first <= last && left <= rect.right() && left + columnWidth(column) > rect.left()) {
            selection.append({model()->index(first, column), model()->index(last, column)});
        }
        if (!selection.isEmpty() && command.testFlag(QItemSelectionModel::Rows)) {
            break;
        }
    }
    selectionModel()->select(selection, command);
}

QRegion CRowsView::visualRegionForSelection(const QItemSelection& selection) const
{
    QRegion region;
    for (const QItemSelectionRange& range : selection) {
        const int first = std::max(range.top(), firstVisibleRow());
        const int last = std::min(range.bottom(), lastVisibleRow());
        if (first <= last) {
            region += QRect(0, rowTop(first), viewport()->width(), (last - first + 1) * m_rowHeight);
        }
    }
    return region;
}

} // namespace WQ
