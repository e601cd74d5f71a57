// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CContainsMatcher.h"

#include <WQ/CUiResourceChangeHandler.h>

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <QPointer>

#include <memory>
#include <vector>

namespace WQ
{

class CBaseTableColumnDelegate;
class CHpfHeader;
class CStandardHpfTable;
class IBaseHpfTableModel;

/// Shows the rows of a high-performance model. All rows have the same height, so nothing is stored or computed per row:
/// scrolling counts rows, and only rows on screen are read.
class CHpfTableView : public QAbstractItemView, public CUiResourceChangeHandler
{
    Q_OBJECT

public:
    explicit CHpfTableView(CStandardHpfTable& table);
    ~CHpfTableView() override;

    CHpfHeader* header() const { return m_header; }
    void setHpfModel(IBaseHpfTableModel* model);
    /// The flags or the columns of the table have changed.
    void columnsChanged();

    int rowHeight() const { return m_rowHeight; }
    /// The first and the last row on screen, which may be partly visible; -1 and -2 if there are none.
    int firstVisibleRow() const;
    int lastVisibleRow() const;
    /// The width that the column's cells on screen need.
    int contentWidth(int column) const;
    /// Marks the cells that contain the text; empty: none.
    void setFindText(const QString& text);

    QRect visualRect(const QModelIndex& index) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint& point) const override;
    void keyboardSearch(const QString& search) override;
    void doItemsLayout() override;
    void onUiResourceChanged() override;

signals:
    void sigRowActivated(const QModelIndex& index);
    void sigFilterRequested(int column);
    void sigSelectionChanged();
    void sigCurrentChanged();

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override;
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex& index) const override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;
    void updateGeometries() override;
    void scrollContentsBy(int dx, int dy) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

    void rowsInserted(const QModelIndex& parent, int first, int last) override;
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Remembered;
    struct PaintContext;

    int rowCount() const;
    int fullRows() const;
    int topRow() const;
    int rowAt(int y) const;
    void updateRowHeight();
    void keepRows();
    void restoreRows();
    QRect cellRect(int row, int column) const;
    void setHover(const QPoint& position, bool inside);
    bool sendToDelegate(QMouseEvent* event);
    bool showTip(const QPoint& position, const QPoint& globalPosition);
    int nextColumn(int column, int step) const;

    void paintRow(PaintContext& context, int row);
    void paintCell(PaintContext& context, const QRect& rect, const QModelIndex& index, bool selected);
    void paintEmptyText(QPainter& painter) const;
    void markSelection(PaintContext& context) const;

    CStandardHpfTable& m_table;
    CHpfHeader* m_header = nullptr;
    QPointer<IBaseHpfTableModel> m_model;
    int m_rowHeight = 28;
    int m_hoverRow = -1;
    QPointer<CBaseTableColumnDelegate> m_hoverDelegate;
    QPointer<CBaseTableColumnDelegate> m_pressDelegate;
    QPersistentModelIndex m_pressIndex;
    std::unique_ptr<Remembered> m_remembered;
    std::unique_ptr<CContainsMatcher> m_find;
};

} // namespace WQ
