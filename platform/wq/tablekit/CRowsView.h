// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTableView>

namespace WQ
{

/// Places rows of one height. Nothing is stored or computed per row: scrolling counts rows or pixels.
class CRowsView : public QTableView
{
    Q_OBJECT

public:
    CRowsView(QHeaderView* header, QWidget* parent);

    int rowHeight() const { return m_rowHeight; }
    void setRowHeight(int height);
    /// The first and the last row on screen, which may be partly visible; -1 and -2 if there are none.
    int firstVisibleRow() const;
    int lastVisibleRow() const;
    /// The row at a height of the viewport, whether there is one or not; and the reverse.
    int rowAt(int y) const;
    int rowTop(int row) const;

    QRect visualRect(const QModelIndex& index) const override;
    void reset() override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint& point) const override;

protected:
    int rowCount() const { return model() ? model()->rowCount() : 0; }

    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override;
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex& index) const override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;
    void updateGeometries() override;
    void scrollContentsBy(int dx, int dy) override;
    void rowsInserted(const QModelIndex& parent, int first, int last) override;

private:
    int fullRows() const;
    /// Pixels of a step of the vertical scroll bar.
    int scrollStep() const { return verticalScrollMode() == ScrollPerItem ? m_rowHeight : 1; }
    /// What is above the viewport, in pixels.
    std::int64_t top() const;
    QRect cellRect(int row, int column) const;

    int m_rowHeight = 28;
};

} // namespace WQ
