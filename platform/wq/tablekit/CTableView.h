// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tablekit/CContainsMatcher.h"
#include "tablekit/CRowsView.h"
#include "tablekit/TableAction.h"

#include <WQ/CUiResourceChangeHandler.h>

#include <memory>
#include <optional>
#include <set>

namespace WQ
{

class CKeptRows;
class CTableHeader;

/// The view in a table: its looks, what the user does in it, and what stays when its model rearranges rows. Only rows
/// on screen are read.
class CTableView : public CRowsView, public CUiResourceChangeHandler
{
    Q_OBJECT
    Q_PROPERTY(QString emptyText READ emptyText)

public:
    /// `textMargin`: pixels at both sides of a cell's text.
    CTableView(CTableHeader* header, int textMargin, QWidget* parent);
    ~CTableView() override;

    /// A set of EBaseTableFlag.
    int flags() const { return m_flags; }
    void setFlags(int flags);
    /// The flags or the columns of the table have changed.
    void columnsChanged();

    int textMargin() const { return m_textMargin; }
    int hoveredRow() const { return m_hoveredRow; }

    /// The rows with selected cells, ascending.
    std::set<int> selectedRowNumbers() const;

    /// Marks the cells that contain the text; empty: none.
    void setFindText(const QString& text);
    bool isMatch(const QString& text) const { return m_find && m_find->matches(text); }
    /// Makes the cell current and selects it, unless the user gathers the selection click by click.
    void goTo(const QModelIndex& index);

    /// Makes the view show what the model holds.
    virtual void sync() = 0;
    /// Rows have an id that stays when they are rearranged. -1 for no row.
    virtual int idOfRow(int row) const = 0;
    virtual int rowOfId(int id) const = 0;
    /// The row that is current after this one, which may be about to go.
    virtual int idOfNextCurrent(int row) const { return idOfRow(row); }

    /// What the user can do in a cell.
    virtual TableActions cellActions(const QModelIndex&) const { return {}; }
    /// The same for all cells of a row.
    TableActions rowActions(int row) const;
    /// The widget in a cell that is on screen, else null.
    virtual QWidget* cellWidget(const QModelIndex&) const { return nullptr; }
    /// What the user can do with a column, and how it is sorted and filtered. The table sets both.
    std::function<TableActions(int column)> columnActions = [](int) { return TableActions(); };
    std::function<QString(int column)> columnState = [](int) { return QString(); };

    virtual bool isColumnWidthFixed(int) const { return false; }
    /// Paints the cells of a column; null: the view paints them.
    virtual const QAbstractItemDelegate* columnPainter(int) const { return nullptr; }
    virtual QColor rowBackground(int row) const = 0;
    /// What the view says while it has no rows.
    virtual QString emptyText() const;
    virtual int textWidth(const QString& text) const { return fontMetrics().horizontalAdvance(text); }

    void keyboardSearch(const QString& search) override;
    QStyleOptionViewItem viewOptions() const override { return CRowsView::viewOptions(); }
    void onUiResourceChanged() override;

signals:
    void sigActivated(const QModelIndex& index);
    void sigSelectionChanged();
    void sigCurrentChanged();

protected:
    virtual QString toolTipAt(const QModelIndex& index, const QPoint& position) const;
    virtual void setHover(const QPoint& position, bool inside);
    void setHoveredRow(int row);
    /// The model says when it rearranges its rows: before and after.
    void keepRows();
    void restoreRows();

    void scrollContentsBy(int dx, int dy) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index, const QEvent* event) const override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    CTableHeader& m_header;
    const int m_textMargin;
    int m_flags;
    int m_hoveredRow = -1;
    std::unique_ptr<CKeptRows> m_kept;
    std::optional<CContainsMatcher> m_find;
};

} // namespace WQ
