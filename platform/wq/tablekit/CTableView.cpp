// SPDX-License-Identifier: Apache-2.0
#include "tablekit/CTableView.h"

#include "tablekit/CKeptRows.h"
#include "tablekit/CTableColumns.h"
#include "tablekit/CTablePainter.h"

#include <WQ/IBaseTable.h>

#include <QAbstractButton>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <limits>

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

/// Takes the place of Qt's vertical header, which stores something for every row.
class CNoRowHeader : public QHeaderView
{
public:
    explicit CNoRowHeader(QWidget* parent) : QHeaderView(Qt::Vertical, parent) { hide(); }
    void setModel(QAbstractItemModel*) override {}
    void setSelectionModel(QItemSelectionModel*) override {}
};

} // namespace

CTableView::CTableView(QHeaderView* header, int textMargin, QWidget* parent)
    : QTableView(parent), m_textMargin(textMargin), m_flags(TableDefaultFlags)
{
    setVerticalHeader(new CNoRowHeader(this));
    setHorizontalHeader(header);
    findChild<QAbstractButton*>()->hide(); // the corner between two headers
    header->setAccessibleName(QStringLiteral("表头"));
    header->setHighlightSections(false);
    header->setMinimumSectionSize(NarrowestColumn);
    // A click on a header sorts; it selects no column.
    disconnect(header, &QHeaderView::sectionPressed, this, nullptr);
    disconnect(header, &QHeaderView::sectionEntered, this, nullptr);
    setObjectName(QStringLiteral("tableView"));
    setHorizontalScrollMode(ScrollPerPixel);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setMouseTracking(true);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    connect(header, &QHeaderView::sectionResized, this, [this] {
        updateGeometries();
        viewport()->update();
    });
    connect(header, &QHeaderView::sectionMoved, viewport(), qOverload<>(&QWidget::update));
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

void CTableView::setRowHeight(int height)
{
    m_rowHeight = height;
    updateGeometries();
    viewport()->update();
}

void CTableView::onUiResourceChanged()
{
    horizontalHeader()->viewport()->update();
    viewport()->update();
}

int CTableView::fullRows() const
{
    return std::max(1, viewport()->height() / m_rowHeight);
}

std::int64_t CTableView::top() const
{
    return static_cast<std::int64_t>(verticalScrollBar()->value()) * scrollStep();
}

int CTableView::firstVisibleRow() const
{
    return rowCount() == 0 ? -1 : rowAt(0);
}

int CTableView::lastVisibleRow() const
{
    return rowCount() == 0 ? -2 : std::min(rowCount() - 1, rowAt(viewport()->height() - 1));
}

int CTableView::rowAt(int y) const
{
    // While the user drags, positions lie above the first row, too.
    const std::int64_t place = top() + y;
    return static_cast<int>(place >= 0 ? place / m_rowHeight : -((-place + m_rowHeight - 1) / m_rowHeight));
}

int CTableView::rowTop(int row) const
{
    constexpr std::int64_t Far = std::numeric_limits<int>::max() / 4;
    return static_cast<int>(std::clamp(static_cast<std::int64_t>(row) * m_rowHeight - top(), -Far, Far));
}

QRect CTableView::cellRect(int row, int column) const
{
    return {columnViewportPosition(column), rowTop(row), columnWidth(column), m_rowHeight};
}

QRect CTableView::visualRect(const QModelIndex& index) const
{
    return index.isValid() && !isIndexHidden(index) ? cellRect(index.row(), index.column()) : QRect();
}

QModelIndex CTableView::indexAt(const QPoint& point) const
{
    const int row = rowAt(point.y());
    const int column = horizontalHeader()->logicalIndexAt(point.x());
    return row >= 0 && row < rowCount() && column >= 0 ? model()->index(row, column) : QModelIndex();
}

void CTableView::scrollTo(const QModelIndex& index, ScrollHint hint)
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

int CTableView::horizontalOffset() const
{
    return horizontalHeader()->offset();
}

int CTableView::verticalOffset() const
{
    return static_cast<int>(std::min<std::int64_t>(top(), std::numeric_limits<int>::max() / 2));
}

bool CTableView::isIndexHidden(const QModelIndex& index) const
{
    return horizontalHeader()->isSectionHidden(index.column());
}

void CTableView::updateGeometries()
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
    QAbstractItemView::updateGeometries();
}

void CTableView::scrollContentsBy(int dx, int dy)
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
    setHover(viewport()->mapFromGlobal(QCursor::pos()), m_hoveredRow >= 0);
}

void CTableView::rowsInserted(const QModelIndex&, int first, int)
{
    const int lastShown = lastVisibleRow();
    updateGeometries();
    if (first <= std::max(lastShown, 0) + fullRows()) {
        viewport()->update();
    }
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
    return QTableView::event(event);
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
        return QTableView::viewportEvent(event);
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
            viewport()->update(0, rowTop(changed), viewport()->width(), m_rowHeight);
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
    QTableView::mouseMoveEvent(event);
}

void CTableView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPersistentModelIndex index = indexAt(event->pos());
    QTableView::mouseDoubleClickEvent(event);
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
    } else {
        QTableView::keyPressEvent(event);
    }
}

void CTableView::keyboardSearch(const QString&)
{
    // The find bar finds; a key stroke does not search through all rows.
}

int CTableView::nextColumn(int column, int step) const
{
    const std::vector<int> columns = visibleColumns(*horizontalHeader());
    const auto at = std::find(columns.begin(), columns.end(), column);
    const auto next = at - columns.begin() + step;
    return at == columns.end() || next < 0 || next >= static_cast<std::ptrdiff_t>(columns.size())
               ? column
               : columns[static_cast<std::size_t>(next)];
}

QModelIndex CTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
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
    int column = current.column();
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
        column = nextColumn(column, -1);
        break;
    case MoveRight:
    case MoveNext:
        column = nextColumn(column, 1);
        break;
    case MoveHome:
        row = wholeTable ? 0 : row;
        column = columns.front();
        break;
    case MoveEnd:
        row = wholeTable ? rowCount() - 1 : row;
        column = columns.back();
        break;
    }
    return model()->index(std::clamp(row, 0, rowCount() - 1), column);
}

void CTableView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command)
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

QRegion CTableView::visualRegionForSelection(const QItemSelection& selection) const
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

void CTableView::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTableView::currentChanged(current, previous);
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
    QTableView::selectionChanged(selected, deselected);
    emit sigSelectionChanged();
}

} // namespace WQ
