// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "WQ/Export.h"

#include <QStyledItemDelegate>

#include <memory>

class QKeyEvent;
class QMouseEvent;

namespace WQ
{

class CStandardHpfTable;
class IBaseHpfTableModel;

/// Paints the cells of one column instead of their text, and handles mouse and keyboard in them. Cells are painted,
/// never widgets. The table on which it is set (`CStandardHpfTable::setColumnDelegate`) takes ownership. UI thread
/// only.
class WQ_EXPORT CBaseTableColumnDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit CBaseTableColumnDelegate(int column, QObject* parent = nullptr);
    ~CBaseTableColumnDelegate() override;

    int column() const;
    /// The table on which the delegate is set; null before that.
    CStandardHpfTable* table() const;

    /// Drops all data kept per row. The base class has none.
    virtual void clear();
    /// The width that the cell needs, in pixels.
    virtual int contentWidth(const QModelIndex& index) const;
    /// The text that assistive technology reads for the cell.
    virtual QString accessibleText(const QModelIndex& index) const;
    /// The tool tip at a position in the cell; empty for none.
    virtual QString toolTipAt(const QModelIndex& index, const QRect& cell, const QPoint& position) const;
    /// Handles a press, move (with or without a button), release or double click inside `cell`, and events outside of
    /// it as long as a press that the delegate accepted lasts. Returns true if the delegate has handled the event.
    virtual bool mouseEvent(QMouseEvent* event, const QModelIndex& index, const QRect& cell);
    /// The mouse has left the column's cells.
    virtual void mouseLeft();
    /// Handles a key while the cell is the current one. Returns true if the delegate has handled it.
    virtual bool keyEvent(QKeyEvent* event, const QModelIndex& index);
    /// The column's cell has become the current one (`current`), or is no longer. `forward`: the focus came from the
    /// left.
    virtual void currentChanged(bool current, bool forward);

protected:
    /// Requests a repaint of the column. Several requests in one event-loop turn cause one repaint.
    void requestRepaint();

private:
    friend class CStandardHpfTable;
    void setTable(CStandardHpfTable* table);

    struct Private;
    std::unique_ptr<Private> m_d;
};

} // namespace WQ
